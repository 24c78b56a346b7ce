#pragma once

#include <optional>
#include <vector>

#include "app/import/taifex_trades.h"

namespace iorder {

/// Makes ticks of one file's trades, row by row.
///
/// The buyer's and the seller's fills each have rows, not side by side. So the quantities of one series at
/// one second and one price are summed, and each whole pair of lots gives a traded lot as soon as it is
/// complete: a series' volume is at all times half of what its rows have summed up to, rounded down.
class CTaifexTicks {
 public:
  struct Tick {
    int64_t quantity = 0;
    int64_t volume = 0;               ///< running, of the session
    std::optional<ScaledValue> open;  ///< in the first tick of the series: the price of its first trade
  };

  /// `trades` must outlive this.
  explicit CTaifexTicks(const TaifexTrades& trades);

  /// The tick that `row` completes, if it does. Raises CImportError if the second before it ended with a lot
  /// that has no other side.
  std::optional<Tick> Add(const TaifexTrade& row);
  /// Checks the last second of every series.
  void Finish();

 private:
  struct Carried {
    ScaledValue price = 0;
    int64_t quantity = 0;
    uint32_t line = 0;
  };
  struct State {
    LocalTime second;
    std::vector<Carried> carried;
    ScaledValue open = 0;  ///< 0 before the first trade
    int64_t volume = 0;
  };

  void EndSecond(State& state);

  const TaifexTrades& m_trades;
  std::vector<State> m_states;
};

}  // namespace iorder

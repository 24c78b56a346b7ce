#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>

#include "records/scaled_value.h"
#include "strategy/open_lottery_info.h"

/// Which strikes of a chain a strategy keeps. Pure; `strikes` are distinct and ascending, an index is one in
/// them.
namespace iorder {

/// The at-the-money strikes: the calls' is the nearest one at or above the price, the puts' the nearest one
/// at or below it.
struct CAtTheMoney {
  int32_t call = -1;
  int32_t put = -1;
};

/// None for a price at or beyond the highest strike, or below the lowest: the search ends one short of the
/// last strike.
std::optional<CAtTheMoney> FindAtTheMoney(std::span<const ScaledValue> strikes, ScaledValue price);

enum class SelectionMode { kFlags, kAll, kRange };
SelectionMode SelectionModeOf(const COpenLotteryInfo& info);

/// The strikes that the at-the-money, in-the-money and out-of-the-money flags keep. Raises the
/// invalid-argument error for a distance that leaves the list.
std::set<ScaledValue> KeptByFlags(std::span<const ScaledValue> strikes, const CAtTheMoney& atm,
                                  const COpenLotteryInfo& info);

/// The outermost strikes that a range keeps, each NoValue if that bound is absent.
struct CStrikeRange {
  ScaledValue callIn = NoValue;
  ScaledValue callOut = NoValue;
  ScaledValue putIn = NoValue;
  ScaledValue putOut = NoValue;

  /// NoValue is below every strike: without an upper bound no strike stays, without a lower one it bounds
  /// nothing.
  bool KeepsCall(ScaledValue strike) const { return strike >= callIn && strike <= callOut; }
  bool KeepsPut(ScaledValue strike) const { return strike >= putOut && strike <= putIn; }
};

/// An index beyond an end of the list means the strike at that end.
CStrikeRange RangeAround(std::span<const ScaledValue> strikes, const CAtTheMoney& atm, int32_t in,
                         int32_t out);

}  // namespace iorder

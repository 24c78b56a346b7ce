#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "app/output_file.h"
#include "terminal/local_time.h"

namespace iorder {

/// The best prices of a row, decimal texts.
struct BestRow {
  std::string_view bid;
  std::string_view ask;
  int64_t bidQuantity = 0;
  int64_t askQuantity = 0;
};

/// One trade as a row of a tick file. Prices are decimal texts.
struct TradeRow {
  LocalTime at{};
  std::string_view symbol;
  std::string_view price;
  int64_t quantity = 0;
  int64_t volume = 0;     ///< lots of the session, this trade included
  std::string_view open;  ///< the opening price, with the first trade of a series; else empty
  BestRow best{};         ///< for a file that has them
};

/// Writes a tick file. Rows come in order of time. Raises what COutputFile raises.
class CTickWriter {
 public:
  /// With the offset of the local clock from UTC, each row also says its date and time in UTC; without it a
  /// row takes them from the clock when it is played. With `hasBest` each row also says the best prices.
  CTickWriter(const std::filesystem::path& path, std::optional<std::chrono::hours> utcOffset, bool hasBest);

  void Append(const TradeRow& row);
  void Commit();

 private:
  void AppendTime(LocalTime at);
  void AppendUtc(LocalTime utc);
  void AppendBest(const BestRow& best);
  void Flush();

  COutputFile m_file;
  const std::optional<std::chrono::hours> m_utcOffset;
  const bool m_hasBest;
  std::string m_text;  ///< rows that are gathered to a large piece
  std::chrono::local_days m_date{};
  bool m_hasDate = false;
};

}  // namespace iorder

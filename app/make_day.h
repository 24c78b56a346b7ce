#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "terminal/local_time.h"

namespace iorder {

/// What a made day is like. The same options give the same files, byte for byte, on every machine.
struct MakeDayOptions {
  uint64_t seed = 1;
  int strikes = 41;       ///< each listed as a call and a put
  int64_t ticks = 20000;  ///< rows of the tick file
  LocalTime start{};      ///< when the session opens, in Asia/Taipei
  int minutes = 300;      ///< how long it is
  int64_t price = 17500;  ///< of the underlying before the opening, in points
  int volatility = 20;    ///< in percent a year
  std::string broker = "B1";
  std::string account = "A1";
  std::string fill;           ///< how orders are filled ("touch"); empty: nobody answers them by itself
  std::filesystem::path day;  ///< the day file; the tick file lies beside it
};

/// The defaults: 2024-03-04, a Monday, from 08:45.
MakeDayOptions DefaultDay();

/// The tick file of a day file: "x.day.jsonl" has "x.ticks.csv".
std::filesystem::path TickFileOf(const std::filesystem::path& day);

/// Writes a day with one chain of monthly options on a future, and its ticks as they are made: memory doesn't
/// grow with their number. The chain opens as real ones do: what lies near the money in the opening auction,
/// what lies far from it later or never, and far strikes are listed at every second step only. `progress` is
/// told now and then how many ticks are written. Raises InputError for options that don't fit together and
/// for files that can't be written; then neither file is there.
void MakeDay(const MakeDayOptions& options, const std::function<void(int64_t ticks)>& progress);

}  // namespace iorder

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/import/taifex_series.h"
#include "app/import/taifex_session.h"
#include "app/import/taifex_table.h"

namespace iorder {

/// One row of a trade file: fills of one side (options) or of both (futures). Both sides have rows, so
/// quantities count every lot twice.
struct TaifexTrade {
  LocalTime time;
  ScaledValue price = 0;
  int64_t quantity = 0;
  uint32_t series = 0;  ///< index in TaifexTrades::series
  uint32_t line = 0;
};

/// The trades of one session out of one file, in order of time; within a series in the order that they were
/// made in.
struct TaifexTrades {
  std::filesystem::path file;
  std::vector<TaifexSeries> series;
  std::vector<TaifexTrade> rows;
};

/// Called now and then with the number of bytes read of the file.
using BytesRead = std::function<void(uint64_t)>;

/// Reads the trades of one session from an options or a futures file. `date` is the date of the session: set
/// by the first such trade if it has no value, else every trade must be of it. Raises CImportError for what
/// doesn't read, for a time that goes back, and for a file without such trades.
TaifexTrades ReadTaifexTrades(const std::filesystem::path& path, CTaifexTable::Kind kind,
                              TaifexSession session, std::optional<TaifexSessionDate>& date,
                              const BytesRead& progress);

}  // namespace iorder

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "app/import/taifex_session.h"

namespace iorder {

/// What `iorder import taifex` is told.
struct TaifexImportOptions {
  std::filesystem::path optionsFile;  ///< trades of the index options, .csv, .csv.gz or .csv.zst
  std::filesystem::path futuresFile;  ///< trades of the index futures
  std::filesystem::path seriesFile;   ///< the exchange's list of option series; empty: the series that traded
  TaifexSession session = TaifexSession::kDay;
  std::filesystem::path day;  ///< NAME.day.jsonl; its ticks go to NAME.ticks.csv beside it
  std::string brokerId = "B1";
  std::string account = "A1";
  std::string fill;  ///< how orders are filled ("touch"); empty: nobody answers them by itself
  /// Called now and then with the bytes read so far and the bytes to read (0: not known); may be missing.
  std::function<void(uint64_t, uint64_t)> progress;
};

/// What an import has made.
struct TaifexImportResult {
  std::filesystem::path tickFile;
  uint64_t listedOptions = 0;  ///< option series that the day lists
  uint64_t tradedOptions = 0;  ///< of these, such as traded
  uint64_t tradedFutures = 0;
  uint64_t ticks = 0;
};

/// Makes a day file with ticks out of one session of the exchange's own trade files.
///
/// The day lists every option series with both rights (a traded series that the list lacks is added; a listed
/// one that had expired is left out), and the futures that traded. Within one second, whose order between
/// series the files don't tell, the futures' trades come before the options', and else the files' order is
/// kept. The clock begins 15 minutes before the session opens and ends 15 minutes after it closes.
///
/// Raises CImportError for a source that doesn't read, InputError for a day that can't be written, as where
/// it or its ticks are one of the sources; then nothing is left behind. Other files of the same names are
/// replaced.
TaifexImportResult ImportTaifex(const TaifexImportOptions& options);

}  // namespace iorder

#include "app/import/taifex_import.h"

#include <filesystem>
#include <optional>
#include <set>
#include <vector>

#include "app/file_roles.h"
#include "app/import/import_error.h"
#include "app/import/taifex_day.h"
#include "app/import/taifex_ticks.h"
#include "app/import/taifex_trades.h"
#include "app/make_day.h"
#include "app/symbol_words.h"
#include "app/tick_writer.h"

namespace iorder {
namespace {

/// The exchange's clock knows no summer time.
constexpr std::chrono::hours kUtcOffset{8};

/// The size of a trade file; 0 if it isn't known before it is unpacked.
uint64_t SizeOf(const std::filesystem::path& path) {
  std::error_code error;
  const uintmax_t size = std::filesystem::file_size(path, error);
  return error || path.extension() == ".gz" || path.extension() == ".zst" ? 0 : size;
}

/// Counts the bytes of both trade files as one progress.
class CBytesOfAll {
 public:
  explicit CBytesOfAll(const TaifexImportOptions& options) : m_callback(options.progress) {
    const uint64_t sizes[] = {SizeOf(options.optionsFile), SizeOf(options.futuresFile)};
    if (sizes[0] != 0 && sizes[1] != 0) m_total = sizes[0] + sizes[1];
  }

  /// For the next file: its bytes stand on top of those of the files before.
  BytesRead NextFile() {
    return [this, before = m_done](uint64_t bytes) {
      m_done = before + bytes;
      if (m_callback) m_callback(m_done, m_total);
    };
  }

 private:
  const std::function<void(uint64_t, uint64_t)>& m_callback;
  uint64_t m_total = 0;
  uint64_t m_done = 0;
};

void AddBothRights(TaifexSeries series, std::set<TaifexSeries>& all) {
  for (const char right : {'C', 'P'}) {
    series.right = right;
    all.insert(series);
  }
}

/// The option series that the exchange lists, less those that had expired when the session began.
void AddListed(const std::filesystem::path& path, const TaifexSessionDate& date,
               std::set<TaifexSeries>& all) {
  CTaifexTable table(path, CTaifexTable::Kind::kOptionSeries);
  bool any = false;
  while (table.Next()) {
    const std::optional<TaifexSeries> series = table.Series();
    if (!series) continue;
    any = true;
    const std::chrono::local_days lastDay(series->expiry.LastTradingDay());
    const bool expired = date.session == TaifexSession::kDay ? lastDay < date.date : lastDay <= date.date;
    if (!expired) AddBothRights(*series, all);
  }
  if (!any) throw CImportError(path, 0, "lists no series", "series of TXO");
}

/// One file's trades on their way to ticks.
struct Road {
  const TaifexTrades& trades;
  CTaifexTicks ticks{trades};
  size_t next = 0;
  std::vector<std::string> symbols{};

  explicit Road(const TaifexTrades& from) : trades(from) {
    for (const TaifexSeries& series : trades.series) symbols.push_back(series.Symbol());
  }
  const TaifexTrade* Row() const { return next < trades.rows.size() ? &trades.rows[next] : nullptr; }
};

/// Merges both files' ticks, in order of time.
uint64_t WriteTicks(const TaifexTrades& futures, const TaifexTrades& options, CTickWriter& writer) {
  Road future(futures);
  Road option(options);
  uint64_t count = 0;
  while (future.Row() != nullptr || option.Row() != nullptr) {
    const bool takeFuture =
        option.Row() == nullptr || (future.Row() != nullptr && future.Row()->time <= option.Row()->time);
    Road& road = takeFuture ? future : option;
    const TaifexTrade& row = *road.Row();
    ++road.next;
    const std::optional<CTaifexTicks::Tick> tick = road.ticks.Add(row);
    if (!tick) continue;
    ++count;
    const std::string price = DecimalText(row.price);
    const std::string open = tick->open ? DecimalText(*tick->open) : "";
    writer.Append({.at = row.time,
                   .symbol = road.symbols[row.series],
                   .price = price,
                   .quantity = tick->quantity,
                   .volume = tick->volume,
                   .open = open});
  }
  future.ticks.Finish();
  option.ticks.Finish();
  return count;
}

/// The series that have a trade in the session.
std::set<TaifexSeries> Traded(const TaifexTrades& trades) {
  std::set<TaifexSeries> traded;
  for (const TaifexTrade& row : trades.rows) traded.insert(trades.series[row.series]);
  return traded;
}

/// An import must not write over what it reads.
void RefuseSameFiles(const TaifexImportOptions& options) {
  CFileRoles files;
  files.Reads(options.optionsFile, "the file of the options' trades");
  files.Reads(options.futuresFile, "the file of the futures' trades");
  if (!options.seriesFile.empty()) files.Reads(options.seriesFile, "the list of series");
  files.Writes(options.day, "the day");
  files.Writes(TickFileOf(options.day), "the day's ticks");
}

}  // namespace

TaifexImportResult ImportTaifex(const TaifexImportOptions& options) {
  RefuseSameFiles(options);
  CBytesOfAll progress(options);
  std::optional<TaifexSessionDate> date;
  const TaifexTrades optionTrades = ReadTaifexTrades(options.optionsFile, CTaifexTable::Kind::kOptionTrades,
                                                     options.session, date, progress.NextFile());
  const TaifexTrades futureTrades = ReadTaifexTrades(options.futuresFile, CTaifexTable::Kind::kFutureTrades,
                                                     options.session, date, progress.NextFile());
  const std::set<TaifexSeries> tradedOptions = Traded(optionTrades);
  const std::set<TaifexSeries> tradedFutures = Traded(futureTrades);

  TaifexDay day{*date, tradedFutures, options.brokerId, options.account, options.fill};
  for (const TaifexSeries& series : tradedOptions) AddBothRights(series, day.series);
  if (!options.seriesFile.empty()) AddListed(options.seriesFile, *date, day.series);

  TaifexImportResult result;
  result.listedOptions = day.series.size() - tradedFutures.size();
  result.tradedOptions = tradedOptions.size();
  result.tradedFutures = tradedFutures.size();
  result.tickFile = TickFileOf(options.day);
  CDayWriter dayWriter = WriteTaifexDay(options.day, day);
  dayWriter.Ticks(result.tickFile.filename().string());
  CTickWriter tickWriter(result.tickFile, kUtcOffset, false);
  result.ticks = WriteTicks(futureTrades, optionTrades, tickWriter);
  tickWriter.Commit();
  dayWriter.Commit();
  return result;
}

}  // namespace iorder

#include "app/import/taifex_trades.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/import/import_error.h"
#include "app/time_text.h"

namespace iorder {
namespace {

constexpr size_t kRowsBetweenProgress = 16384;

/// Reads one file, keeping what has to be known of the rows above.
class CReader {
 public:
  CReader(const std::filesystem::path& path, CTaifexTable::Kind kind, TaifexSession session,
          std::optional<TaifexSessionDate>& date)
      : m_table(path, kind), m_session(session), m_date(date) {
    m_trades.file = path;
  }

  TaifexTrades Read(const BytesRead& progress) {
    for (size_t row = 0; m_table.Next(); ++row) {
      if (progress && row % kRowsBetweenProgress == 0) progress(m_table.BytesRead());
      const std::optional<TaifexSeries> series = m_table.Series();
      if (series) ReadTrade(*series);
    }
    if (progress) progress(m_table.BytesRead());
    // The exchange's own form stands by series.
    if (m_table.IsOriginalForm()) std::ranges::stable_sort(m_trades.rows, {}, &TaifexTrade::time);
    return std::move(m_trades);
  }

 private:
  void ReadTrade(const TaifexSeries& series) {
    const LocalTime time = m_table.Time();
    const uint32_t index = IndexOf(series);
    CheckOrder(time, index);
    if (!IsWanted(time)) return;
    m_trades.rows.push_back(
        {time, m_table.Price(), m_table.Quantity(), index, static_cast<uint32_t>(m_table.LineNumber())});
  }

  uint32_t IndexOf(const TaifexSeries& series) {
    const auto [entry, isNew] = m_indexes.try_emplace(series, static_cast<uint32_t>(m_trades.series.size()));
    if (isNew) {
      m_trades.series.push_back(series);
      m_lastTimes.emplace_back();
    }
    return entry->second;
  }

  void CheckOrder(LocalTime time, uint32_t series) {
    LocalTime& last = m_table.IsOriginalForm() ? m_lastTimes[series] : m_lastTime;
    if (time < last) {
      m_table.Fail("goes back in time to " + TimeText(time), "no time before " + TimeText(last));
    }
    last = time;
  }

  /// Whether a trade of this time belongs to the session, whose date is now set.
  bool IsWanted(LocalTime time) {
    const std::optional<TaifexSessionDate> found = TaifexSessionDate::Of(time);
    if (!found) {
      m_table.Fail("is a trade between the sessions, at " + TimeText(time),
                   "a time from 084500 to 134500 or from 150000 to 050000");
    }
    if (found->session != m_session) return false;
    if (!m_date) m_date = found;
    if (*found != *m_date) {
      m_table.Fail("is a trade of another session, at " + TimeText(time),
                   "trades of one session, from " + TimeText(m_date->Opens()));
    }
    return true;
  }

  CTaifexTable m_table;
  const TaifexSession m_session;
  std::optional<TaifexSessionDate>& m_date;
  TaifexTrades m_trades;
  std::map<TaifexSeries, uint32_t> m_indexes;
  LocalTime m_lastTime;                ///< of all rows
  std::vector<LocalTime> m_lastTimes;  ///< by series
};

}  // namespace

TaifexTrades ReadTaifexTrades(const std::filesystem::path& path, CTaifexTable::Kind kind,
                              TaifexSession session, std::optional<TaifexSessionDate>& date,
                              const BytesRead& progress) {
  TaifexTrades trades = CReader(path, kind, session, date).Read(progress);
  if (trades.rows.empty()) {
    const bool options = kind == CTaifexTable::Kind::kOptionTrades;
    throw CImportError(
        path, 0,
        fmt::format("has no trade of the {} session", session == TaifexSession::kDay ? "day" : "night"),
        options ? "trades of TXO" : "trades of TX");
  }
  return trades;
}

}  // namespace iorder

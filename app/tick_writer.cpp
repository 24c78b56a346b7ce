#include "app/tick_writer.h"

#include <charconv>

#include "app/time_text.h"

namespace iorder {
namespace {

constexpr size_t kPiece = 1 << 16;

void AppendDigits(std::string& text, int64_t number, size_t digits) {
  const size_t begin = text.size();
  text.resize(begin + digits);
  for (size_t i = digits; i > 0; --i, number /= 10)
    text[begin + i - 1] = static_cast<char>('0' + number % 10);
}

void AppendNumber(std::string& text, int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

}  // namespace

CTickWriter::CTickWriter(const std::filesystem::path& path, std::optional<std::chrono::hours> utcOffset,
                         bool hasBest)
    : m_file(path), m_utcOffset(utcOffset), m_hasBest(hasBest) {
  m_text = utcOffset ? "at,date,time,symbol,price,qty,volume,open" : "at,symbol,price,qty,volume,open";
  m_text += hasBest ? ",bid,ask,bid_qty,ask_qty\n" : "\n";
}

void CTickWriter::Append(const TradeRow& row) {
  AppendTime(row.at);
  if (m_utcOffset) AppendUtc(row.at - *m_utcOffset);
  m_text.append(",").append(row.symbol).append(",").append(row.price).append(",");
  AppendNumber(m_text, row.quantity);
  m_text += ',';
  AppendNumber(m_text, row.volume);
  m_text.append(",").append(row.open);
  if (m_hasBest) AppendBest(row.best);
  m_text += '\n';
  if (m_text.size() > kPiece) Flush();
}

void CTickWriter::Commit() {
  Flush();
  m_file.Commit();
}

void CTickWriter::AppendTime(LocalTime at) {
  const auto date = std::chrono::floor<std::chrono::days>(at);
  if (!m_hasDate) m_date = date;
  m_hasDate = true;
  // Behind midnight the date must be said.
  if (date != m_date) {
    m_text += TimeText(at);
    return;
  }
  const int64_t time = (at - date).count();
  AppendDigits(m_text, time / 3600000, 2);
  m_text += ':';
  AppendDigits(m_text, time / 60000 % 60, 2);
  m_text += ':';
  AppendDigits(m_text, time / 1000 % 60, 2);
  if (time % 1000 == 0) return;
  m_text += '.';
  AppendDigits(m_text, time % 1000, 3);
}

void CTickWriter::AppendUtc(LocalTime utc) {
  const auto day = std::chrono::floor<std::chrono::days>(utc);
  const std::chrono::year_month_day date(day);
  m_text += ',';
  AppendDigits(m_text, static_cast<int>(date.year()), 4);
  AppendDigits(m_text, static_cast<unsigned>(date.month()), 2);
  AppendDigits(m_text, static_cast<unsigned>(date.day()), 2);
  const int64_t time = (utc - day).count();
  m_text += ',';
  AppendNumber(m_text, time / 3600000 * 10000 + time / 60000 % 60 * 100 + time / 1000 % 60);
}

void CTickWriter::AppendBest(const BestRow& best) {
  m_text.append(",").append(best.bid).append(",").append(best.ask).append(",");
  AppendNumber(m_text, best.bidQuantity);
  m_text += ',';
  AppendNumber(m_text, best.askQuantity);
}

void CTickWriter::Flush() {
  m_file.Write(m_text);
  m_text.clear();
}

}  // namespace iorder

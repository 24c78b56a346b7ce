#include "app/import/taifex_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "app/import/csv_fields.h"
#include "app/import/import_error.h"

namespace iorder {
namespace {

using Kind = CTaifexTable::Kind;
using Column = TaifexColumn;

struct ColumnName {
  Column column;
  std::string_view english;
  std::string_view original;  ///< the bytes of the exchange's name in Big5
};

constexpr ColumnName kDate{Column::kDate, "date", "\xA6\xA8\xA5\xE6\xA4\xE9\xB4\xC1"};
constexpr ColumnName kTime{Column::kTime, "time", "\xA6\xA8\xA5\xE6\xAE\xC9\xB6\xA1"};
constexpr ColumnName kProduct{Column::kProduct, "product", "\xB0\xD3\xAB~\xA5N\xB8\xB9"};
constexpr ColumnName kExpiry{Column::kExpiry, "expiry", "\xA8\xEC\xB4\xC1\xA4\xEB\xA5\xF7(\xB6g\xA7O)"};
constexpr ColumnName kStrike{Column::kStrike, "strike", "\xBCi\xAC\xF9\xBB\xF9\xAE\xE6"};
constexpr ColumnName kRight{Column::kRight, "right", "\xB6R\xBD\xE6\xC5v\xA7O"};
constexpr ColumnName kPrice{Column::kPrice, "price", "\xA6\xA8\xA5\xE6\xBB\xF9\xAE\xE6"};
constexpr ColumnName kOneSide{Column::kQuantity, "qty_b_or_s", "\xA6\xA8\xA5\xE6\xBC\xC6\xB6q(B or S)"};
constexpr ColumnName kBothSides{Column::kQuantity, "qty_b_plus_s", "\xA6\xA8\xA5\xE6\xBC\xC6\xB6q(B+S)"};

const std::vector<ColumnName>& NamesOf(Kind kind) {
  static const std::vector<ColumnName> options{kDate,   kTime,  kProduct, kExpiry,
                                               kStrike, kRight, kPrice,   kOneSide};
  static const std::vector<ColumnName> futures{kDate, kTime, kProduct, kExpiry, kPrice, kBothSides};
  static const std::vector<ColumnName> series{kProduct, kExpiry, kStrike, kRight};
  return kind == Kind::kOptionTrades ? options : kind == Kind::kFutureTrades ? futures : series;
}

std::string EnglishNames(const std::vector<ColumnName>& names) {
  std::string text;
  for (const ColumnName& name : names) text.append(text.empty() ? "" : ",").append(name.english);
  return text;
}

bool IsRowOfDashes(std::string_view line) {
  return line.find_first_not_of("-, \t") == std::string_view::npos;
}

}  // namespace

CTaifexTable::CTaifexTable(const std::filesystem::path& path, Kind kind)
    : m_lines(path.string()), m_kind(kind) {
  ReadHeader();
}

void CTaifexTable::ReadHeader() {
  std::string_view line;
  if (!m_lines.Next(line)) Fail("is empty", "a line with column names");
  SplitFields(line, m_fields);
  m_columnCount = m_fields.size();
  m_original = m_kind != Kind::kOptionSeries && std::ranges::find(m_fields, kDate.original) != m_fields.end();
  const std::vector<ColumnName>& names = NamesOf(m_kind);
  for (const ColumnName& name : names) {
    const auto found = std::ranges::find(m_fields, m_original ? name.original : name.english);
    if (found == m_fields.end()) {
      Fail(fmt::format("has no column '{}'", name.english),
           fmt::format("the columns {}{}", EnglishNames(names),
                       m_kind == Kind::kOptionSeries ? "" : ", or the exchange's own in Big5"));
    }
    m_place[static_cast<size_t>(name.column)] = static_cast<size_t>(found - m_fields.begin());
  }
}

bool CTaifexTable::Next() {
  std::string_view line;
  do {
    if (!m_lines.Next(line)) return false;
  } while (line.empty() || (m_original && IsRowOfDashes(line)));
  SplitFields(line, m_fields);
  if (m_fields.size() != m_columnCount) {
    Fail(fmt::format("has {} fields", m_fields.size()),
         fmt::format("{}, as the column names", m_columnCount));
  }
  return true;
}

std::string_view CTaifexTable::Text(TaifexColumn column) const {
  return m_fields[m_place[static_cast<size_t>(column)]];
}

LocalTime CTaifexTable::Time() const {
  const int64_t date = Number(Column::kDate, 0, 99999999);
  const auto time = static_cast<int>(Number(Column::kTime, 0, 999999));
  const std::optional<LocalTime> midnight = MidnightOf(date);
  if (!midnight || date < 19000101) FailAt(Column::kDate, "a date yyyymmdd");
  const int hour = time / 10000;
  const int minute = time / 100 % 100;
  const int second = time % 100;
  if (hour > 23 || minute > 59 || second > 59) FailAt(Column::kTime, "a time hhmmss");
  return *midnight + std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

std::optional<TaifexSeries> CTaifexTable::Series() const {
  const bool option = m_kind != Kind::kFutureTrades;
  const std::string_view product = Text(Column::kProduct);
  if (option ? product != "TXO" : product != "TX" && product != "MTX") return std::nullopt;
  const std::string_view text = Text(Column::kExpiry);
  if (!option && text.find('/') != std::string_view::npos) return std::nullopt;
  const std::optional<TaifexExpiry> expiry = TaifexExpiry::Parse(text);
  if (!expiry) FailAt(Column::kExpiry, "yyyymm, or yyyymmWn for the n-th Wednesday");
  // The mini future's months shadow those of the big one; only its weeks are futures that TX doesn't have.
  if (!option) {
    if ((product == "MTX") != (expiry->week != 0)) return std::nullopt;
    return TaifexSeries{TaifexSeries::Kind::kFuture, *expiry, 0, 0};
  }
  const std::string_view right = Text(Column::kRight);
  if (right != "C" && right != "P") FailAt(Column::kRight, "C or P");
  return TaifexSeries{TaifexSeries::Kind::kOption, *expiry, Decimal(Column::kStrike), right[0]};
}

ScaledValue CTaifexTable::Price() const {
  return Decimal(Column::kPrice);
}

int64_t CTaifexTable::Quantity() const {
  return Number(Column::kQuantity, 1, 10'000'000);
}

int64_t CTaifexTable::Number(TaifexColumn column, int64_t lowest, int64_t highest) const {
  const std::string_view text = Text(column);
  int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < lowest || number > highest) {
    FailAt(column, fmt::format("a whole number from {} to {}", lowest, highest));
  }
  return number;
}

ScaledValue CTaifexTable::Decimal(TaifexColumn column) const {
  constexpr ScaledValue kHighest = 10'000'000 * static_cast<ScaledValue>(kScale);
  const std::optional<ScaledValue> value = ParseScaled(Text(column));
  if (!value || *value <= 0 || *value > kHighest) FailAt(column, "a decimal above 0 and up to 10000000");
  return *value;
}

void CTaifexTable::FailAt(TaifexColumn column, const std::string& expected) const {
  const std::vector<ColumnName>& names = NamesOf(m_kind);
  const auto name = std::ranges::find(names, column, &ColumnName::column);
  Fail(fmt::format("{} is '{}'", name->english, Text(column)), expected);
}

void CTaifexTable::Fail(const std::string& what, const std::string& expected) const {
  const FilePlace place = m_lines.Place();
  throw CImportError(place.file, place.line, what, expected);
}

}  // namespace iorder

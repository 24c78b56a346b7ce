#include "terminal/tick_file.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <utility>

#include "terminal/object_reader.h"

namespace iorder {

CTickFile::CTickFile(CLineReader reader, LocalTime date) : m_reader(std::move(reader)), m_lastTime(date) {
  ReadHeader();
}

void CTickFile::ReadHeader() {
  std::string_view line;
  if (!m_reader.Next(line) || line.empty()) {
    FailAt({m_reader.Path()}, "is empty; the first line must name the columns (at,symbol,...)");
  }
  size_t timeColumns = 0;
  size_t symbolColumns = 0;
  std::vector<std::string_view> seen;
  while (true) {
    const size_t comma = line.find(',');
    const std::string_view name = line.substr(0, comma);
    for (const std::string_view other : seen) {
      if (other == name) {
        Fail("column '" + std::string(name) + "' stands twice");
      }
    }
    seen.push_back(name);
    m_columns.push_back(ColumnOf(name));
    timeColumns += m_columns.back().kind == ColumnKind::kAt ? 1 : 0;
    symbolColumns += m_columns.back().kind == ColumnKind::kSymbol ? 1 : 0;
    if (comma == std::string_view::npos) {
      break;
    }
    line.remove_prefix(comma + 1);
  }
  if (timeColumns == 0 || symbolColumns == 0) {
    Fail(std::string("column '") + (timeColumns == 0 ? "at" : "symbol") + "' is missing");
  }
}

CTickFile::Column CTickFile::ColumnOf(std::string_view name) const {
  if (name == "at") {
    return {ColumnKind::kAt, {}};
  }
  if (name == "symbol") {
    return {ColumnKind::kSymbol, {}};
  }
  std::vector<std::string_view> known = {"at", "symbol"};
  for (const QuoteWord& word : QuoteWords()) {
    if (word.word == name) {
      return {ColumnKind::kWord, word};
    }
    known.push_back(word.word);
  }
  const std::string nearest = NearestWord(name, known);
  Fail("unknown column '" + std::string(name) + "'" +
       (nearest.empty() ? "" : "; did you mean '" + nearest + "'?"));
}

bool CTickFile::Next(Row& row) {
  std::string_view line;
  do {
    if (!m_reader.Next(line)) {
      return false;
    }
  } while (line.empty());

  row.update.Reset();
  const char* cell = line.data();
  const char* const end = cell + line.size();
  for (size_t i = 0; i < m_columns.size(); ++i) {
    const bool isLast = i + 1 == m_columns.size();
    const char* stop = cell;
    while (stop != end && *stop != ',') {
      ++stop;
    }
    if ((stop == end) != isLast) {
      Fail("expected " + std::to_string(m_columns.size()) + " cells, found " +
           (isLast ? "more" : std::to_string(i + 1)));
    }
    ReadCell(m_columns[i], {cell, static_cast<size_t>(stop - cell)}, row);
    cell = stop + 1;
  }
  return true;
}

void CTickFile::ReadCell(const Column& column, std::string_view cell, Row& row) {
  if (column.kind == ColumnKind::kAt) {
    ReadTime(cell, row);
    return;
  }
  if (column.kind == ColumnKind::kSymbol) {
    row.symbol = SymbolIndex(cell);
    return;
  }
  if (cell.empty()) {
    return;
  }
  const QuoteWord& word = column.word;
  switch (word.kind) {
    case QuoteWordKind::kInteger:
      row.update.Set(word.field, Integer(word, cell));
      break;
    case QuoteWordKind::kDecimal:
      row.update.Set(word.field, Decimal(word, cell));
      break;
    case QuoteWordKind::kMcode:
      row.update.mcode = Int32(word, cell);
      break;
    case QuoteWordKind::kTimeFormat:
      row.update.timeFormat = Int32(word, cell);
      break;
    case QuoteWordKind::kBid:
      row.update.best.bid = Decimal(word, cell);
      break;
    case QuoteWordKind::kAsk:
      row.update.best.ask = Decimal(word, cell);
      break;
    case QuoteWordKind::kBidQuantity:
      row.update.best.bidQuantity = Integer(word, cell);
      break;
    case QuoteWordKind::kAskQuantity:
      row.update.best.askQuantity = Integer(word, cell);
      break;
  }
}

void CTickFile::ReadTime(std::string_view cell, Row& row) {
  if (cell != m_lastTimeText || cell.empty()) {
    LocalTime time;
    if (const std::optional<Milliseconds> timeOfDay = ParseTimeOfDay(cell)) {
      time = DateOf(m_lastTime) + *timeOfDay;
    } else if (const std::optional<LocalTime> full = ParseLocalTime(cell)) {
      time = *full;
    } else {
      Fail("'at': expected HH:MM:SS[.mmm] or YYYY-MM-DDTHH:MM:SS[.mmm], found '" + std::string(cell) + "'");
    }
    if (time < m_lastTime) {
      Fail("'at': " + std::string(cell) + " lies before the time of the row above, " + ToText(m_lastTime) +
           "; a row of the next date gives it in full");
    }
    m_lastTime = time;
    m_lastTimeText.assign(cell);
  }
  row.at = m_lastTime;
}

size_t CTickFile::SymbolIndex(std::string_view symbol) {
  if (m_lastSymbol < m_symbols.size() && m_symbols[m_lastSymbol] == symbol) {
    return m_lastSymbol;
  }
  if (symbol.empty()) {
    Fail("'symbol' is empty");
  }
  const auto found = m_symbolIndex.find(symbol);
  if (found != m_symbolIndex.end()) {
    m_lastSymbol = found->second;
  } else {
    m_lastSymbol = m_symbols.size();
    m_symbols.emplace_back(symbol);
    m_symbolIndex.emplace(symbol, m_lastSymbol);
  }
  return m_lastSymbol;
}

int64_t CTickFile::Integer(const QuoteWord& word, std::string_view cell) const {
  int64_t value = 0;
  const auto [stop, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
  if (error != std::errc() || stop != cell.data() + cell.size()) {
    Fail("'" + std::string(word.word) + "': expected an integer, found '" + std::string(cell) + "'");
  }
  return value;
}

int32_t CTickFile::Int32(const QuoteWord& word, std::string_view cell) const {
  const int64_t value = Integer(word, cell);
  if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max()) {
    Fail("'" + std::string(word.word) + "': " + std::string(cell) + " doesn't fit 32 bits");
  }
  return static_cast<int32_t>(value);
}

ScaledValue CTickFile::Decimal(const QuoteWord& word, std::string_view cell) const {
  const std::optional<ScaledValue> value = ParseScaled(cell);
  if (!value) {
    Fail("'" + std::string(word.word) + "': expected a decimal with at most ten places, found '" +
         std::string(cell) + "'");
  }
  return *value;
}

void CTickFile::Fail(const std::string& what) const {
  FailAt(m_reader.Place(), what);
}

}  // namespace iorder

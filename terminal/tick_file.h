#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "terminal/input_file.h"
#include "terminal/local_time.h"
#include "terminal/quote_update.h"
#include "terminal/quote_words.h"

namespace iorder {

/// Streams a table of quotes: a header line with the names of the columns, then rows in the order of their
/// times. Reading a row takes no memory but for a symbol that wasn't seen before. A mistake is an InputError
/// "FILE:LINE: what". Not for several threads at once.
class CTickFile {
 public:
  struct Row {
    LocalTime at;
    size_t symbol = 0;  ///< index into Symbols
    QuoteUpdate update;
  };

  /// Opens the file and reads its header. `date` (a midnight) is that of the first row, if the row names
  /// none.
  CTickFile(const std::string& path, LocalTime date) : CTickFile(CLineReader(path), date) {}
  CTickFile(CLineReader reader, LocalTime date);

  /// The next row; false at the end. `row` is the same object each time.
  bool Next(Row& row);

  /// The symbols so far, in the order of their first rows.
  const std::vector<std::string>& Symbols() const { return m_symbols; }
  FilePlace Place() const { return m_reader.Place(); }
  size_t BytesRead() const { return m_reader.BytesRead(); }

 private:
  enum class ColumnKind { kAt, kSymbol, kWord };
  struct Column {
    ColumnKind kind;
    QuoteWord word;  ///< of kWord
  };
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };

  void ReadHeader();
  Column ColumnOf(std::string_view name) const;
  void ReadCell(const Column& column, std::string_view cell, Row& row);
  void ReadTime(std::string_view cell, Row& row);
  size_t SymbolIndex(std::string_view symbol);
  int64_t Integer(const QuoteWord& word, std::string_view cell) const;
  int32_t Int32(const QuoteWord& word, std::string_view cell) const;
  ScaledValue Decimal(const QuoteWord& word, std::string_view cell) const;
  [[noreturn]] void Fail(const std::string& what) const;

  CLineReader m_reader;
  std::vector<Column> m_columns;
  std::vector<std::string> m_symbols;
  std::unordered_map<std::string, size_t, TextHash, std::equal_to<>> m_symbolIndex;
  size_t m_lastSymbol = 0;
  std::string m_lastTimeText;  ///< rows of one moment stand together, so most times are read once
  LocalTime m_lastTime;
};

}  // namespace iorder

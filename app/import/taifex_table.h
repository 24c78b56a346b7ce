#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/import/taifex_series.h"
#include "app/import/taifex_session.h"
#include "terminal/input_file.h"

namespace iorder {

/// What a column of the exchange's tables holds.
enum class TaifexColumn { kDate, kTime, kProduct, kExpiry, kStrike, kRight, kPrice, kQuantity, kCount };

/// One of the exchange's tables, row by row, with readers for its values. It knows two forms by their first
/// line: English column names, and the exchange's own form (Big5, fields padded with blanks, a row of dashes
/// below the names). What doesn't read raises CImportError at its line.
class CTaifexTable {
 public:
  /// Trades of options, trades of futures, or the list of option series.
  enum class Kind { kOptionTrades, kFutureTrades, kOptionSeries };

  CTaifexTable(const std::filesystem::path& path, Kind kind);

  /// Goes on to the next row. False behind the last one.
  bool Next();

  /// The exchange's own form: its rows stand by series, and in order of time only within each.
  bool IsOriginalForm() const { return m_original; }
  /// Of the current row, from 1.
  size_t LineNumber() const { return m_lines.Place().line; }
  /// Bytes read so far, after unpacking.
  uint64_t BytesRead() const { return m_lines.BytesRead(); }
  /// Raises CImportError at the current row.
  [[noreturn]] void Fail(const std::string& what, const std::string& expected) const;

  std::string_view Text(TaifexColumn column) const;
  LocalTime Time() const;
  /// The series of the row; none for a product other than the index options and futures, and for a spread.
  std::optional<TaifexSeries> Series() const;
  ScaledValue Price() const;
  int64_t Quantity() const;

 private:
  void ReadHeader();
  int64_t Number(TaifexColumn column, int64_t lowest, int64_t highest) const;
  ScaledValue Decimal(TaifexColumn column) const;
  [[noreturn]] void FailAt(TaifexColumn column, const std::string& expected) const;

  CLineReader m_lines;
  Kind m_kind;
  bool m_original = false;
  std::vector<std::string_view> m_fields;
  size_t m_columnCount = 0;
  /// Where each column stands in a row.
  size_t m_place[static_cast<size_t>(TaifexColumn::kCount)] = {};
};

}  // namespace iorder

#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/output_file.h"
#include "terminal/local_time.h"

namespace iorder {

/// One row of the table SymbolSearch.
struct ListedSymbol {
  std::string symbol;
  std::string type;        ///< O, F
  std::string searchName;  ///< the strike, or the month of a future
  std::string expiryDate;  ///< yyyymmdd
  std::string product;
};

/// What a series shows before it trades.
struct ListedSeries {
  std::string symbol;
  int64_t endDate = 0;         ///< yyyymmdd; 0: none
  std::string referencePrice;  ///< decimal, for the price types "R", "P" and "Y"; empty: none
};

/// Writes the lines of a day file that describe a market before it opens. Raises what COutputFile raises.
class CDayWriter {
 public:
  using Fields = std::vector<std::pair<std::string, std::string>>;

  /// Writes the head. Both moments are local times of Asia/Taipei. `fill` says how orders are filled
  /// ("touch"); empty: nobody answers them by itself.
  CDayWriter(const std::filesystem::path& path, LocalTime start, LocalTime end, std::string_view fill);

  void Note(std::string_view text);
  void Settings(std::string_view path, std::string_view text);
  void Symbol(const ListedSymbol& row);
  /// A record with text fields.
  void Record(std::string_view name, const Fields& fields);
  /// The record "Security.Info": for each product ("ND.O.TWF.TX") the JSON object of its attributes.
  void SecurityInfo(const Fields& attributesOfProducts);
  /// One connected account.
  void Account(std::string_view broker, std::string_view account);
  void Series(const ListedSeries& series);
  /// The tick file, by its path relative to the day file.
  void Ticks(std::string_view path);
  void Commit();

 private:
  template <typename Fill>
  void Line(Fill&& fill);

  COutputFile m_file;
};

}  // namespace iorder

#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "app/happening.h"
#include "app/output_file.h"

namespace iorder {

/// The tables of a folder, in this order: orders, fills, positions, profit.
std::array<std::filesystem::path, 4> TableFiles(const std::filesystem::path& folder);

/// A day's happenings as tables of comma-separated values in one folder: orders.csv, fills.csv, positions.csv
/// and profit.csv, each with a first line that names the columns. Times are local, prices and money decimals.
/// The files appear with Commit; what can't be written is an InputError.
class CDayTables {
 public:
  /// Makes the folder if it isn't there.
  explicit CDayTables(const std::filesystem::path& folder);

  /// Raises nothing: what can't be written shows with Commit.
  void Add(const std::string& at, const Happening& happening);
  void Commit();

 private:
  explicit CDayTables(const std::array<std::filesystem::path, 4>& files);
  void Write(const std::string& at, const Happening& happening);

  std::string m_error;
  COutputFile m_orders;
  COutputFile m_fills;
  COutputFile m_positions;
  COutputFile m_profit;
};

}  // namespace iorder

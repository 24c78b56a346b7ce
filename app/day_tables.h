#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/group_order_tables.h"
#include "app/happening.h"
#include "app/output_file.h"

namespace iorder {

/// The tables of a folder.
std::vector<std::filesystem::path> TableFiles(const std::filesystem::path& folder);

/// A day's happenings as tables of comma-separated values in one folder: orders.csv, fills.csv, positions.csv
/// and profit.csv, and those of CGroupOrderTables; each with a first line that names the columns. Times are
/// local, prices and money decimals. The files appear with Commit; what can't be written is an InputError.
class CDayTables {
 public:
  /// Makes the folder if it isn't there.
  explicit CDayTables(const std::filesystem::path& folder);

  /// Raises nothing: what can't be written shows with Commit.
  void Add(const std::string& at, const Happening& happening);
  void Commit();

 private:
  void Write(const std::string& at, const Happening& happening);

  std::string m_error;
  COutputFile m_orders;
  COutputFile m_fills;
  COutputFile m_positions;
  COutputFile m_profit;
  CGroupOrderTables m_groupOrders;
};

}  // namespace iorder

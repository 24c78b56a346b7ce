#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "app/happening.h"
#include "app/output_file.h"

namespace iorder {

/// A day's group orders as tables of comma-separated values in one folder: cycles.csv, legs.csv (of each
/// cycle) and children.csv (each of their states), as CDayTables has them.
class CGroupOrderTables {
 public:
  static std::array<std::filesystem::path, 3> Files(const std::filesystem::path& folder);

  explicit CGroupOrderTables(const std::array<std::filesystem::path, 3>& files);

  /// Raises InputError for what can't be written.
  void Write(const std::string& at, const Happening& happening);
  void Commit();

 private:
  void Write(const std::string& at, const GroupCycleMade& cycle);
  void Write(const std::string& at, const GroupLegChosen& leg);
  void WriteChild(const std::string& at, const GroupOrderName& order, const std::string& child,
                  const std::string& state, size_t live, bool fails);

  COutputFile m_cycles;
  COutputFile m_legs;
  COutputFile m_children;
};

}  // namespace iorder

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/run_day.h"
#include "terminal/day.h"
#include "terminal/expectation.h"

namespace iorder {

/// A day with what its trace must show. It is read once and may then be run by several threads at the same
/// time.
class CDayCase {
 public:
  /// Reads the day and the expectation file beside it. Every mistake is an InputError, a missing expectation
  /// file too.
  explicit CDayCase(const std::string& dayPath);

  const std::string& Path() const { return m_day.path; }
  /// A day that a real clock can't show says so in a line {"note": "virtual only: reason"}.
  bool IsVirtualOnly() const { return m_virtualOnly; }

  /// Runs the day. None if all that was expected holds, the run had no errors, and no fault showed that the
  /// expectations don't name; else the report, with an end of line behind each line.
  std::optional<std::string> Run(const RunOptions& options) const;

 private:
  Day m_day;
  CExpectations m_expectations;
  bool m_virtualOnly;
  bool m_namesFaults;
};

/// The day files that a path stands for, in order: the path itself, or, in a folder and all folders below,
/// those with an expectation file beside them. A path without any is an InputError.
std::vector<std::string> FindDays(const std::filesystem::path& path);

}  // namespace iorder

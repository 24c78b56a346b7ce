#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/input_file.h"
#include "terminal/local_time.h"
#include "terminal/trace_pattern.h"

namespace iorder {

class IExpectation;

/// What a trace must show, read from an expectation file.
class CExpectations {
 public:
  /// Reads and checks the whole file; a mistake is an InputError "FILE:LINE: what".
  explicit CExpectations(const std::string& path) : CExpectations(CLineReader(path)) {}
  explicit CExpectations(CLineReader reader);
  ~CExpectations();

  /// Holds all lines against a trace (its text, as CTraceText keeps it). None if they all hold; else the
  /// report on the first that doesn't: where it stands, what was looked for, and the trace lines around.
  std::optional<std::string> Check(std::string_view trace) const;

  /// The expectation file beside a day file: "a.day.jsonl" has "a.expect.jsonl" (day file packed or not).
  /// None if the name isn't that of a day file.
  static std::optional<std::string> PathFor(const std::string& dayPath);

 private:
  std::string m_path;
  std::vector<std::unique_ptr<IExpectation>> m_lines;
};

}  // namespace iorder

#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "terminal/trace_pattern.h"

namespace iorder {

/// Where the check of a trace stands: lines before `next` are behind it.
struct TraceSearch {
  const std::vector<CTraceLine>& lines;
  size_t next = 0;
  PatternNames names;
};

/// Why a line of an expectation file doesn't hold.
struct ExpectationFailure {
  std::string what;
  size_t around = 0;            ///< index of the trace line where it was looked for
  std::vector<size_t> nearest;  ///< further trace lines worth a look
};

/// One line of an expectation file.
class IExpectation {
 public:
  virtual ~IExpectation() = default;
  /// Goes on with the search, or says why it doesn't hold.
  virtual std::optional<ExpectationFailure> Check(TraceSearch& search) const = 0;

  std::string text;  ///< as it is written
  size_t line = 0;   ///< of the file, from 1
};

/// Reads one line; none for a note. `names` are the names that the lines above have given runs to, and gets
/// those of this line. A mistake is an InputError at `place`.
std::unique_ptr<IExpectation> ReadExpectation(const std::string& text, const FilePlace& place,
                                              std::set<std::string>& names);

}  // namespace iorder

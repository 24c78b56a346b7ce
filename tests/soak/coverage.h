#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// What has happened in made days, by kind: a soak in which a kind never happens shows nothing of it.
class CCoverage {
 public:
  CCoverage();

  void OnStep(const TraceStep& step);
  void Add(const CCoverage& other);
  void Count(const std::string& kind, int64_t times = 1) { m_counts[kind] += times; }

  /// One line per kind.
  std::string Table() const;
  /// The kinds that never happened, with a blank before each.
  std::string Missing() const;

 private:
  std::map<std::string, int64_t> m_counts;
};

}  // namespace iorder::testing

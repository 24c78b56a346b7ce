#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// A rule that a trace breaks.
struct Violation {
  std::string rule;
  LocalTime at;
  std::string what;
};

using Violations = std::vector<Violation>;

/// Holds one rule against the events of a trace, in their order. It knows the trace and what the day file
/// says, nothing of the engine.
///
/// Threads of the engine race within one moment: what one of them does may show before or behind what another
/// does in the same millisecond, as the runtime drew it. A rule that two threads are part of is therefore
/// held when the moment is over, and allows what either order gives. What one thread does is held in its
/// order.
class CChecker {
 public:
  CChecker(std::string rule, Violations& violations) : m_rule(std::move(rule)), m_violations(violations) {}
  virtual ~CChecker() = default;
  CChecker(const CChecker&) = delete;
  CChecker& operator=(const CChecker&) = delete;

  /// The word by which a day can leave the rule out.
  const std::string& Rule() const { return m_rule; }

  virtual void OnStep(const TraceStep& step) = 0;
  /// All of a millisecond has been seen.
  virtual void OnMomentEnd(LocalTime /*at*/) {}

 protected:
  void Complain(LocalTime at, std::string what) { m_violations.push_back({m_rule, at, std::move(what)}); }

 private:
  const std::string m_rule;
  Violations& m_violations;
};

}  // namespace iorder::testing

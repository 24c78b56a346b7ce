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
  uint32_t byInfoOf = 0;  ///< it goes by the order info of that strategy, if it names one
};

using Violations = std::vector<Violation>;

/// What is posted to the thread of the batches may have to wait for so long: it looks for quotes in between.
inline constexpr Milliseconds kLongestWait{3000};

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
  /// The same for what goes by a strategy's order info: void if a command gives it another one in this
  /// moment, since either may have counted.
  void ComplainByInfo(LocalTime at, uint32_t strategy, std::string what) {
    m_violations.push_back({m_rule, at, std::move(what), strategy});
  }

 private:
  const std::string m_rule;
  Violations& m_violations;
};

}  // namespace iorder::testing

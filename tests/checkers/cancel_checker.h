#pragma once

#include <map>
#include <string>

#include "tests/checkers/checker.h"

namespace iorder::testing {

/// A cancel names an order that works, as far as reports of the present batch have told: its last ExecType is
/// 0 or 6, or was so in the same moment. A strategy forgets the reports of earlier batches and runs.
class CCancelChecker : public CChecker {
 public:
  explicit CCancelChecker(Violations& violations) : CChecker("cancels", violations) {}

  void OnStep(const TraceStep& step) override;

 private:
  struct Report {
    int64_t execType = -1;
    LocalTime workedUntil;  ///< the moment in which it ceased to work
    bool isWorking = false;

    void Become(bool working, LocalTime at);
  };

  void Forget(uint32_t strategy, LocalTime at);
  void OnCancel(const TraceStep& step);

  std::map<uint32_t, std::map<std::string, Report>> m_reports;
  std::map<std::string, uint32_t> m_sending;  ///< by thread: whose cancel comes next
};

}  // namespace iorder::testing

#include "tests/checkers/end_checker.h"

#include <fmt/format.h>

namespace iorder::testing {
namespace {

constexpr Milliseconds kStartsFor{1100};

}  // namespace

void CEndChecker::OnStep(const TraceStep& step) {
  if (step.LineStarts("Wait Reset.")) {
    OnEnd(step, step.strategy, "its stop time", false);
  } else if (step.LineStarts("Stop.")) {
    OnEnd(step, step.strategy, "a stop command", false);
  } else if (step.LineStarts("DoClosePos. bByProfit=1")) {
    OnEnd(step, step.strategy, "its limit", true);
  } else if (step.LineStarts("Reset. ")) {
    m_ends[step.strategy] = {};
    if (step.thread == kCommandThread) m_started[step.strategy] = step.at;
  } else if (step.LineStarts("OnReportUpdate. ")) {
    OnReport(step);
  } else if (step.LineStarts("NewOrder") && FieldText(step.line, "SIDE") == "B") {
    const End& end = m_ends[step.strategy];
    const LocalTime until = end.byLimit ? end.at + kLongestWait : end.at;
    if (end.hasEnded && step.at > until)
      Complain(step.at, fmt::format("buys after {}: {}", end.what, step.line));
  }
}

void CEndChecker::OnEnd(const TraceStep& step, uint32_t strategy, const char* what, bool byLimit) {
  if (step.at - m_started[strategy] < kStartsFor) return;
  m_ends[strategy] = {.hasEnded = true, .byLimit = byLimit, .at = step.at, .what = what};
}

void CEndChecker::OnReport(const TraceStep& step) {
  End& end = m_ends[step.strategy];
  const int64_t execType = FieldInteger(step.line, "lExecType");
  if (end.byLimit || (execType >= 3 && execType <= 7)) end.hasEnded = false;
}

}  // namespace iorder::testing

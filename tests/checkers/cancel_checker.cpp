#include "tests/checkers/cancel_checker.h"

#include <fmt/format.h>

#include <utility>

namespace iorder::testing {

void CCancelChecker::Report::Become(bool working, LocalTime at) {
  if (isWorking && !working) workedUntil = at;
  isWorking = working;
}

void CCancelChecker::OnStep(const TraceStep& step) {
  if (step.LineStarts("OnReportUpdate. ")) {
    Report& report = m_reports[step.strategy][FieldText(step.line, "strReportID").value_or("")];
    report.execType = FieldInteger(step.line, "lExecType");
    report.Become(report.execType == 0 || report.execType == 6, step.at);
  } else if (step.LineStarts("Reset. ") || (step.LineStarts("DoPlaceOrder. arSymbol") &&
                                            FieldInteger(step.line, "arSymbol.GetCount()") > 0)) {
    Forget(step.strategy, step.at);
  } else if (step.LineStarts("CancelOrder. ")) {
    m_sending[step.thread] = step.strategy;
  } else if (step.IsCommand(kCancelOrder)) {
    OnCancel(step);
  }
}

void CCancelChecker::Forget(uint32_t strategy, LocalTime at) {
  for (auto& [id, report] : m_reports[strategy]) report.Become(false, at);
}

void CCancelChecker::OnCancel(const TraceStep& step) {
  const uint32_t strategy = std::exchange(m_sending[step.thread], 0);
  const std::string id = FieldText(step.text, "REPORTID").value_or("");
  const auto& reports = m_reports[strategy];
  const auto found = reports.find(id);
  if (found == reports.end()) {
    Complain(step.at, fmt::format("cancels '{}', of which no report has told", id));
  } else if (!found->second.isWorking && found->second.workedUntil != step.at) {
    Complain(step.at, fmt::format("cancels '{}', whose last ExecType is {}", id, found->second.execType));
  }
}

}  // namespace iorder::testing

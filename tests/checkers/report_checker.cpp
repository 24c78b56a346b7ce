#include "tests/checkers/report_checker.h"

#include <fmt/format.h>

#include <charconv>
#include <utility>

#include "tests/checkers/position_model.h"

namespace iorder::testing {
namespace {

constexpr int64_t kOpen = 1;
constexpr int64_t kClose = 2;
constexpr int64_t kCancel = 3;
constexpr int64_t kCancelled = 8;
constexpr std::string_view kAsked = "CancelOrder. REPORTID=";
constexpr std::string_view kNotAsked = "CancelOrder Fail. Account not Ready. ";

int64_t ResultOf(int64_t action, int64_t execType) {
  if (action == kOpen) return execType == 10 || execType == 21 ? -1 : execType == kCancelled ? 3 : 1;
  if (action == kClose) return execType == 3 ? 2 : execType == 0 || execType == 6 ? 1 : -2;
  return 3;
}

}  // namespace

void CReportChecker::OnStep(const TraceStep& step) {
  if (step.IsCommand(kNewOrder)) {
    m_userKeys.push_back(FieldText(step.text, "USERKEY2").value_or(""));
  } else if (step.LineStarts("NewOrder") && FieldText(step.line, "SIDE") == "B") {
    m_batches[step.strategy] = FieldText(step.line, "USERKEY2").value_or("");
  } else if (const JsonNode* const body = BodyOf(step, "Order")) {
    const int64_t result = IntegerOf(*body, "Result");
    const int64_t action = IntegerOf(*body, "Action");
    const bool isPlain = body->Find("Date") == nullptr;
    const bool isRefusal = result == -101;
    if (!isRefusal) m_tells[step.thread] = action == kCancel && result == 0 && !isPlain;
    if (step.thread == kBatchThread && isPlain && !isRefusal)
      m_results[step.strategy] = {TextOf(*body, "Symbol"), result, action, true};
  } else if (step.LineStarts(kAsked)) {
    NoteAsked(step, step.line.substr(kAsked.size(), step.line.size() - kAsked.size() - 1));
  } else if (step.LineStarts(kNotAsked)) {
    NoteAsked(step, step.line.substr(kNotAsked.size(), step.line.size() - kNotAsked.size() - 1));
  } else if (step.LineStarts("OnReportUpdate. ")) {
    OnReport(step);
  }
}

void CReportChecker::NoteAsked(const TraceStep& step, const std::string& report) {
  if (std::exchange(m_tells[step.thread], false)) m_asked[step.strategy].try_emplace(report, step.at);
}

/// The n-th order that was sent has the reports "Rn".
void CReportChecker::CheckBatch(const TraceStep& step, const std::string& report) {
  size_t number = 0;
  if (!report.starts_with('R')) return;
  std::from_chars(report.data() + 1, report.data() + report.size(), number);
  if (number == 0 || number > m_userKeys.size()) return;
  if (m_userKeys[number - 1] != m_batches[step.strategy])
    Complain(step.at, "a report of another batch is followed: " + step.line);
}

void CReportChecker::OnReport(const TraceStep& step) {
  if (step.thread != kBatchThread) Complain(step.at, "a report is handled on " + step.thread);
  const ToldReport report = ReadReport(step.line);
  CheckBatch(step, report.report);
  const Result told = std::exchange(m_results[step.strategy], {});
  const int64_t expected = ResultOf(report.action, report.execType);
  if (!told.isTold || told.symbol != report.symbol || told.action != report.action || told.result != expected)
    Complain(step.at, fmt::format("a report of {} with ExecType {} is told as action {}, result {} of '{}'",
                                  report.symbol, report.execType, told.action, told.result, told.symbol));
  if (report.action < kOpen || report.action > kCancel)
    Complain(step.at, fmt::format("a report has the action {}", report.action));
  if (report.action == kCancel && report.execType != kCancelled)
    Complain(step.at, fmt::format("a report with ExecType {} is a confirmation", report.execType));
  if (report.execType == kCancelled)
    m_cancels.push_back({step.strategy, report.report, report.action == kCancel});
}

void CReportChecker::OnMomentEnd(LocalTime at) {
  for (const Cancel& cancel : m_cancels) {
    const auto& asked = m_asked[cancel.strategy];
    const auto found = asked.find(cancel.report);
    const bool wasAsked = found != asked.end();
    const bool wasAskedBefore = wasAsked && found->second < at;
    if (cancel.isConfirmation && !wasAsked)
      Complain(at, "the cancel of '" + cancel.report + "' is confirmed and wasn't told");
    if (!cancel.isConfirmation && wasAskedBefore)
      Complain(at, "the cancel of '" + cancel.report + "' was told and isn't confirmed as one");
  }
  m_cancels.clear();
}

}  // namespace iorder::testing

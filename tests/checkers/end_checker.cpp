#include "tests/checkers/end_checker.h"

#include <fmt/format.h>

namespace iorder::testing {
namespace {

constexpr Milliseconds kStartsFor{1100};

}  // namespace

void CEndChecker::OnStep(const TraceStep& step) {
  OnEndingLine(step);
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

void CEndChecker::OnEndingLine(const TraceStep& step) {
  const bool byCommand = step.LineStarts("Stop.");
  if (byCommand || step.LineStarts("Wait Reset."))
    m_endings.push_back({.strategy = step.strategy, .thread = step.thread, .byCommand = byCommand});
  for (Ending& ending : m_endings) {
    if (ending.strategy != step.strategy || ending.thread != step.thread) continue;
    ending.cancels |= step.LineStarts("DoCancelOrderOpen Done.");
    ending.closes |= step.LineStarts("DoClosePos. bByProfit=0");
  }
}

void CEndChecker::OnMomentEnd(LocalTime at) {
  for (const Ending& ending : m_endings) CheckEnding(at, ending);
  m_endings.clear();
}

/// On the thread of a stop command's ending other cancels may follow in the same moment.
void CEndChecker::CheckEnding(LocalTime at, const Ending& ending) {
  const KnownStrategy* const strategy = m_book.Find(ending.strategy);
  if (strategy == nullptr || (ending.byCommand && strategy->stopIsUnclear)) return;
  const OrderInfo& info = strategy->info;
  const bool mustCancel = ending.byCommand ? strategy->stopCancels : info.stopCancels;
  const bool mustClose = ending.byCommand ? strategy->stopCloses : info.stopCloses;
  if (mustCancel && !ending.cancels)
    ComplainByInfo(at, ending.strategy, "an ending that cancels doesn't: " + info.key);
  if (mustClose != ending.closes)
    ComplainByInfo(at, ending.strategy, "an ending closes against its flag, or doesn't: " + info.key);
  if (!mustCancel && ending.cancels && !ending.byCommand)
    ComplainByInfo(at, ending.strategy, "an ending that doesn't cancel does: " + info.key);
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

#include "tests/checkers/state_checker.h"

#include <fmt/format.h>

#include <algorithm>

namespace iorder::testing {
namespace {

constexpr Milliseconds kStartsFor{1100};
constexpr std::string_view kTold = "<CIntelligentOrder>[OpenLottery] CalPositionProfit.ClosPos. ";

std::string ListOf(const std::set<int64_t>& states) {
  std::string list;
  for (const int64_t state : states) list += (list.empty() ? "" : ", ") + std::to_string(state);
  return list;
}

int64_t StateOf(const TraceStep& step) {
  return FieldInteger(step.line, "m_lStatus");
}

}  // namespace

int64_t CStateChecker::Batch::Count(int64_t execType) const {
  return std::count_if(execTypes.begin(), execTypes.end(),
                       [execType](const auto& report) { return report.second == execType; });
}

void CStateChecker::Add(Course& course, const TraceStep& step, Access::Kind kind, int64_t state,
                        bool completes) {
  course.accesses.push_back({kind, step.thread, state, step.line, completes});
}

void CStateChecker::OnStep(const TraceStep& step) {
  if (step.IsLog() && step.text.starts_with(kTold)) return OnTold(step);
  if (step.strategy != 0) OnLine(step, m_courses[step.strategy]);
}

void CStateChecker::OnTold(const TraceStep& step) {
  const std::string key = "OpenLottery_" + FieldText(step.text, "strStrategyID").value_or("") + "_" +
                          FieldText(step.text, "m_strStrStrategySN").value_or("");
  const KnownStrategy* const strategy = m_book.FindKey(key);
  if (strategy == nullptr) return;
  Course& course = m_courses[strategy->number];
  if (course.limits++ == 0) course.limitsUntil = step.at + kLongestWait;
}

void CStateChecker::OnLine(const TraceStep& step, Course& course) {
  if (step.LineStarts("Reset. ")) {
    Add(course, step, Access::Kind::kWrite, 0);
    course.batch = {};
    if (step.thread == kCommandThread) course.startsUntil = step.at + kStartsFor;
  } else if (step.LineStarts("TimeStamp=")) {
    Add(course, step, Access::Kind::kWrite, 1);
  } else if (step.LineStarts("Start. ")) {
    Add(course, step, Access::Kind::kRead, StateOf(step));
    if (StateOf(step) == 1) Add(course, step, Access::Kind::kWrite, 2);
  } else if (step.LineStarts("Wait Reset.")) {
    course.isEnding = true;
    course.endingThread = step.thread;
  } else if (step.LineStarts("Stop.")) {
    course.isStopping = true;
  } else if (step.LineStarts("OnReportUpdate. ")) {
    Finish(step, course);
    OnReport(step, course);
  } else if (step.LineStarts("DoPlaceOrder") || step.LineStarts("NewOrder")) {
    OnBatch(step, course);
  } else if (step.LineStarts("DoCancelOrderOpen")) {
    OnCancels(step, course);
  } else if (step.LineStarts("DoClosePos. bByProfit=1")) {
    course.isLimited = false;
  }
}

/// What a stop command set last, as soon as its thread goes on to something else.
void CStateChecker::Finish(const TraceStep& step, Course& course) {
  if (!course.isStopping) return;
  Add(course, step, Access::Kind::kWrite, -2);
  course.isStopping = false;
}

void CStateChecker::OnReport(const TraceStep& step, Course& course) {
  const int64_t execType = FieldInteger(step.line, "lExecType");
  course.batch.execTypes[FieldText(step.line, "strReportID").value_or("")] = execType;
  const int64_t state = StateOf(step);
  const bool isOpen = FieldInteger(step.line, "lAction") == 1;
  const int64_t awaited = course.batch.Awaited();
  const bool completes = isOpen && ((state == 4 && course.batch.Count(0) == awaited) ||
                                    (state == 6 && course.batch.Count(8) == awaited));
  Access::Kind kind = Access::Kind::kRead;
  if (execType >= 3 && execType <= 7) kind = Access::Kind::kFill;
  if (execType == 10 || execType == 21) kind = Access::Kind::kReject;
  Add(course, step, kind, state, completes);
}

void CStateChecker::OnBatch(const TraceStep& step, Course& course) {
  if (step.thread != kBatchThread) {
    if (step.LineStarts("DoPlaceOrder")) Complain(step.at, "a batch is built on " + step.thread);
    return;
  }
  if (step.LineStarts("DoPlaceOrder. m_lStatus")) {
    course.lastBatch = step.at;
    Finish(step, course);
    if (course.makingRoom.erase(step.thread) != 0) Add(course, step, Access::Kind::kWrite, 6);
    Add(course, step, Access::Kind::kRead, StateOf(step));
    course.placed = StateOf(step) == 2 || StateOf(step) == 6 ? 0 : -1;
  } else if (step.LineStarts("DoPlaceOrder. arSymbol")) {
    if (course.placed < 0) Complain(step.at, "a batch begins in another state than 2 and 6");
    const int64_t added = FieldInteger(step.line, "arSymbol.GetCount()");
    if (added <= 0) return;
    course.batch.ordered += added;
    course.batch.execTypes.clear();
    Add(course, step, Access::Kind::kWrite, 3);
  } else if (step.LineStarts("NewOrderOpen Fail. ")) {
    course.batch.failed.insert(FieldText(step.line, "Symbol").value_or(""));
  } else if (step.LineStarts("NewOrder. ") && FieldText(step.line, "SIDE") == "B") {
    ++course.placed;
  } else if (step.LineStarts("DoPlaceOrder Done. ")) {
    const int64_t state = course.placed > 0 ? 4 : 2;
    if (StateOf(step) != state)
      Complain(step.at, fmt::format("a batch of {} orders ends in state {}", course.placed, StateOf(step)));
    Add(course, step, Access::Kind::kWrite, state);
  }
}

void CStateChecker::OnCancels(const TraceStep& step, Course& course) {
  if (step.LineStarts("DoCancelOrderOpen Done. ")) {
    if (course.makingRoom.erase(step.thread) != 0) Add(course, step, Access::Kind::kWrite, 6);
    Add(course, step, Access::Kind::kRead, StateOf(step));
    return;
  }
  const int64_t state = StateOf(step);
  const bool ends = step.thread == kBatchThread ? course.isStopping : course.isEnding;
  // A stop that came before it in the same moment is over then, and has left -2 behind.
  const bool byLimit = step.thread == kBatchThread && state == -1 && course.limits > 0;
  course.isLimited = byLimit;
  if (byLimit && course.isStopping) {
    course.accesses.push_back({Access::Kind::kWrite, step.thread, -2, "", false});
    course.isStopping = false;
  }
  // A stop command that doesn't cancel may be over by now.
  const bool mayBeStopped = step.thread == kBatchThread && course.isStopping;
  Add(course, step,
      byLimit        ? Access::Kind::kLimit
      : mayBeStopped ? Access::Kind::kStopped
                     : Access::Kind::kRead,
      state);
  if (byLimit) --course.limits;
  // In any other state room isn't made, and the line stays alone.
  if (ends || byLimit || state == 2 || state == 8) course.makingRoom.insert(step.thread);
}

void CStateChecker::OnMomentEnd(LocalTime at) {
  for (auto& [number, course] : m_courses) {
    const KnownStrategy* const strategy = m_book.Find(number);
    if (strategy != nullptr && strategy->goneAt) {
      course.limits = 0;
      course.batchDue.reset();
    }
    if (!course.accesses.empty() || course.isEnding || course.isStopping || course.limits > 0 ||
        course.batchDue || course.startsUntil)
      Settle(at, course);
  }
}

void CStateChecker::Settle(LocalTime at, Course& course) {
  if (course.startsUntil && at > *course.startsUntil) course.startsUntil.reset();
  if (course.isStopping)
    course.accesses.push_back({Access::Kind::kWrite, std::string(kBatchThread), -2, "", false});
  if (course.isEnding) course.accesses.push_back({Access::Kind::kWrite, course.endingThread, -1, "", false});
  course.isStopping = course.isEnding = course.isLimited = false;
  course.makingRoom.clear();

  // What each thread sets in this moment, whenever that is.
  std::map<std::string, States> writes;
  for (const Access& access : course.accesses) {
    States& own = writes[access.thread];
    if (access.kind == Access::Kind::kWrite) own.insert(access.state);
    if (access.kind == Access::Kind::kFill) own.insert(8);
    if (access.kind == Access::Kind::kReject) own.insert(-3);
    if (access.kind == Access::Kind::kLimit) own.insert(-1);
    if (access.completes) own.insert(2);
  }
  if (course.startsUntil) writes["a start"].insert(2);

  std::map<std::string, States> latest;  // what each thread knows
  std::set<std::string> writers;
  States all = course.states;
  for (const Access& access : course.accesses) {
    States others;
    for (const auto& [thread, states] : writes) {
      if (thread != access.thread) others.insert(states.begin(), states.end());
    }
    all.insert(others.begin(), others.end());
    States own = latest.contains(access.thread) ? latest[access.thread] : course.states;
    States allowed = own;
    allowed.insert(others.begin(), others.end());
    switch (access.kind) {
      case Access::Kind::kWrite:
        latest[access.thread] = {access.state};
        writers.insert(access.thread);
        continue;
      case Access::Kind::kFill: {
        const bool wasRejected = allowed.contains(-3);
        const bool wasOther =
            std::any_of(allowed.begin(), allowed.end(), [](int64_t state) { return state != -3; });
        allowed = others;
        if (wasRejected) allowed.insert(-3);
        if (wasOther) allowed.insert(8);
        writers.insert(access.thread);
        break;
      }
      case Access::Kind::kReject:
        allowed = others;
        allowed.insert(-3);
        writers.insert(access.thread);
        break;
      case Access::Kind::kLimit:
        allowed.insert(-1);
        writers.insert(access.thread);
        break;
      case Access::Kind::kStopped:
        allowed.insert(-2);
        break;
      case Access::Kind::kRead:
        break;
    }
    if (!allowed.contains(access.state))
      Complain(at, fmt::format("the state is {} where only {} is possible: {}", access.state, ListOf(allowed),
                               access.line));
    latest[access.thread] = {access.state};
    if (access.completes) {
      if (others.empty() && access.state == 6) course.batchDue = at;
      latest[access.thread] = others.empty() ? States{2} : States{2, access.state};
      writers.insert(access.thread);
    }
  }
  for (const auto& [thread, states] : latest) all.insert(states.begin(), states.end());
  // In a run that is over a limit does nothing.
  if (all.contains(-1)) course.limits = 0;
  if (course.limits > 0 && at > course.limitsUntil) {
    Complain(at, "a limit that was told doesn't close out");
    course.limits = 0;
  }

  if (course.batchDue && course.lastBatch >= *course.batchDue) course.batchDue.reset();
  if (course.batchDue && at > *course.batchDue + kLongestWait) {
    Complain(at, "all cancels are confirmed, and no batch follows");
    course.batchDue.reset();
  }

  States next;
  for (const auto& [thread, states] : latest) {
    if (writers.empty() || writers.contains(thread)) next.insert(states.begin(), states.end());
  }
  if (!next.empty()) course.states = std::move(next);
  if (course.startsUntil) course.states.insert(2);
  course.accesses.clear();
}

}  // namespace iorder::testing

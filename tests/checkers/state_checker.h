#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"

namespace iorder::testing {

/// The state of a strategy moves as the rules say and in no other way: each state that the log shows is one
/// to which the events before it lead. A batch begins in state 2 or 6 only, ends in 4 if an order left and in
/// 2 if none did; room is made in state 2 or 8 only; and a limit that a strategy is told of closes it out,
/// unless its run is over.
///
/// Threads set the state without regard to each other, and the last one wins. So the checker keeps the set of
/// states that are possible, and settles each moment when all of it has been seen: a thread may find what it
/// set last itself, or what another one sets in that moment.
class CStateChecker : public CChecker {
 public:
  CStateChecker(const CStrategyBook& book, Violations& violations)
      : CChecker("states", violations), m_book(book) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  using States = std::set<int64_t>;

  struct Access {
    enum class Kind { kRead, kWrite, kFill, kReject, kLimit, kStopped };
    Kind kind = Kind::kRead;
    std::string thread;
    int64_t state = 0;  ///< that the log shows, or that is set
    std::string line;
    bool completes = false;  ///< the report makes a batch complete, so that the state becomes 2
  };
  /// What the reports of a batch add up to.
  struct Batch {
    std::map<std::string, int64_t> execTypes;  ///< by report
    int64_t ordered = 0;                       ///< symbols that the run's batches took
    std::set<std::string> failed;              ///< those that gave up their place

    int64_t Awaited() const { return ordered - static_cast<int64_t>(failed.size()); }
    int64_t Count(int64_t execType) const;
  };
  struct Course {
    States states{-1};
    std::vector<Access> accesses;  ///< of this moment
    Batch batch;
    std::optional<LocalTime> startsUntil;  ///< a start at once may set state 2
    bool isStopping = false;               ///< a stop command is being carried out
    bool isLimited = false;                ///< a limit is being carried out
    bool isEnding = false;                 ///< the stop time is being carried out
    std::string endingThread;
    int64_t limits = 0;                 ///< that it was told of and that haven't shown
    LocalTime limitsUntil;              ///< when they must have
    std::optional<LocalTime> batchDue;  ///< all cancels are confirmed, and since then a batch is due
    LocalTime lastBatch;                ///< the last one was begun, or tried to be
    std::set<std::string> makingRoom;   ///< threads in DoCancelOrderOpen that haven't set 6
    int64_t placed = -1;                ///< orders of the batch that is being built; -1: none is
  };

  void OnLine(const TraceStep& step, Course& course);
  void OnReport(const TraceStep& step, Course& course);
  void OnBatch(const TraceStep& step, Course& course);
  void OnCancels(const TraceStep& step, Course& course);
  void OnTold(const TraceStep& step);
  void Finish(const TraceStep& step, Course& course);
  static void Add(Course& course, const TraceStep& step, Access::Kind kind, int64_t state,
                  bool completes = false);
  void Settle(LocalTime at, Course& course);

  const CStrategyBook& m_book;
  std::map<uint32_t, Course> m_courses;
};

}  // namespace iorder::testing

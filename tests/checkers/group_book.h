#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "terminal/day.h"
#include "tests/checkers/group_cycle.h"
#include "tests/checkers/group_look.h"

namespace iorder::testing {

/// Which group orders there are, which children of them live and when each must look again, worked out from
/// the commands, the announcements and the updates that the engine was given.
///
/// Where two threads act on one strategy id in one millisecond, either may have been first, and which it was
/// decides over what follows. Such an id is unclear from then on: its cycles are still held to what they saw,
/// as long as there is but one order of that id, but no longer to when they come.
class CGroupBook {
 public:
  /// A look that is over, with what it had to lead to.
  struct Cycle {
    GroupLook look;
    std::shared_ptr<const GroupOrder> order;
    WorkedCycle worked;
  };
  /// A look that came or didn't come, against what the children told.
  struct Mistake {
    LocalTime at;
    std::string what;
  };

  explicit CGroupBook(const Day& day);

  void OnStep(const TraceStep& step);
  void OnRead(const BusRead& read);
  /// A new moment: what had to come before it and didn't is a mistake.
  void OnMomentBegin(LocalTime at) { LookForMissed(at - Milliseconds(1)); }
  /// Settles the moment: what has come of it stands in Cycles and Mistakes, until Forget.
  void OnMomentEnd(LocalTime at);
  void Forget();

  const std::vector<Cycle>& Cycles() const { return m_cycles; }
  const std::vector<Mistake>& Mistakes() const { return m_mistakes; }
  /// How often what has happened.
  const std::map<std::string, int64_t>& Counts() const { return m_counts; }

 private:
  using OrderPtr = std::shared_ptr<GroupOrder>;

  struct Timer {
    OrderPtr order;
    LocalTime due;
    LocalTime since;
    int32_t number = 0;
    bool numberIsSure = true;
  };
  /// A look that goes on.
  struct Doing {
    OrderPtr order;  ///< none: it can't be told which
    bool isEntered = false;
  };
  /// An announcement that a thread is at work on.
  struct Announcement {
    std::string record;
    std::map<std::string, Value> fields;
    bool isRead = false;
    bool isDue = false;  ///< it has to be followed
    bool isFollowed = false;
  };
  struct Update {
    std::string record;
    std::map<std::string, Value> fields;
    bool isTold = false;  ///< to a handle that the engine holds
    bool isTaken = false;
  };

  void BeginByCommand(const GroupLook& look);
  void BeginByTimer(const GroupLook& look);
  OrderPtr TakeWaiting(const GroupLook& look, const std::string& id);
  void Enter(const std::string& thread, LocalTime at);
  void Finish(GroupLook look);

  void OnChildRead(const BusRead& read);
  void Announced(const BusRead& read, Announcement& announcement);
  void Updated(const BusRead& read, Update& update);
  void Schedule(const OrderPtr& order, const BusRead& read);
  void Conclude(const std::string& thread, LocalTime at);
  /// Those that had to look at that time, or before, and didn't.
  void LookForMissed(LocalTime at);

  /// Notes that the thread acts on that id now.
  void Touch(const std::string& id, const std::string& thread, LocalTime at);
  bool IsUnclear(const std::string& id) const { return m_unclear.contains(id); }
  void MakeUnclear(const std::string& id);
  void Complain(LocalTime at, const std::string& id, const std::string& what);
  void CountCycle(const Cycle& cycle);

  const std::optional<LocalTime> m_end;
  bool m_timersMayFail = false;   ///< by a fault of the day
  bool m_handlesMayFail = false;  ///< the day announces handles of its own

  CGroupLooks m_looks;
  std::map<std::string, Doing> m_doing;                 ///< by thread
  std::map<std::string, OrderPtr> m_orders;             ///< that have sent, by id
  std::map<std::string, OrderPtr> m_last;               ///< by id: the last that was accepted
  std::map<std::string, int> m_ordersOf;                ///< how many there have been of an id
  std::map<std::string, Timer> m_timers;                ///< by id
  std::set<std::string> m_knownChildren;                ///< by "LevelKey"
  std::map<std::string, Announcement> m_announcements;  ///< by thread
  std::map<std::string, Update> m_updates;              ///< by thread
  std::map<std::string, int> m_followers;               ///< by child record
  std::map<std::string, std::string> m_recordOfKey;     ///< child record, by "LevelKey"
  std::map<std::string, LocalTime> m_leftAt;            ///< by child record
  int32_t m_lastTimer = 3000;
  int32_t m_speed = 0;
  LocalTime m_speedAt;

  std::map<std::string, std::pair<LocalTime, std::string>> m_touched;  ///< by id: when, by which thread
  std::set<std::string> m_unclear;

  std::vector<Cycle> m_cycles;
  std::vector<Mistake> m_mistakes;
  std::map<std::string, int64_t> m_counts;
};

}  // namespace iorder::testing

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/checkers/bus_read.h"
#include "tests/checkers/group_command.h"
#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// One walk of the engine over what a strategy holds: its node, if there is one, and the items that opened.
struct PositionWalk {
  using Item = std::map<std::string, Value>;  ///< the fields that were read

  std::string strategy;
  bool hasNode = false;
  std::vector<Item> items;
};

/// An option that was looked at: its record, and the fields that were read.
struct OptionSeen {
  std::string record;
  bool opened = false;
  std::map<std::string, Value> fields;
};

/// One look of a group order, by its command or by its timer: what the engine was shown, and what it sent.
struct GroupLook {
  LocalTime at;
  std::string thread;
  std::optional<GroupCommand> command;  ///< none: by a timer
  int32_t timer = 0;
  LocalTime lastAt;                 ///< of the last that belongs to it
  bool waits = false;               ///< for an item that doesn't open, and is tried again
  std::vector<PositionWalk> walks;  ///< in their order
  std::vector<OptionSeen> options;  ///< in their order
  std::vector<std::pair<std::string, bool>> settingNames;  ///< asked for, and whether they were there
  std::map<std::string, Value> settings;                   ///< fields of the one that was there
  std::vector<TraceStep> strings;

  bool IsByTimer() const { return timer != 0; }
};

/// Puts together what belongs to one look, thread by thread.
class CGroupLooks {
 public:
  /// The look that has begun with this step, or none.
  GroupLook* OnStep(const TraceStep& step);
  GroupLook* OnRead(const BusRead& read);

  /// The look that goes on on the thread, or none.
  GroupLook* Find(const std::string& thread);
  /// Takes out those that are over with this moment.
  std::vector<GroupLook> TakeFinished(LocalTime at);
  /// Those that a new one on their thread has ended.
  std::vector<GroupLook> TakeEnded() { return std::exchange(m_ended, {}); }

 private:
  GroupLook* Begin(GroupLook look);
  void Note(GroupLook& look, const BusRead& read);
  void NotePosition(GroupLook& look, const BusRead& read);

  struct Course {
    GroupLook look;
    std::map<std::string, size_t> items;    ///< of the last walk, by record
    std::map<std::string, size_t> options;  ///< by record
  };
  std::map<std::string, Course> m_courses;  ///< by thread
  std::vector<GroupLook> m_ended;
};

/// The number in "timer 3001"; 0 for any other thread.
int32_t RecheckTimerOf(const std::string& thread);

}  // namespace iorder::testing

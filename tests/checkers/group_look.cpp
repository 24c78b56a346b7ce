#include "tests/checkers/group_look.h"

#include <charconv>

namespace iorder::testing {
namespace {

constexpr std::string_view kTakenUp = "<CIntelligentOrder>New Intelligent Order : ";
constexpr std::string_view kTimer = "timer ";
constexpr std::string_view kPositions = "STRATEGY.POSITION";
constexpr std::string_view kSettings = "TRADE.EXTENDORDER.SETUP";
constexpr std::string_view kFigures = "OPT.REAL.";
constexpr int32_t kFirstRecheck = 3000;
/// An item that doesn't open, or that is gone by then, is tried again sooner than this.
constexpr Milliseconds kItemPatience{100};

}  // namespace

int32_t RecheckTimerOf(const std::string& thread) {
  int32_t number = 0;
  if (thread.starts_with(kTimer))
    std::from_chars(thread.data() + kTimer.size(), thread.data() + thread.size(), number);
  return number >= kFirstRecheck ? number : 0;
}

GroupLook* CGroupLooks::Begin(GroupLook look) {
  const auto found = m_courses.find(look.thread);
  if (found != m_courses.end()) m_ended.push_back(std::move(found->second.look));
  Course& course = m_courses[look.thread] = {};
  course.look = std::move(look);
  return &course.look;
}

GroupLook* CGroupLooks::Find(const std::string& thread) {
  const auto found = m_courses.find(thread);
  return found != m_courses.end() ? &found->second.look : nullptr;
}

GroupLook* CGroupLooks::OnStep(const TraceStep& step) {
  if (step.IsLog() && step.thread == kCommandThread && step.text.starts_with(kTakenUp)) {
    // Whatever command comes next ends the look of the one before.
    const auto command = ReadGroupCommand(step.text.substr(kTakenUp.size()));
    if (command) return Begin({.at = step.at, .thread = step.thread, .command = command, .lastAt = step.at});
    const auto found = m_courses.find(step.thread);
    if (found == m_courses.end()) return nullptr;
    m_ended.push_back(std::move(found->second.look));
    m_courses.erase(found);
    return nullptr;
  }
  GroupLook* const look = Find(step.thread);
  if (look == nullptr) return nullptr;
  if (step.kind == TraceKind::kOpenRecord && step.record.starts_with(kFigures)) {
    m_courses[step.thread].options[step.record] = look->options.size();
    look->options.push_back({step.record, step.handle != 0, {}});
    look->lastAt = step.at;
  } else if (step.IsCommand(kNewOrder)) {
    look->strings.push_back(step);
    look->lastAt = step.at;
  }
  return nullptr;
}

GroupLook* CGroupLooks::OnRead(const BusRead& read) {
  GroupLook* begun = nullptr;
  GroupLook* look = Find(read.thread);
  const int32_t timer = RecheckTimerOf(read.thread);
  if (look == nullptr && timer != 0 && read.kind == BusRead::Kind::kNodeByName && read.record == kPositions) {
    begun = look = Begin({.at = read.at, .thread = read.thread, .timer = timer, .lastAt = read.at});
  }
  if (look != nullptr) Note(*look, read);
  return begun;
}

void CGroupLooks::Note(GroupLook& look, const BusRead& read) {
  look.lastAt = read.at;
  look.waits = read.kind == BusRead::Kind::kItem && Int32Of(read.value, 0) == 0;
  if (read.record.starts_with(kPositions)) {
    NotePosition(look, read);
  } else if (read.record.starts_with(kFigures) && read.kind == BusRead::Kind::kField) {
    const Course& course = m_courses[read.thread];
    const auto option = course.options.find(read.record);
    if (option != course.options.end()) look.options[option->second].fields[read.name] = read.value;
  } else if (read.record == kSettings && read.kind == BusRead::Kind::kItemByName) {
    look.settingNames.emplace_back(read.name, Int32Of(read.value, 0) != 0);
  } else if (read.record.starts_with(kSettings) && read.kind == BusRead::Kind::kField) {
    look.settings[read.name] = read.value;
  }
}

void CGroupLooks::NotePosition(GroupLook& look, const BusRead& read) {
  Course& course = m_courses[read.thread];
  if (read.kind == BusRead::Kind::kNodeByName) {
    look.walks.push_back({read.name, Int32Of(read.value, 0) != 0, {}});
    course.items.clear();
    // What was opened before is no part of the scan, which follows the last walk.
    look.options.clear();
    course.options.clear();
  } else if (read.kind == BusRead::Kind::kItem && Int32Of(read.value, 0) != 0 && !look.walks.empty()) {
    course.items[read.record + read.name] = look.walks.back().items.size();
    look.walks.back().items.emplace_back();
  } else if (read.kind == BusRead::Kind::kField) {
    const auto item = course.items.find(read.record);
    if (item != course.items.end()) look.walks.back().items[item->second][read.name] = read.value;
  }
}

std::vector<GroupLook> CGroupLooks::TakeFinished(LocalTime at) {
  std::vector<GroupLook> finished;
  for (auto course = m_courses.begin(); course != m_courses.end();) {
    if (course->second.look.waits && at - course->second.look.lastAt < kItemPatience) {
      ++course;
      continue;
    }
    finished.push_back(std::move(course->second.look));
    course = m_courses.erase(course);
  }
  return finished;
}

}  // namespace iorder::testing

#include "tests/checkers/group_book.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace iorder::testing {
namespace {

constexpr int32_t kFirstTimer = 3000;
constexpr int32_t kLastTimer = 9000;
constexpr Milliseconds kRecheckDelay{2000};
constexpr Milliseconds kLeastDelay{50};

bool IsEnd(int32_t execType) {
  return execType == 2 || execType == 3 || execType == 5 || execType == 7 || execType == 8 || execType == 10;
}

bool HasFault(const Day& day, std::initializer_list<FaultAction::Kind> kinds) {
  return std::any_of(day.lines.begin(), day.lines.end(), [&](const DayLine& line) {
    const auto* const fault = std::get_if<FaultAction>(&line.action);
    return fault != nullptr && std::find(kinds.begin(), kinds.end(), fault->kind) != kinds.end();
  });
}

/// Commands are messages too.
bool AnnouncesHandles(const Day& day) {
  return std::any_of(day.lines.begin(), day.lines.end(), [](const DayLine& line) {
    const auto* const message = std::get_if<MessageAction>(&line.action);
    return message != nullptr &&
           (message->topic == L"TRADE.OTO.MANAGER" || message->topic == L"TRADE.HOT.MONTH");
  });
}

}  // namespace

CGroupBook::CGroupBook(const Day& day) : m_end(day.head.end) {
  using Kind = FaultAction::Kind;
  m_timersMayFail = HasFault(day, {Kind::kTimer, Kind::kThread, Kind::kStuck});
  m_handlesMayFail = AnnouncesHandles(day);
}

// ---- Looks ----

void CGroupBook::OnStep(const TraceStep& step) {
  const GroupLook* const begun = m_looks.OnStep(step);
  for (GroupLook& look : m_looks.TakeEnded()) Finish(std::move(look));
  if (begun != nullptr) BeginByCommand(*begun);
  if (step.IsCommand(kNewOrder) && m_looks.Find(step.thread) != nullptr) Enter(step.thread, step.at);

  if (step.kind == TraceKind::kMessage) {
    Conclude(step.thread, step.at);
    if (step.topic == "TRADE.HOT.MONTH") ++m_counts["group children announced otherwise"];
    m_announcements[step.thread].record = std::string(kChildRecord) + std::to_string(step.handle);
  } else if (step.kind == TraceKind::kUpdate) {
    Conclude(step.thread, step.at);
    const auto record = m_recordOfKey.find(step.record);
    if (record == m_recordOfKey.end()) return;
    Update& update = m_updates[step.thread];
    update.record = record->second;
    update.isTold = m_followers[record->second] > 0;
  }
}

void CGroupBook::OnRead(const BusRead& read) {
  const GroupLook* const begun = m_looks.OnRead(read);
  for (GroupLook& look : m_looks.TakeEnded()) Finish(std::move(look));
  if (begun != nullptr) BeginByTimer(*begun);
  const bool isPosition = read.kind == BusRead::Kind::kNodeByName && read.record == "STRATEGY.POSITION";
  if (isPosition && m_looks.Find(read.thread) == nullptr)
    m_mistakes.push_back(
        {read.at, fmt::format("{} looks at the positions for no order that is known", read.thread)});

  if (read.record == "NordoSystemTime" && read.name == "Speed") {
    m_speed = Int32Of(read.value, 0);
    m_speedAt = read.at;
  } else if (read.record.starts_with(kChildRecord)) {
    OnChildRead(read);
  }
}

void CGroupBook::BeginByCommand(const GroupLook& look) {
  const auto order = std::make_shared<GroupOrder>();
  order->command = *look.command;
  order->since = look.at;
  ++m_ordersOf[order->command.id];
  m_last[order->command.id] = order;
  m_doing[look.thread] = {order, false};
  ++m_counts["group orders"];
}

void CGroupBook::BeginByTimer(const GroupLook& look) {
  const std::string id = look.walks.front().strategy;
  Touch(id, look.thread, look.at);
  m_doing[look.thread] = {TakeWaiting(look, id), false};
  m_orders.erase(id);
}

CGroupBook::OrderPtr CGroupBook::TakeWaiting(const GroupLook& look, const std::string& id) {
  const auto found = m_timers.find(id);
  if (IsUnclear(id)) {
    if (found != m_timers.end()) m_timers.erase(found);
    return m_ordersOf[id] == 1 ? m_last[id] : nullptr;
  }
  if (found == m_timers.end()) {
    Complain(look.at, id, fmt::format("looks again on {}, and nothing called for it", look.thread));
    MakeUnclear(id);
    return nullptr;
  }
  const Timer timer = found->second;
  m_timers.erase(found);
  if (timer.due != look.at && !(m_timersMayFail && timer.due < look.at))
    Complain(look.at, id, "looks again at another time than " + ToText(timer.due));
  if (timer.numberIsSure && m_unclear.empty() && timer.number != look.timer)
    Complain(look.at, id, fmt::format("looks again by timer {} in place of {}", look.timer, timer.number));
  if (!timer.order->children.empty())
    Complain(look.at, id, fmt::format("looks again while {} children live", timer.order->children.size()));
  return timer.order;
}

/// The order has a place among those that have sent before its first string leaves.
void CGroupBook::Enter(const std::string& thread, LocalTime at) {
  Doing& doing = m_doing[thread];
  if (doing.order == nullptr || std::exchange(doing.isEntered, true)) return;
  const std::string& id = doing.order->command.id;
  Touch(id, thread, at);
  OrderPtr& place = m_orders[id];
  if (place != nullptr && place != doing.order) ++m_counts["group orders that another one replaces"];
  place = doing.order;
}

void CGroupBook::Finish(GroupLook look) {
  const Doing doing = std::exchange(m_doing[look.thread], {});
  m_doing.erase(look.thread);
  if (doing.order == nullptr) {
    ++m_counts["group looks that can't be judged"];
    return;
  }
  if (m_end && look.lastAt >= *m_end) return;  // cut off with the engine
  Cycle cycle{std::move(look), doing.order, {}};
  if (cycle.look.command) {
    for (const OptionSeen& option : cycle.look.options) doing.order->records.push_back(option.record);
  }
  cycle.worked = WorkOut(*doing.order, cycle.look);
  const bool goesOn = !cycle.worked.stops && cycle.worked.hasOption;
  if (goesOn) ++doing.order->cycles;
  if (goesOn && cycle.worked.strings.empty() && !doing.isEntered) {
    m_doing[cycle.look.thread] = doing;
    Enter(cycle.look.thread, cycle.look.at);
    m_doing.erase(cycle.look.thread);
  }
  CountCycle(cycle);
  m_cycles.push_back(std::move(cycle));
}

void CGroupBook::CountCycle(const Cycle& cycle) {
  const WorkedCycle& worked = cycle.worked;
  const auto count = [this](const std::string& what, bool happened) { m_counts[what] += happened ? 1 : 0; };
  count("group orders done at once", worked.stops && !cycle.look.IsByTimer());
  count("group targets reached", worked.stops && cycle.look.IsByTimer());
  if (worked.stops) return;
  count("group orders without an option", !worked.hasOption);
  if (!worked.hasOption) return;
  count(cycle.look.IsByTimer() ? "group cycles, later" : "group cycles, first", true);
  count("group cycles that send nothing", worked.strings.empty());
  count("group legs doubled", *std::max_element(worked.multipliers.begin(), worked.multipliers.end()) == 2);
  count("group cycles with a chase", worked.chase && !worked.chase->empty() && !worked.strings.empty());
  for (const WorkedString& string : worked.strings) {
    count("group strings that offset", string.isOffset);
    count("group strings that open", !string.isOffset);
    count("group strings of a group", string.group.has_value());
  }
}

// ---- Children ----

void CGroupBook::OnChildRead(const BusRead& read) {
  Announcement* announcement = nullptr;
  if (const auto found = m_announcements.find(read.thread);
      found != m_announcements.end() && found->second.record == read.record)
    announcement = &found->second;
  if (read.kind == BusRead::Kind::kFollow) {
    ++m_followers[read.record];
    if (announcement != nullptr) announcement->isFollowed = true;
  } else if (read.kind == BusRead::Kind::kLeave) {
    --m_followers[read.record];
    m_leftAt[read.record] = read.at;
  } else if (announcement != nullptr && !announcement->isRead) {
    announcement->fields[read.name] = read.value;
    if (announcement->fields.size() == 2) Announced(read, *announcement);
  } else {
    Update& update = m_updates[read.thread];
    if (update.record != read.record) update = {read.record, {}, false, false};
    update.fields[read.name] = read.value;
    if (update.fields.size() == 4) Updated(read, update);
  }
}

void CGroupBook::Announced(const BusRead& read, Announcement& announcement) {
  announcement.isRead = true;
  const std::string id = TextOf(announcement.fields["Strategy"]);
  const std::string key = TextOf(announcement.fields["LevelKey"]);
  m_recordOfKey[key] = read.record;
  ++m_counts["group children announced"];
  const auto order = m_orders.find(id);
  if (m_ordersOf.contains(id)) Touch(id, read.thread, read.at);
  if (id.empty() || order == m_orders.end()) {
    ++m_counts["group children of no order"];
    return;
  }
  if (!m_knownChildren.insert(key).second) {
    ++m_counts["group children announced again"];
    return;
  }
  announcement.isDue = true;
  order->second->children.push_back(key);
}

void CGroupBook::Updated(const BusRead& read, Update& update) {
  update.isTaken = true;
  std::map<std::string, Value> fields = std::exchange(update.fields, {});
  const std::string id = TextOf(fields["Strategy"]);
  const std::string key = TextOf(fields["LevelKey"]);
  const int32_t execType = Int32Of(fields["ExecType"], INT32_MIN);
  const auto found = m_orders.find(id);
  if (m_ordersOf.contains(id)) Touch(id, read.thread, read.at);
  if (found == m_orders.end()) return;
  const OrderPtr order = found->second;
  if ((execType == 5 || execType == 8) && Int32Of(fields["ClientModify"], 0) == 0) {
    ++m_counts["group children that fail"];
    order->hasFailed = true;
  }
  if (IsEnd(execType)) {
    ++m_counts[fmt::format("group children that end, {}", execType)];
    const auto child = std::find(order->children.begin(), order->children.end(), key);
    if (child != order->children.end()) order->children.erase(child);
    m_knownChildren.erase(key);
  }
  if (!order->hasFailed && order->children.empty()) Schedule(order, read);
}

void CGroupBook::Schedule(const OrderPtr& order, const BusRead& read) {
  const std::string& id = order->command.id;
  if (m_speedAt == read.at) MakeUnclear(id);
  const Milliseconds delay = m_speed > 1 ? std::max(kRecheckDelay / m_speed, kLeastDelay) : kRecheckDelay;
  if (m_speed > 1) ++m_counts["group looks at a replay speed"];
  const auto found = m_timers.find(id);
  if (found != m_timers.end()) {
    if (found->second.due <= read.at) MakeUnclear(id);
    found->second.due = read.at + delay;
    ++m_counts["group looks put off"];
    return;
  }
  m_lastTimer = m_lastTimer < kLastTimer ? m_lastTimer + 1 : kFirstTimer;
  Timer timer{order, read.at + delay, read.at, m_lastTimer, true};
  // Of two that are given out in one moment either may have been first.
  for (auto& [other, given] : m_timers) {
    if (given.since != read.at) continue;
    given.numberIsSure = timer.numberIsSure = false;
  }
  m_timers[id] = timer;
}

/// What a thread was at work on is over.
void CGroupBook::Conclude(const std::string& thread, LocalTime at) {
  if (const auto found = m_announcements.find(thread); found != m_announcements.end()) {
    const Announcement announcement = found->second;
    m_announcements.erase(found);
    const std::string id = announcement.isRead ? TextOf(announcement.fields.at("Strategy")) : "";
    if (!announcement.isRead && !m_handlesMayFail)
      Complain(at, id, "an announced child isn't looked at: " + announcement.record);
    if (announcement.isRead && announcement.isDue != announcement.isFollowed)
      Complain(at, id,
               announcement.isDue ? "an announced child isn't followed" : "a child of no order is followed");
  }
  if (const auto found = m_updates.find(thread); found != m_updates.end()) {
    const Update update = found->second;
    m_updates.erase(found);
    const auto left = m_leftAt.find(update.record);
    const bool isLeaving = left != m_leftAt.end() && left->second == at;
    if (update.isTold && !update.isTaken && !isLeaving)
      Complain(at, "", "an update of " + update.record + " isn't looked at");
  }
}

// ---- Moments ----

void CGroupBook::OnMomentEnd(LocalTime at) {
  while (!m_announcements.empty()) Conclude(std::string(m_announcements.begin()->first), at);
  while (!m_updates.empty()) Conclude(std::string(m_updates.begin()->first), at);
  for (GroupLook& look : m_looks.TakeFinished(at)) Finish(std::move(look));
  LookForMissed(at);
}

/// A timer that fires while children live leaves nothing to see.
void CGroupBook::LookForMissed(LocalTime at) {
  if (m_timersMayFail || (m_end && at >= *m_end)) return;
  for (auto timer = m_timers.begin(); timer != m_timers.end();) {
    if (timer->second.due > at) {
      ++timer;
      continue;
    }
    if (timer->second.order->children.empty())
      Complain(timer->second.due, timer->first, "doesn't look again, though it is time to");
    ++m_counts["group looks held by a child"];
    timer = m_timers.erase(timer);
  }
}

void CGroupBook::Forget() {
  m_cycles.clear();
  m_mistakes.clear();
}

void CGroupBook::Touch(const std::string& id, const std::string& thread, LocalTime at) {
  const auto [found, isNew] = m_touched.try_emplace(id, at, thread);
  if (!isNew && found->second.first == at && found->second.second != thread) MakeUnclear(id);
  found->second = {at, thread};
}

void CGroupBook::MakeUnclear(const std::string& id) {
  if (m_unclear.insert(id).second) ++m_counts["group ids that become unclear"];
}

void CGroupBook::Complain(LocalTime at, const std::string& id, const std::string& what) {
  if (!IsUnclear(id)) m_mistakes.push_back({at, "'" + id + "' " + what});
}

}  // namespace iorder::testing

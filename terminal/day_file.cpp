#include "terminal/day_file.h"

#include <algorithm>
#include <filesystem>
#include <functional>

#include "platform/text.h"
#include "terminal/day_actions.h"
#include "terminal/day_head.h"
#include "terminal/input_file.h"
#include "terminal/object_reader.h"
#include "terminal/tick_file.h"

namespace iorder {
namespace {

constexpr Milliseconds kOneDay = std::chrono::hours(24);

/// Gives each line its time: its own, or that of the line above.
class CLineClock {
 public:
  explicit CLineClock(const DayHead& head) : m_end(head.end), m_last(head.start) {}

  LocalTime Next(CObjectReader& line) {
    const std::optional<std::string> text = line.Text("at");
    const bool nextDay = line.Flag("next_day").value_or(false);
    if (!text) {
      if (nextDay) {
        line.Fail("next_day", "a line without 'at' has the time of the line above");
      }
      return m_last;
    }
    m_last = TimeOf(line, *text, nextDay);
    m_timed = true;
    return m_last;
  }

  /// Whether a line so far had a time of its own.
  bool IsTimed() const { return m_timed; }

 private:
  LocalTime TimeOf(const CObjectReader& line, const std::string& text, bool nextDay) const {
    if (const std::optional<LocalTime> time = ParseLocalTime(text)) {
      if (*time < m_last) {
        line.Fail("at", text + " lies before the time of the line above, " + ToText(m_last));
      }
      return *time;
    }
    const std::optional<Milliseconds> timeOfDay = ParseTimeOfDay(text);
    if (!timeOfDay) {
      line.Fail("at", "expected HH:MM:SS[.mmm] or YYYY-MM-DDTHH:MM:SS[.mmm], found '" + text + "'");
    }
    const LocalTime time = DateOf(m_last) + *timeOfDay + (nextDay ? kOneDay : Milliseconds(0));
    if (time < m_last) {
      line.Fail("at", text + " lies before the time of the line above, " + ToText(m_last) +
                          "; a line of the next date says \"next_day\": true");
    }
    if (nextDay && m_end && time > *m_end) {
      line.Fail("next_day", text + " of the next date lies behind the day's end, " + ToText(*m_end));
    }
    return time;
  }

  const std::optional<LocalTime> m_end;
  LocalTime m_last;
  bool m_timed = false;
};

/// The next line that isn't empty.
bool NextLine(CLineReader& reader, std::string_view& line) {
  while (reader.Next(line)) {
    if (line.find_first_not_of(" \t") != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

/// Looks at what stands in a tick file in front of its rows.
void CheckTickFile(const std::string& path, LocalTime date) {
  CTickFile check(path, date);
}

using TickFileCheck = std::function<void(const std::string& path, LocalTime date)>;

Day ReadDay(CLineReader& reader, const TickFileCheck& checkTickFile) {
  std::string_view text;
  if (!NextLine(reader, text)) {
    FailAt({reader.Path()}, "is empty; the first line must be the head {\"day\": {...}}");
  }
  Day day;
  day.path = reader.Path();
  day.head = ReadDayHead(ParseJson(text, reader.Place()), reader.Place());

  CLineClock clock(day.head);
  while (NextLine(reader, text)) {
    const JsonNode node = ParseJson(text, reader.Place());
    CObjectReader line(node, "the line", reader.Place());
    const LocalTime at = clock.Next(line);
    day.lines.push_back({at, reader.Place().line, ReadAction(line)});
    if (day.head.orders && std::holds_alternative<ReportAction>(day.lines.back().action)) {
      line.Fail("report", "the head's 'orders' answers the orders; only a day with 'manual' has reports");
    }
    if (const TicksAction* const ticks = std::get_if<TicksAction>(&day.lines.back().action)) {
      checkTickFile(ticks->path, DateOf(at));
    }
    day.setupCount += clock.IsTimed() ? 0 : 1;
  }
  return day;
}

}  // namespace

std::string PathBeside(const std::string& file, const std::string& path) {
  return (std::filesystem::path(file).parent_path() / path).string();
}

Day ReadDayFile(const std::string& path) {
  CLineReader reader(path);
  return ReadDay(reader, CheckTickFile);
}

Day ReadDayText(CLineReader reader) {
  return ReadDay(reader, [](const std::string&, LocalTime) {});
}

namespace {

/// Where commands without a time go: behind phase 2, or behind the setup of a day that never calls it.
std::vector<DayLine>::iterator StartOfCommands(Day& day) {
  const auto first = day.lines.begin() + static_cast<std::ptrdiff_t>(day.setupCount);
  if (day.head.autoPhases) return first;
  const auto open = std::find_if(day.lines.begin(), day.lines.end(), [](const DayLine& line) {
    const auto* phase = std::get_if<PhaseAction>(&line.action);
    return phase != nullptr && phase->category == 1 && phase->phase == 2;
  });
  return open == day.lines.end() ? first : std::next(open);
}

}  // namespace

void InsertCommand(Day& day, std::string_view text, std::optional<LocalTime> at) {
  MessageAction message;
  message.topic = L"TRADE.IntelligentOrder";
  message.text = ToWide(text);
  if (!at) {
    // Behind phase 2, and behind the commands that came this way before.
    const auto place = StartOfCommands(day) + static_cast<std::ptrdiff_t>(day.commandCount++);
    const LocalTime time = place == day.lines.begin() ? day.head.start : std::prev(place)->at;
    day.lines.insert(place, {std::max(time, day.head.start), 0, std::move(message)});
    return;
  }
  if (*at < day.head.start || (day.head.end && *at > *day.head.end)) {
    throw InputError("a command at " + ToText(*at) + " lies outside the day of " + day.path);
  }
  const auto first = day.lines.begin() + static_cast<std::ptrdiff_t>(day.setupCount);
  const auto place = std::upper_bound(first, day.lines.end(), *at,
                                      [](LocalTime left, const DayLine& line) { return left < line.at; });
  day.lines.insert(place, {*at, 0, std::move(message)});
}

}  // namespace iorder

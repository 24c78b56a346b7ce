#include "app/local_moment.h"

#include <fmt/format.h>

namespace iorder {
namespace {

/// Takes numbers and separators off the front of a text.
class CReader {
 public:
  explicit CReader(std::string_view text) : m_rest(text) {}

  bool Empty() const { return m_rest.empty(); }
  bool Take(char separator) {
    if (m_rest.empty() || m_rest.front() != separator) return false;
    m_rest.remove_prefix(1);
    return true;
  }
  /// A number of just so many digits, at most `highest`.
  bool Take(size_t digits, int highest, int& number) {
    if (m_rest.size() < digits) return false;
    number = 0;
    for (const char digit : m_rest.substr(0, digits)) {
      if (digit < '0' || digit > '9') return false;
      number = number * 10 + (digit - '0');
    }
    m_rest.remove_prefix(digits);
    return number <= highest;
  }

 private:
  std::string_view m_rest;
};

}  // namespace

std::optional<LocalMoment> ParseLocalMoment(std::string_view text) {
  using namespace std::chrono;
  CReader reader(text);
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
  if (!reader.Take(4, 9999, year) || !reader.Take('-') || !reader.Take(2, 12, month) || !reader.Take('-') ||
      !reader.Take(2, 31, day) || !reader.Take('T') || !reader.Take(2, 23, hour) || !reader.Take(':') ||
      !reader.Take(2, 59, minute)) {
    return std::nullopt;
  }
  if (reader.Take(':') && !reader.Take(2, 59, second)) return std::nullopt;
  if (reader.Take('.') && !reader.Take(3, 999, millisecond)) return std::nullopt;
  const year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                            std::chrono::day(static_cast<unsigned>(day))};
  if (!reader.Empty() || !date.ok()) return std::nullopt;
  return local_days(date) + hours(hour) + minutes(minute) + seconds(second) + milliseconds(millisecond);
}

std::string ToText(LocalMoment moment) {
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date{day};
  return fmt::format("{:04}-{:02}-{:02}T{}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     TimeOfDayText(moment));
}

std::string TimeOfDayText(LocalMoment moment) {
  const std::chrono::hh_mm_ss time(moment - std::chrono::floor<std::chrono::days>(moment));
  std::string text =
      fmt::format("{:02}:{:02}:{:02}", time.hours().count(), time.minutes().count(), time.seconds().count());
  if (time.subseconds().count() != 0) text += fmt::format(".{:03}", time.subseconds().count());
  return text;
}

}  // namespace iorder

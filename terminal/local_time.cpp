#include "terminal/local_time.h"

namespace iorder {
namespace {

namespace chrono = std::chrono;

/// The decimal number of `count` digits at `text`, or -1.
int Digits(const char* text, int count) {
  int value = 0;
  for (int i = 0; i < count; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      return -1;
    }
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

constexpr size_t kDateLength = 10;   // YYYY-MM-DD
constexpr size_t kTimeLength = 8;    // HH:MM:SS
constexpr size_t kMillisLength = 4;  // .mmm

void AppendDigits(std::string& output, int value, int count) {
  char digits[4];
  for (int i = count; i-- > 0; value /= 10) {
    digits[i] = static_cast<char>('0' + value % 10);
  }
  output.append(digits, static_cast<size_t>(count));
}

}  // namespace

std::optional<Milliseconds> ParseTimeOfDay(std::string_view text) {
  const bool hasMillis = text.size() == kTimeLength + kMillisLength && text[kTimeLength] == '.';
  if ((text.size() != kTimeLength && !hasMillis) || text[2] != ':' || text[5] != ':') {
    return std::nullopt;
  }
  const int hour = Digits(text.data(), 2);
  const int minute = Digits(text.data() + 3, 2);
  const int second = Digits(text.data() + 6, 2);
  const int millis = hasMillis ? Digits(text.data() + kTimeLength + 1, 3) : 0;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 || millis < 0) {
    return std::nullopt;
  }
  return Milliseconds(((hour * 60 + minute) * 60 + second) * 1000 + millis);
}

std::optional<LocalTime> ParseLocalTime(std::string_view text) {
  if (text.size() < kDateLength + 1 || text[4] != '-' || text[7] != '-' || text[kDateLength] != 'T') {
    return std::nullopt;
  }
  const int year = Digits(text.data(), 4);
  const int month = Digits(text.data() + 5, 2);
  const int day = Digits(text.data() + 8, 2);
  const std::optional<Milliseconds> time = ParseTimeOfDay(text.substr(kDateLength + 1));
  if (year < 0 || month < 0 || day < 0 || !time) {
    return std::nullopt;
  }
  const chrono::year_month_day date(chrono::year(year), chrono::month(static_cast<unsigned>(month)),
                                    chrono::day(static_cast<unsigned>(day)));
  if (!date.ok()) {
    return std::nullopt;
  }
  return LocalTime(chrono::local_days(date)) + *time;
}

std::optional<LocalTime> MidnightOf(int64_t date) {
  constexpr int64_t kLastDate = 9999'12'31;
  if (date < 0 || date > kLastDate) return std::nullopt;
  const chrono::year_month_day day(chrono::year(static_cast<int>(date / 10000)),
                                   chrono::month(static_cast<unsigned>(date / 100 % 100)),
                                   chrono::day(static_cast<unsigned>(date % 100)));
  return day.ok() ? std::optional(LocalTime(chrono::local_days(day))) : std::nullopt;
}

LocalTime DateOf(LocalTime time) {
  return chrono::floor<chrono::days>(time);
}

std::string ToText(LocalTime time) {
  std::string text;
  AppendDateTime(ToDateTime(time), text);
  return text;
}

void AppendDateTime(const DateTime& time, std::string& output) {
  AppendDigits(output, time.year, 4);
  output += '-';
  AppendDigits(output, time.month, 2);
  output += '-';
  AppendDigits(output, time.day, 2);
  output += 'T';
  AppendDigits(output, time.hour, 2);
  output += ':';
  AppendDigits(output, time.minute, 2);
  output += ':';
  AppendDigits(output, time.second, 2);
  output += '.';
  AppendDigits(output, time.millisecond, 3);
}

DateTime ToDateTime(LocalTime time) {
  const auto midnight = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(midnight);
  const chrono::hh_mm_ss<Milliseconds> clock(time - midnight);
  DateTime result;
  result.year = static_cast<uint16_t>(static_cast<int>(date.year()));
  result.month = static_cast<uint16_t>(static_cast<unsigned>(date.month()));
  result.day = static_cast<uint16_t>(static_cast<unsigned>(date.day()));
  result.dayOfWeek = static_cast<uint16_t>(chrono::weekday(midnight).c_encoding());
  result.hour = static_cast<uint16_t>(clock.hours().count());
  result.minute = static_cast<uint16_t>(clock.minutes().count());
  result.second = static_cast<uint16_t>(clock.seconds().count());
  result.millisecond = static_cast<uint16_t>(clock.subseconds().count());
  return result;
}

LocalTime ToLocalTime(const DateTime& time) {
  const chrono::year_month_day date(chrono::year(time.year), chrono::month(time.month),
                                    chrono::day(time.day));
  return LocalTime(chrono::local_days(date)) + chrono::hours(time.hour) + chrono::minutes(time.minute) +
         chrono::seconds(time.second) + Milliseconds(time.millisecond);
}

}  // namespace iorder

#pragma once

#include <chrono>
#include <cstdint>

namespace iorder {

/// A length of time. All waits, delays and periods of the system are whole milliseconds.
using Milliseconds = std::chrono::milliseconds;

/// A moment, in milliseconds since 1970-01-01 00:00 UTC, without leap seconds.
using TimePoint = std::chrono::sys_time<Milliseconds>;

/// A moment in calendar form, of the local clock or of UTC as the caller asked for.
struct DateTime {
  uint16_t year = 0;
  uint16_t month = 0;      ///< 1 to 12
  uint16_t dayOfWeek = 0;  ///< 0 for Sunday to 6 for Saturday
  uint16_t day = 0;        ///< 1 to 31
  uint16_t hour = 0;
  uint16_t minute = 0;
  uint16_t second = 0;
  uint16_t millisecond = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// The date as the decimal number yyyymmdd.
constexpr int64_t ToDate8(const DateTime& time) {
  return time.year * 10000LL + time.month * 100LL + time.day;
}

/// The time of day as the decimal number hhmmss.
constexpr int64_t ToTime6(const DateTime& time) {
  return time.hour * 10000LL + time.minute * 100LL + time.second;
}

/// The minute of the day as the decimal number hhmm.
constexpr int64_t ToTime4(const DateTime& time) {
  return time.hour * 100LL + time.minute;
}

/// The moment as the decimal number YYYYMMDDhhmmss.
constexpr int64_t ToDateTime14(const DateTime& time) {
  return ToDate8(time) * 1000000 + ToTime6(time);
}

/// The moment as the decimal number YYYYMMDDhhmmssmmm; modulo 100000 it gives the milliseconds within the
/// minute.
constexpr int64_t ToDateTime17(const DateTime& time) {
  return ToDateTime14(time) * 1000 + time.millisecond;
}

}  // namespace iorder

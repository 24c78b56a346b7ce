#include "platform/zone_clock.h"

#include <date/tz.h>

#include <algorithm>

namespace iorder {
namespace {

TimePoint Clamp(date::sys_seconds time) {
  // The first and the last range of a zone end where seconds do, which milliseconds can't show.
  constexpr auto kFirst = date::sys_days(date::year{0} / 1 / 1);
  constexpr auto kLast = date::sys_days(date::year{9999} / 12 / 31);
  return std::clamp<TimePoint>(std::clamp<date::sys_seconds>(time, kFirst, kLast), kFirst, kLast);
}

}  // namespace

CZoneClock::CZoneClock(const std::string& zone) : m_zone(*date::locate_zone(zone)) {}

const CZoneClock::Range& CZoneClock::RangeOf(TimePoint time) const {
  const Range* current = m_current.load(std::memory_order_acquire);
  if (current != nullptr && current->begin <= time && time < current->end) return *current;

  const std::lock_guard guard(m_mutex);
  auto range = std::find_if(m_ranges.begin(), m_ranges.end(),
                            [&](const Range& one) { return one.begin <= time && time < one.end; });
  if (range == m_ranges.end()) {
    const date::sys_info info = m_zone.get_info(time);
    range = m_ranges.insert(range, {Clamp(info.begin), Clamp(info.end), info.offset});
  }
  m_current.store(&*range, std::memory_order_release);
  return *range;
}

DateTime CZoneClock::ToUtc(TimePoint time) {
  const auto day = date::floor<date::days>(time);
  const date::year_month_day date(day);
  const date::hh_mm_ss clock(time - day);
  DateTime result;
  result.year = static_cast<uint16_t>(static_cast<int>(date.year()));
  result.month = static_cast<uint16_t>(static_cast<unsigned>(date.month()));
  result.dayOfWeek = static_cast<uint16_t>(date::weekday(day).c_encoding());
  result.day = static_cast<uint16_t>(static_cast<unsigned>(date.day()));
  result.hour = static_cast<uint16_t>(clock.hours().count());
  result.minute = static_cast<uint16_t>(clock.minutes().count());
  result.second = static_cast<uint16_t>(clock.seconds().count());
  result.millisecond = static_cast<uint16_t>(clock.subseconds().count());
  return result;
}

TimePoint CZoneClock::FromUtc(const DateTime& utc) {
  const date::sys_days day = date::year{utc.year} / utc.month / utc.day;
  return day + std::chrono::hours(utc.hour) + std::chrono::minutes(utc.minute) +
         std::chrono::seconds(utc.second) + Milliseconds(utc.millisecond);
}

DateTime CZoneClock::ToLocal(TimePoint time) const {
  return ToUtc(time + RangeOf(time).offset);
}

TimePoint CZoneClock::FromLocal(const DateTime& local) const {
  const TimePoint shown = FromUtc(local);
  // A day away from any change, the offset tells the moment.
  const Range* range = m_current.load(std::memory_order_acquire);
  constexpr auto kDay = std::chrono::hours(24);
  if (range != nullptr && range->begin + kDay <= shown && shown < range->end - kDay) {
    return shown - range->offset;
  }
  const TimePoint time =
      m_zone.to_sys(date::local_time<Milliseconds>(shown.time_since_epoch()), date::choose::earliest);
  RangeOf(time);
  return time;
}

}  // namespace iorder

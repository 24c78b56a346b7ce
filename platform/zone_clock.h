#pragma once

#include <atomic>
#include <list>
#include <mutex>
#include <string>

#include "platform/date_time.h"

namespace date {
class time_zone;
}

namespace iorder {

/// Calendar time of one time zone, from the system's time zone data. All operations may come from any thread.
/// As long as the moments asked for lie between the same two changes of the zone's offset, a conversion is
/// plain arithmetic.
class CZoneClock {
 public:
  /// `zone` is an IANA name ("Asia/Taipei"). An unknown one raises std::runtime_error.
  explicit CZoneClock(const std::string& zone);

  DateTime ToLocal(TimePoint time) const;
  /// The moment at which the local clock shows `local` (its dayOfWeek isn't read): the earlier one if it does
  /// so twice, the moment of the change if it never does.
  TimePoint FromLocal(const DateTime& local) const;
  static DateTime ToUtc(TimePoint time);
  /// `utc` read as UTC.
  static TimePoint FromUtc(const DateTime& utc);

 private:
  /// A time without a change of offset.
  struct Range {
    TimePoint begin;
    TimePoint end;
    Milliseconds offset;
  };

  const Range& RangeOf(TimePoint time) const;

  const date::time_zone& m_zone;
  mutable std::atomic<const Range*> m_current{nullptr};
  mutable std::mutex m_mutex;
  mutable std::list<Range> m_ranges;  // under m_mutex; a range stays where it is once m_current has shown it
};

}  // namespace iorder

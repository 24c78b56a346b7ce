#pragma once

#include <chrono>
#include <optional>

#include "platform/date_time.h"

namespace iorder {

/// The clock of the native runtime: the machine's own, or one that begins at a moment of choice and may run
/// faster. It isn't turned back when the machine's calendar clock is.
class CNativeClock {
 public:
  using RealTime = std::chrono::steady_clock::time_point;

  /// Without a start, the machine's clock as it stands. `speed` is how many seconds pass in a real one.
  CNativeClock(std::optional<TimePoint> start, double speed);

  /// Makes the clock go on from its start. Until then a clock with a start of choice stands still.
  void Start();

  TimePoint Now() const;
  /// A real moment at which the clock shows `time`, if that isn't more than a day away; else one before it.
  RealTime RealTimeOf(TimePoint time) const;

 private:
  const double m_speed;
  const TimePoint m_start;
  std::optional<RealTime> m_realStart;
};

}  // namespace iorder

#include "platform/native/native_clock.h"

#include <algorithm>
#include <cassert>

namespace iorder {
namespace {

TimePoint MachineTime() {
  return std::chrono::time_point_cast<Milliseconds>(std::chrono::system_clock::now());
}

}  // namespace

CNativeClock::CNativeClock(std::optional<TimePoint> start, double speed)
    : m_speed(speed), m_start(start.value_or(MachineTime())) {
  assert(speed > 0);
  if (!start) Start();
}

void CNativeClock::Start() {
  if (!m_realStart) m_realStart = std::chrono::steady_clock::now();
}

TimePoint CNativeClock::Now() const {
  if (!m_realStart) return m_start;
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - *m_realStart;
  return m_start + std::chrono::floor<Milliseconds>(passed * m_speed);
}

CNativeClock::RealTime CNativeClock::RealTimeOf(TimePoint time) const {
  using RealMilliseconds = std::chrono::duration<double, std::milli>;
  constexpr RealMilliseconds kLongest = std::chrono::hours(24);
  const RealMilliseconds left =
      (RealMilliseconds(time.time_since_epoch()) - Now().time_since_epoch()) / m_speed;
  return std::chrono::steady_clock::now() +
         std::chrono::ceil<std::chrono::microseconds>(std::clamp(left, RealMilliseconds::zero(), kLongest));
}

}  // namespace iorder

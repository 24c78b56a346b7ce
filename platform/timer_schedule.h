#pragma once

#include <optional>

#include "platform/date_time.h"

namespace iorder {

/// When a waitable timer is due: at a first moment, and then at whole periods after it.
class CTimerSchedule {
 public:
  void Arm(TimePoint first, Milliseconds period) noexcept {
    m_isArmed = true;
    m_first = first;
    m_period = period;
  }
  void Stop() noexcept { m_isArmed = false; }

  /// The first moment later than `time` at which the timer is due.
  std::optional<TimePoint> NextAfter(TimePoint time) const noexcept {
    if (!m_isArmed) return std::nullopt;
    if (time < m_first) return m_first;
    if (m_period <= Milliseconds::zero()) return std::nullopt;
    return m_first + ((time - m_first) / m_period + 1) * m_period;
  }

 private:
  bool m_isArmed = false;
  TimePoint m_first;
  Milliseconds m_period{0};
};

}  // namespace iorder

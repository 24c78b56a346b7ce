#pragma once

#include "platform/world_runtime.h"
#include "terminal/local_time.h"

namespace iorder {

/// Turns local times into moments. Times that come in their order cost one look at the calendar per quarter
/// of an hour: no clock is set forward or back inside one. Not for several threads at once.
class CLocalClock {
 public:
  explicit CLocalClock(IWorldRuntime& runtime) : m_runtime(runtime) {}

  TimePoint ToMoment(LocalTime time) {
    const LocalTime quarter = std::chrono::floor<Quarter>(time);
    if (quarter != m_quarter || !m_isKnown) {
      m_moment = m_runtime.FromLocal(ToDateTime(quarter));
      m_quarter = quarter;
      m_isKnown = true;
    }
    return m_moment + (time - quarter);
  }

 private:
  using Quarter = std::chrono::duration<int64_t, std::ratio<900>>;

  IWorldRuntime& m_runtime;
  LocalTime m_quarter;
  TimePoint m_moment;
  bool m_isKnown = false;
};

}  // namespace iorder

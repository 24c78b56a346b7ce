#include "platform/native/native_timer.h"

namespace iorder {

CNativeTimer::CNativeTimer(CNativeKernel& kernel, std::wstring name)
    : CSignal(Kind::kTimer, &m_name, EventReset::kAuto, false), m_kernel(kernel), m_name(std::move(name)) {}

CNativeTimer::~CNativeTimer() {
  const std::lock_guard guard(m_kernel.Mutex());
  DropWaiters();
}

bool CNativeTimer::Arm(Milliseconds first, Milliseconds period) {
  const std::lock_guard guard(m_kernel.Mutex());
  Clear();
  m_due = m_kernel.Clock().Now() + first;
  m_schedule.Arm(*m_due, period);
  // Who waits already must know of the new moment.
  for (const WaitNode* node = FirstNode(); node != nullptr; node = node->next) {
    static_cast<CNativeThread*>(node->waiter)->Wake();
  }
  return true;
}

bool CNativeTimer::Cancel() {
  const std::lock_guard guard(m_kernel.Mutex());
  Update(m_kernel.Clock().Now());
  m_schedule.Stop();
  m_due.reset();
  return true;
}

std::optional<TimePoint> CNativeTimer::Update(TimePoint now) {
  while (m_due && *m_due <= now) {
    if (const auto late = m_kernel.TimerDelays().Take(m_name)) {
      *m_due += *late;
    } else {
      m_due = m_schedule.NextAfter(now);
      Raise();
    }
  }
  return m_due;
}

}  // namespace iorder

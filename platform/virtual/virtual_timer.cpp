#include "platform/virtual/virtual_timer.h"

namespace iorder {

bool CVirtualTimer::Arm(Milliseconds first, Milliseconds period) {
  Cancel();
  Clear();
  m_schedule.Arm(m_scheduler.Now() + first, period);
  if (first > Milliseconds::zero()) {
    m_scheduler.Due().Add(*this, m_scheduler.Now() + first, Precedence::kEngine);
  } else {
    OnDue();
  }
  return true;
}

bool CVirtualTimer::Cancel() {
  m_schedule.Stop();
  m_scheduler.Due().Remove(*this);
  return true;
}

void CVirtualTimer::OnDue() {
  if (const auto late = m_delays.Take(m_name)) {
    m_scheduler.Due().Add(*this, m_scheduler.Now() + *late, Precedence::kEngine);
  } else {
    Raise();
  }
}

void CVirtualTimer::OnTaken() {
  if (const auto next = m_schedule.NextAfter(m_scheduler.Now())) {
    m_scheduler.Due().Add(*this, *next, Precedence::kEngine);
  }
}

}  // namespace iorder

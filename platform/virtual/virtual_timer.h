#pragma once

#include <string>

#include "platform/runtime.h"
#include "platform/signal.h"
#include "platform/timer_delays.h"
#include "platform/timer_schedule.h"
#include "platform/virtual/scheduler.h"

namespace iorder {

/// A waitable timer of the virtual runtime. It is due only while it isn't signalled: firings that would
/// change nothing don't keep the clock going.
class CVirtualTimer final : public IWaitableTimer, public CSignal, public CDueItem {
 public:
  CVirtualTimer(CScheduler& scheduler, CTimerDelays& delays, std::wstring name)
      : CSignal(Kind::kTimer, &m_name, EventReset::kAuto, false),
        m_scheduler(scheduler),
        m_delays(delays),
        m_name(std::move(name)) {}
  ~CVirtualTimer() override { m_scheduler.Due().Remove(*this); }

  bool Arm(Milliseconds first, Milliseconds period) override;
  bool Cancel() override;

  void OnDue() override;

 private:
  void OnTaken() override;

  CScheduler& m_scheduler;
  CTimerDelays& m_delays;
  const std::wstring m_name;
  CTimerSchedule m_schedule;
};

}  // namespace iorder

#pragma once

#include <optional>
#include <string>

#include "platform/native/native_kernel.h"
#include "platform/runtime.h"
#include "platform/signal.h"
#include "platform/timer_schedule.h"

namespace iorder {

/// A waitable timer without a thread of its own: whoever waits for it also waits for its next moment, and
/// signals it then.
class CNativeTimer final : public IWaitableTimer, public CSignal {
 public:
  CNativeTimer(CNativeKernel& kernel, std::wstring name);
  ~CNativeTimer() override;

  bool Arm(Milliseconds first, Milliseconds period) override;
  bool Cancel() override;

  /// Signals the timer if it has become due, and gives the next moment at which it will. Under the kernel's
  /// mutex.
  std::optional<TimePoint> Update(TimePoint now);

 private:
  CNativeKernel& m_kernel;
  const std::wstring m_name;
  CTimerSchedule m_schedule;
  std::optional<TimePoint> m_due;
};

}  // namespace iorder

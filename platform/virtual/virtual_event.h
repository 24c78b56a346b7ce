#pragma once

#include "platform/runtime.h"
#include "platform/signal.h"
#include "platform/virtual/scheduler.h"

namespace iorder {

/// An event of the virtual runtime.
class CVirtualEvent final : public IEvent, public CSignal {
 public:
  CVirtualEvent(CScheduler& scheduler, EventReset reset, bool isSignalled) noexcept
      : CSignal(Kind::kEvent, nullptr, reset, isSignalled), m_scheduler(scheduler) {}

  void Set() override {
    Raise();
    m_scheduler.MayYield();
  }
  void Reset() override { Clear(); }

 private:
  CScheduler& m_scheduler;
};

}  // namespace iorder

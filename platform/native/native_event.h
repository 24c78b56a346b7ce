#pragma once

#include "platform/native/native_kernel.h"
#include "platform/runtime.h"
#include "platform/signal.h"

namespace iorder {

/// An event of the native runtime.
class CNativeEvent final : public IEvent, public CSignal {
 public:
  CNativeEvent(CNativeKernel& kernel, EventReset reset, bool isSignalled) noexcept
      : CSignal(Kind::kEvent, nullptr, reset, isSignalled), m_kernel(kernel) {}
  ~CNativeEvent() override {
    const std::lock_guard guard(m_kernel.Mutex());
    DropWaiters();
  }

  void Set() override {
    const std::lock_guard guard(m_kernel.Mutex());
    Raise();
  }
  void Reset() override {
    const std::lock_guard guard(m_kernel.Mutex());
    Clear();
  }

 private:
  CNativeKernel& m_kernel;
};

}  // namespace iorder

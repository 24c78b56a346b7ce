#pragma once

#include <deque>

#include "platform/lock_order.h"
#include "platform/native/native_kernel.h"
#include "platform/runtime.h"

namespace iorder {

/// A lock of the native runtime. Who finds it taken waits in line and is handed it. It lives under the
/// kernel's mutex, so that a thread that was let in may destroy it at once.
class CNativeLock final : public ILock {
 public:
  CNativeLock(CNativeKernel& kernel, const char* name);

  void Enter() override;
  void Leave() noexcept override;

 private:
  void WaitInLine(CNativeKernel::Guard& guard, CNativeThread& self);

  CNativeKernel& m_kernel;
  const CLockOrder::Role m_role;
  CNativeThread* m_owner = nullptr;
  int m_depth = 0;
  std::deque<CNativeThread*> m_waiters;
};

}  // namespace iorder

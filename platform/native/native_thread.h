#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/date_time.h"
#include "platform/lock_order.h"
#include "platform/ring.h"
#include "platform/runtime.h"
#include "platform/signal.h"

namespace iorder {

class CNativeKernel;

/// A real thread. But for what is said, its members are under the kernel's mutex.
class CNativeThread final : public IThread, public CSignal, public CWaiter {
 public:
  CNativeThread(CNativeKernel& kernel, std::wstring name, std::function<void()> body);
  ~CNativeThread() override;

  const std::wstring& Name() const override { return m_name; }
  void Resume() override;
  bool Post(const ThreadMessage& message) override;
  std::optional<ThreadMessage> TakeMessage() override;
  void Terminate() override;

  void RaiseShield() noexcept { ++m_shields; }
  void LowerShield() noexcept { --m_shields; }

  /// Makes the thread look again at what it waits for. Under the kernel's mutex.
  void Wake() noexcept { m_wake.notify_one(); }

 private:
  friend class CNativeKernel;
  friend class CNativeLock;

  /// True if a platform call must not block any more. Raises ThreadCutOff instead, unless the thread must be
  /// let run to the end of what it does: under a shield, and while an exception unwinds it. Of the calling
  /// thread only.
  bool CheckCutOff() const;
  bool IsShielded() const noexcept;
  void OnReleased() override { Wake(); }
  /// On the thread itself: waits for Resume, runs the body and takes it down.
  void RunBody();
  std::optional<ThreadMessage> PopMessage();

  CNativeKernel& m_kernel;
  const std::wstring m_name;
  std::function<void()> m_body;    // the thread's own once it runs
  int m_shields = 0;               // the thread's own
  std::condition_variable m_wake;  // what it waits for may have come
  bool m_isResumed = false;
  bool m_isEnded = false;
  bool m_isCutOff = false;
  TimePoint m_heldUntil{};
  CRing<ThreadMessage> m_messages;

  class CMessageSignal final : public CSignal {
   public:
    CMessageSignal() noexcept : CSignal(Kind::kMessage, nullptr, EventReset::kManual, false) {}
  } m_hasMessages;

  std::vector<CLockOrder::Role> m_heldRoles;  // the thread's own; in the order of taking
};

}  // namespace iorder

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/lock_order.h"
#include "platform/ring.h"
#include "platform/runtime.h"
#include "platform/signal.h"
#include "platform/virtual/due_queue.h"
#include "platform/virtual/fiber.h"

namespace iorder {

class CScheduler;
class CVirtualLock;

/// A thread of the virtual runtime: a fiber with a queue of messages. As a due item it is the end of its own
/// timed wait.
class CVirtualThread final : public IThread, public CSignal, public CWaiter, public CDueItem {
 public:
  enum class State : uint8_t { kNew, kRunnable, kRunning, kBlocked, kEnded };

  /// The thread that the OS thread is anyway.
  CVirtualThread(CScheduler& scheduler, std::wstring name);
  /// A new thread. `number` orders the threads in reports.
  CVirtualThread(CScheduler& scheduler, uint64_t number, std::wstring name, std::function<void()> body,
                 CFiberStack stack);
  ~CVirtualThread() override;

  const std::wstring& Name() const override { return m_name; }
  void Resume() override;
  bool Post(const ThreadMessage& message) override;
  std::optional<ThreadMessage> TakeMessage() override;
  void Terminate() override;

  void OnDue() override;

  void RaiseShield() noexcept { ++m_shields; }
  void LowerShield() noexcept { --m_shields; }

 private:
  friend class CScheduler;
  friend class CVirtualLock;

  /// True if a platform call must not block any more. Raises ThreadCutOff instead, unless the thread must be
  /// let run to the end of what it does: under a shield, and while an exception unwinds it.
  bool CheckCutOff() const;
  bool IsShielded() const noexcept;
  std::string DescribeWait() const;
  void OnReleased() override;

  static void Main(void* self);

  CScheduler& m_scheduler;
  const std::wstring m_name;
  const uint64_t m_number;
  std::function<void()> m_body;
  State m_state;
  bool m_isCutOff = false;
  bool m_mustGetLock = false;  ///< blocked in a lock whose taking the end by force doesn't break off
  int m_shields = 0;
  TimePoint m_heldUntil{};
  bool m_isInHold = false;  // blocked by a hold, not by a wait
  CRing<ThreadMessage> m_messages;
  class CMessageSignal final : public CSignal {
   public:
    CMessageSignal() noexcept : CSignal(Kind::kMessage, nullptr, EventReset::kManual, false) {}
  } m_hasMessages;

  // The locks that it holds, in the order in which it took them, and their roles.
  std::vector<CVirtualLock*> m_heldLocks;
  std::vector<CLockOrder::Role> m_heldRoles;
  // The lock that it waits for, and its place in that lock's queue.
  CVirtualLock* m_wantedLock = nullptr;
  CVirtualThread* m_nextInLock = nullptr;

  CFiber m_fiber;
};

}  // namespace iorder

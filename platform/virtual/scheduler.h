#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/lock_order.h"
#include "platform/random.h"
#include "platform/ring.h"
#include "platform/virtual/due_queue.h"
#include "platform/virtual/fiber.h"
#include "platform/virtual/virtual_thread.h"

namespace iorder {

/// Decides which thread of the virtual runtime goes on, and owns the clock. One OS thread; nothing here
/// locks.
///
/// Seed 0: runnable threads go on first come, first served, and what is due at one moment happens one by one,
/// each when all that the last one set off has come to rest. Any other seed: whatever is due at the moment
/// happens at once, and a generator draws among the runnable threads; now and then it also takes the turn
/// from a thread that posts, sets an event or takes a lock.
class CScheduler {
 public:
  CScheduler(TimePoint start, uint64_t seed);
  ~CScheduler();
  CScheduler(const CScheduler&) = delete;
  CScheduler& operator=(const CScheduler&) = delete;

  TimePoint Now() const noexcept { return m_now; }
  CVirtualThread& Current() const noexcept { return *m_current; }
  CDueQueue& Due() noexcept { return m_due; }
  CLockOrder& LockOrder() noexcept { return m_lockOrder; }

  /// Runs `main` as the host's thread, then ends all others. What `main` raises goes on after that.
  std::vector<std::string> Run(const std::function<void()>& main);

  /// None if the system has no stack for it, or if all threads are being ended.
  std::shared_ptr<CVirtualThread> CreateThread(std::wstring name, std::function<void()> body);
  void Resume(CVirtualThread& thread);
  void Terminate(CVirtualThread& thread);
  void HoldThread(std::wstring_view name, Milliseconds time);

  /// Waits as IRuntime::Wait does, until a moment. At the moment itself whatever comes before this thread in
  /// order does so; a moment that has passed only looks.
  std::optional<size_t> Wait(std::span<CSignal* const> what, std::optional<TimePoint> until,
                             Precedence precedence);
  ThreadMessage GetMessage();

  /// Gives the turn away; returns when somebody has woken the calling thread.
  void Block();
  void Wake(CVirtualThread& thread);
  /// With a seed, gives the turn away now and then, so that other interleavings are tried.
  void MayYield() {
    if (m_seed != 0) DrawYield();
  }

  void NoteLockOrder(CVirtualThread& thread, CLockOrder::Role taken) {
    for (const CLockOrder::Role held : thread.m_heldRoles) {
      if (!m_lockOrder.IsKnown(held, taken)) AddLockOrder(thread, taken);
    }
  }

  /// Each fiber's first step after another one switched to it.
  void OnArrived() noexcept;
  /// The end of the calling thread.
  [[noreturn]] void Finish(CVirtualThread& thread) noexcept;

 private:
  bool ComesFirst(TimePoint until, Precedence precedence) const noexcept;
  std::optional<size_t> EndHold(CVirtualThread& self, std::optional<size_t> result);
  void DrawYield();
  void GiveTurn(CVirtualThread::State state);
  CVirtualThread& PickNext();
  void TakeDue();
  void AdvanceTo(TimePoint time) noexcept;
  void OnNothingLeft();
  void TerminateAll();
  void EndThreads();
  std::string DescribeThreads() const;
  void AddLockOrder(CVirtualThread& thread, CLockOrder::Role taken);
  void SignalEnd(CVirtualThread& thread);

  const uint64_t m_seed;
  CRandom m_random;
  TimePoint m_now;
  CDueQueue m_due;
  CRing<CVirtualThread*> m_runnable;
  CFiberStackPool m_stacks;
  CLockOrder m_lockOrder;
  std::vector<std::string> m_errors;
  std::map<std::wstring, TimePoint, std::less<>> m_holds;

  CVirtualThread m_host;
  CVirtualThread* m_current = &m_host;
  uint64_t m_lastThreadNumber = 0;
  std::map<uint64_t, std::shared_ptr<CVirtualThread>>
      m_threads;                               // all that haven't ended, but for the host's
  std::shared_ptr<CVirtualThread> m_finished;  // the stack of this one can go now
  bool m_isEnding = false;
  bool m_doesHostAwaitEnd = false;
};

}  // namespace iorder

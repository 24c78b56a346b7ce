#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/lock_order.h"
#include "platform/native/native_clock.h"
#include "platform/native/native_thread.h"
#include "platform/timer_delays.h"

namespace iorder {

/// What the objects of the native runtime share. One mutex guards the state of all of them, so that a wait
/// for several objects, a hand-over of a lock and an end by force are each one step; a call costs some tens
/// of nanoseconds.
class CNativeKernel {
 public:
  using Guard = std::unique_lock<std::mutex>;

  CNativeKernel(std::optional<TimePoint> start, double speed);
  ~CNativeKernel();
  CNativeKernel(const CNativeKernel&) = delete;
  CNativeKernel& operator=(const CNativeKernel&) = delete;

  std::mutex& Mutex() noexcept { return m_mutex; }
  const CNativeClock& Clock() const noexcept { return m_clock; }
  /// The calling thread; the host's for any that isn't one of this kernel's.
  CNativeThread& Current() noexcept;

  std::vector<std::string> Run(const std::function<void()>& main);
  std::shared_ptr<CNativeThread> CreateThread(std::wstring name, std::function<void()> body);
  void FailThreads(int times);
  void HoldThread(std::wstring_view name, Milliseconds time);

  std::optional<size_t> Wait(std::span<CSignal* const> what, std::optional<TimePoint> until);
  ThreadMessage GetMessage();

  // Under the mutex:
  CTimerDelays& TimerDelays() noexcept { return m_timerDelays; }
  CLockOrder& LockOrder() noexcept { return m_lockOrder; }
  void NoteLockOrder(const CNativeThread& thread, CLockOrder::Role taken);

 private:
  struct Running {
    std::shared_ptr<CNativeThread> thread;
    std::thread osThread;
  };

  std::optional<size_t> Wait(Guard& guard, CNativeThread& self, std::span<CSignal* const> what,
                             std::optional<TimePoint> until);
  std::optional<size_t> EndHold(Guard& guard, CNativeThread& self, std::optional<size_t> result);
  void WaitForWake(Guard& guard, CNativeThread& self, std::optional<TimePoint> until);
  void RunThread(CNativeThread& thread);
  void EndThreads();
  void JoinEnded();

  CNativeClock m_clock;  // constant but for Run's beginning
  std::mutex m_mutex;
  CNativeThread m_host;
  std::map<CNativeThread*, Running> m_threads;  // all that haven't ended
  std::vector<Running> m_ended;                 // to be joined
  std::condition_variable m_someEnded;
  CTimerDelays m_timerDelays;
  CLockOrder m_lockOrder;
  std::vector<std::string> m_errors;
  std::map<std::wstring, TimePoint, std::less<>> m_holds;
  int m_threadsToFail = 0;
  bool m_isEnding = false;
};

}  // namespace iorder

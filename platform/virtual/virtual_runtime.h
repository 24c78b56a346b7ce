#pragma once

#include <cstdint>
#include <string>

#include "platform/random.h"
#include "platform/reference_table.h"
#include "platform/timer_delays.h"
#include "platform/virtual/scheduler.h"
#include "platform/world_runtime.h"
#include "platform/zone_clock.h"

namespace iorder {

struct VirtualRuntimeOptions {
  /// IANA name of the zone of the local clock.
  std::string zone = "Asia/Taipei";
  /// What the local clock shows at the beginning; its dayOfWeek isn't read.
  DateTime start;
  /// 0 runs runnable threads first come, first served; any other draws among them. The ids come from it too.
  uint64_t seed = 0;
};

/// The runtime of the virtual clock: every thread is a fiber on the OS thread that calls Run, and when all of
/// them wait the clock jumps to what is due next. The same program with the same options does the same in the
/// same order, always.
///
/// Only the OS thread that made it may use it. Several of them run side by side on several OS threads. A lock
/// that is taken in different orders, two different locks of one name nested and a deadlock are errors of the
/// run. A hold of a thread doesn't keep it from being handed a lock.
class CVirtualRuntime final : public IWorldRuntime {
 public:
  /// Raises std::runtime_error for an unknown zone.
  explicit CVirtualRuntime(const VirtualRuntimeOptions& options);

  using IRuntime::Wait;

  std::shared_ptr<IThread> CreateThread(std::wstring name, std::function<void()> body) override;
  std::unique_ptr<IEvent> CreateEvent(EventReset reset, bool signalled) override;
  std::unique_ptr<IWaitableTimer> CreateWaitableTimer(std::wstring name) override;
  std::unique_ptr<ILock> CreateLock(const char* name) override;
  std::unique_ptr<ILock> CreateWatcherLock(const char* name) override;

  std::optional<size_t> Wait(std::span<IWaitable* const> what, std::optional<Milliseconds> limit) override;
  ThreadMessage GetMessage() override;
  void Sleep(Milliseconds time) override;
  const std::wstring& CurrentThreadName() override;

  DateTime LocalTime() override;
  DateTime UtcTime() override;

  Guid NewGuid() override;
  uint32_t NewObjectNumber() override;
  int64_t MakeReference(void* object) override;
  void* ResolveReference(int64_t reference) override;
  void ReleaseReference(int64_t reference) override;
  void RaiseShield() noexcept override;
  void LowerShield() noexcept override;

  std::vector<std::string> Run(const std::function<void()>& main) override;
  TimePoint Now() override;
  TimePoint FromLocal(const DateTime& local) override;
  DateTime ToLocal(TimePoint time) override;
  DateTime ToUtc(TimePoint time) override;
  void SleepUntil(TimePoint time, Precedence precedence) override;
  bool WaitUntil(IEvent& event, std::optional<TimePoint> time, Precedence precedence) override;
  void FailThreads(int times) override;
  void DelayTimer(std::wstring_view nameEnd, Milliseconds late) override;
  void HoldThread(std::wstring_view name, Milliseconds time) override;

 private:
  CZoneClock m_zone;
  CRandom m_guidRandom;  // not the scheduler's: an id more or less doesn't change who runs
  CReferenceTable m_references;
  CTimerDelays m_timerDelays;
  int m_threadsToFail = 0;
  CScheduler m_scheduler;
};

}  // namespace iorder

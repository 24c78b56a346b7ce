#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "platform/native/native_kernel.h"
#include "platform/random.h"
#include "platform/reference_table.h"
#include "platform/world_runtime.h"
#include "platform/zone_clock.h"

namespace iorder {

struct NativeRuntimeOptions {
  /// IANA name of the zone of the local clock.
  std::string zone = "Asia/Taipei";
  /// What the local clock shows when Run begins; none is the machine's clock. Its dayOfWeek isn't read.
  std::optional<DateTime> start;
  /// How many seconds of the clock pass in a real one: with 60, an hour passes in a minute.
  double speed = 1;
};

/// The runtime of real threads and the machine's clock. A clock with a start of choice stands still until Run
/// begins.
///
/// Where the standard library has no answer, the thread above all, a Windows build puts the platform's own
/// calls behind CNativeThread, CNativeEvent, CNativeTimer and CNativeLock; nothing else here knows of the
/// platform. A precedence of equal moments means nothing on real threads.
class CNativeRuntime final : public IWorldRuntime {
 public:
  /// Raises std::runtime_error for an unknown zone.
  explicit CNativeRuntime(const NativeRuntimeOptions& options);

  using IRuntime::Wait;

  std::shared_ptr<IThread> CreateThread(std::wstring name, std::function<void()> body) override;
  std::unique_ptr<IEvent> CreateEvent(EventReset reset, bool signalled) override;
  std::unique_ptr<IWaitableTimer> CreateWaitableTimer(std::wstring name) override;
  std::unique_ptr<ILock> CreateLock(const char* name) override;
  std::unique_ptr<ILock> CreateWatcherLock(const char* name) override { return CreateLock(name); }

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
  CReferenceTable m_references;
  std::mutex m_randomMutex;
  CRandom m_random;  // under m_randomMutex
  CNativeKernel m_kernel;
};

}  // namespace iorder

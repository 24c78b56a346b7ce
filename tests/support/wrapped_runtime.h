#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/runtime.h"

namespace iorder::test {

/// A good runtime of which single operations can be overridden. Waitable timers come as wrappers whose
/// Cancel can be refused.
class CWrappedRuntime : public IRuntime {
 public:
  explicit CWrappedRuntime(IRuntime& runtime) : m_runtime(runtime) {}

  using IRuntime::Wait;

  std::shared_ptr<IThread> CreateThread(std::wstring name, std::function<void()> body) override {
    return m_runtime.CreateThread(std::move(name), std::move(body));
  }
  PlatformError LastError() override { return m_runtime.LastError(); }
  std::unique_ptr<IEvent> CreateEvent(EventReset reset, bool signalled) override {
    return m_runtime.CreateEvent(reset, signalled);
  }
  std::unique_ptr<IWaitableTimer> CreateWaitableTimer(std::wstring name) override;
  std::unique_ptr<ILock> CreateLock(const char* name) override { return m_runtime.CreateLock(name); }
  std::optional<size_t> Wait(std::span<IWaitable* const> what, std::optional<Milliseconds> limit) override;
  ThreadMessage GetMessage() override { return m_runtime.GetMessage(); }
  void Sleep(Milliseconds time) override { m_runtime.Sleep(time); }
  const std::wstring& CurrentThreadName() override { return m_runtime.CurrentThreadName(); }
  DateTime LocalTime() override { return m_runtime.LocalTime(); }
  DateTime UtcTime() override { return m_runtime.UtcTime(); }
  TimePoint Now() override { return m_runtime.Now(); }
  TimePoint FromLocal(const DateTime& local) override { return m_runtime.FromLocal(local); }
  DateTime ToLocal(TimePoint time) override { return m_runtime.ToLocal(time); }
  Guid NewGuid() override { return m_runtime.NewGuid(); }
  uint32_t NewObjectNumber() override { return m_runtime.NewObjectNumber(); }
  int64_t MakeReference(void* object) override { return m_runtime.MakeReference(object); }
  void* ResolveReference(int64_t reference) override { return m_runtime.ResolveReference(reference); }
  void ReleaseReference(int64_t reference) override { m_runtime.ReleaseReference(reference); }
  void RaiseShield() noexcept override { m_runtime.RaiseShield(); }
  void LowerShield() noexcept override { m_runtime.LowerShield(); }

  bool refuseCancel = false;

 private:
  IRuntime& m_runtime;
};

}  // namespace iorder::test

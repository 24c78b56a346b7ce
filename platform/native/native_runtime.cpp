#include "platform/native/native_runtime.h"

#include <algorithm>
#include <random>

#include "platform/native/native_event.h"
#include "platform/native/native_lock.h"
#include "platform/native/native_timer.h"
#include "platform/signal_array.h"
#include "platform/time_limit.h"

namespace iorder {
namespace {

uint64_t MachineSeed() {
  std::random_device device;
  return uint64_t{device()} << 32 | device();
}

using NativeSignals = SignalArray<CNativeEvent, CNativeTimer, CNativeThread>;

}  // namespace

CNativeRuntime::CNativeRuntime(const NativeRuntimeOptions& options)
    : m_zone(options.zone),
      m_random(MachineSeed()),
      m_kernel(options.start ? std::optional(m_zone.FromLocal(*options.start)) : std::nullopt,
               options.speed) {}

std::shared_ptr<IThread> CNativeRuntime::CreateThread(std::wstring name, std::function<void()> body) {
  return m_kernel.CreateThread(std::move(name), std::move(body));
}

std::unique_ptr<IEvent> CNativeRuntime::CreateEvent(EventReset reset, bool signalled) {
  return std::make_unique<CNativeEvent>(m_kernel, reset, signalled);
}

std::unique_ptr<IWaitableTimer> CNativeRuntime::CreateWaitableTimer(std::wstring name) {
  return std::make_unique<CNativeTimer>(m_kernel, std::move(name));
}

std::unique_ptr<ILock> CNativeRuntime::CreateLock(const char* name) {
  return std::make_unique<CNativeLock>(m_kernel, name);
}

std::optional<size_t> CNativeRuntime::Wait(std::span<IWaitable* const> what,
                                           std::optional<Milliseconds> limit) {
  const NativeSignals signals(what);
  return m_kernel.Wait(signals.All(), EndOfLimit(m_kernel.Clock().Now(), limit));
}

ThreadMessage CNativeRuntime::GetMessage() {
  return m_kernel.GetMessage();
}

void CNativeRuntime::Sleep(Milliseconds time) {
  m_kernel.Wait({}, EndOfLimit(m_kernel.Clock().Now(), time));
  if (time <= Milliseconds::zero()) std::this_thread::yield();
}

const std::wstring& CNativeRuntime::CurrentThreadName() {
  return m_kernel.Current().Name();
}

DateTime CNativeRuntime::LocalTime() {
  return m_zone.ToLocal(Now());
}

DateTime CNativeRuntime::UtcTime() {
  return CZoneClock::ToUtc(Now());
}

Guid CNativeRuntime::NewGuid() {
  const std::lock_guard guard(m_randomMutex);
  return DrawGuid(m_random);
}

uint32_t CNativeRuntime::NewObjectNumber() {
  return m_references.NewObjectNumber();
}

int64_t CNativeRuntime::MakeReference(void* object) {
  return m_references.Make(object);
}

void* CNativeRuntime::ResolveReference(int64_t reference) {
  return m_references.Resolve(reference);
}

void CNativeRuntime::ReleaseReference(int64_t reference) {
  m_references.Release(reference);
}

void CNativeRuntime::RaiseShield() noexcept {
  m_kernel.Current().RaiseShield();
}

void CNativeRuntime::LowerShield() noexcept {
  m_kernel.Current().LowerShield();
}

std::vector<std::string> CNativeRuntime::Run(const std::function<void()>& main) {
  return m_kernel.Run(main);
}

TimePoint CNativeRuntime::Now() {
  return m_kernel.Clock().Now();
}

TimePoint CNativeRuntime::FromLocal(const DateTime& local) {
  return m_zone.FromLocal(local);
}

DateTime CNativeRuntime::ToLocal(TimePoint time) {
  return m_zone.ToLocal(time);
}

DateTime CNativeRuntime::ToUtc(TimePoint time) {
  return CZoneClock::ToUtc(time);
}

void CNativeRuntime::SleepUntil(TimePoint time, Precedence) {
  m_kernel.Wait({}, time);
}

bool CNativeRuntime::WaitUntil(IEvent& event, std::optional<TimePoint> time, Precedence) {
  IWaitable* const one[] = {&event};
  const NativeSignals signals(one);
  return m_kernel.Wait(signals.All(), time).has_value();
}

void CNativeRuntime::FailThreads(int times) {
  m_kernel.FailThreads(times);
}

void CNativeRuntime::DelayTimer(std::wstring_view nameEnd, Milliseconds late) {
  const std::lock_guard guard(m_kernel.Mutex());
  m_kernel.TimerDelays().Add(nameEnd, late);
}

void CNativeRuntime::HoldThread(std::wstring_view name, Milliseconds time) {
  m_kernel.HoldThread(name, time);
}

}  // namespace iorder

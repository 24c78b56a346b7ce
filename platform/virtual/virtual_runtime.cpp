#include "platform/virtual/virtual_runtime.h"

#include <algorithm>

#include "platform/signal_array.h"
#include "platform/time_limit.h"
#include "platform/virtual/virtual_event.h"
#include "platform/virtual/virtual_lock.h"
#include "platform/virtual/virtual_timer.h"

namespace iorder {
namespace {

/// Ids are drawn from a stream of their own.
constexpr uint64_t kGuidStream = 0x6775696473;

using VirtualSignals = SignalArray<CVirtualEvent, CVirtualTimer, CVirtualThread>;

}  // namespace

CVirtualRuntime::CVirtualRuntime(const VirtualRuntimeOptions& options)
    : m_zone(options.zone),
      m_guidRandom(options.seed ^ kGuidStream),
      m_scheduler(m_zone.FromLocal(options.start), options.seed) {}

std::shared_ptr<IThread> CVirtualRuntime::CreateThread(std::wstring name, std::function<void()> body) {
  if (m_threadsToFail > 0) {
    --m_threadsToFail;
    return nullptr;
  }
  return m_scheduler.CreateThread(std::move(name), std::move(body));
}

std::unique_ptr<IEvent> CVirtualRuntime::CreateEvent(EventReset reset, bool signalled) {
  return std::make_unique<CVirtualEvent>(m_scheduler, reset, signalled);
}

std::unique_ptr<IWaitableTimer> CVirtualRuntime::CreateWaitableTimer(std::wstring name) {
  return std::make_unique<CVirtualTimer>(m_scheduler, m_timerDelays, std::move(name));
}

std::unique_ptr<ILock> CVirtualRuntime::CreateLock(const char* name) {
  return std::make_unique<CVirtualLock>(m_scheduler, name);
}

std::unique_ptr<ILock> CVirtualRuntime::CreateWatcherLock(const char* name) {
  return std::make_unique<CVirtualLock>(m_scheduler, name, CVirtualLock::Turn::kKept);
}

std::optional<size_t> CVirtualRuntime::Wait(std::span<IWaitable* const> what,
                                            std::optional<Milliseconds> limit) {
  const VirtualSignals signals(what);
  return m_scheduler.Wait(signals.All(), EndOfLimit(m_scheduler.Now(), limit), Precedence::kEngine);
}

ThreadMessage CVirtualRuntime::GetMessage() {
  return m_scheduler.GetMessage();
}

void CVirtualRuntime::Sleep(Milliseconds time) {
  m_scheduler.Wait({}, m_scheduler.Now() + std::max(time, Milliseconds::zero()), Precedence::kEngine);
}

const std::wstring& CVirtualRuntime::CurrentThreadName() {
  return m_scheduler.Current().Name();
}

DateTime CVirtualRuntime::LocalTime() {
  return m_zone.ToLocal(m_scheduler.Now());
}

DateTime CVirtualRuntime::UtcTime() {
  return CZoneClock::ToUtc(m_scheduler.Now());
}

Guid CVirtualRuntime::NewGuid() {
  return DrawGuid(m_guidRandom);
}

uint32_t CVirtualRuntime::NewObjectNumber() {
  return m_references.NewObjectNumber();
}

int64_t CVirtualRuntime::MakeReference(void* object) {
  return m_references.Make(object);
}

void* CVirtualRuntime::ResolveReference(int64_t reference) {
  return m_references.Resolve(reference);
}

void CVirtualRuntime::ReleaseReference(int64_t reference) {
  m_references.Release(reference);
}

void CVirtualRuntime::RaiseShield() noexcept {
  m_scheduler.Current().RaiseShield();
}

void CVirtualRuntime::LowerShield() noexcept {
  m_scheduler.Current().LowerShield();
}

std::vector<std::string> CVirtualRuntime::Run(const std::function<void()>& main) {
  return m_scheduler.Run(main);
}

TimePoint CVirtualRuntime::Now() {
  return m_scheduler.Now();
}

TimePoint CVirtualRuntime::FromLocal(const DateTime& local) {
  return m_zone.FromLocal(local);
}

DateTime CVirtualRuntime::ToLocal(TimePoint time) {
  return m_zone.ToLocal(time);
}

DateTime CVirtualRuntime::ToUtc(TimePoint time) {
  return CZoneClock::ToUtc(time);
}

void CVirtualRuntime::SleepUntil(TimePoint time, Precedence precedence) {
  m_scheduler.Wait({}, time, precedence);
}

bool CVirtualRuntime::WaitUntil(IEvent& event, std::optional<TimePoint> time, Precedence precedence) {
  CSignal* const one[] = {VirtualSignals::SignalOf(event)};
  return m_scheduler.Wait(one, time, precedence).has_value();
}

void CVirtualRuntime::FailThreads(int times) {
  m_threadsToFail = times;
}

void CVirtualRuntime::DelayTimer(std::wstring_view nameEnd, Milliseconds late) {
  m_timerDelays.Add(nameEnd, late);
}

void CVirtualRuntime::HoldThread(std::wstring_view name, Milliseconds time) {
  m_scheduler.HoldThread(name, time);
}

}  // namespace iorder

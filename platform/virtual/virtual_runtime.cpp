#include "platform/virtual/virtual_runtime.h"

#include <array>
#include <cassert>
#include <cstring>
#include <typeinfo>

#include "platform/virtual/virtual_event.h"
#include "platform/virtual/virtual_lock.h"
#include "platform/virtual/virtual_timer.h"

namespace iorder {
namespace {

/// Ids are drawn from a stream of their own.
constexpr uint64_t kGuidStream = 0x6775696473;

/// As many objects as these are waited for without allocating.
constexpr size_t kFewObjects = 8;

/// The inside of an object that this runtime gave out.
CSignal* SignalOf(IWaitable& waitable) {
  const std::type_info& type = typeid(waitable);
  if (type == typeid(CVirtualEvent)) return static_cast<CVirtualEvent*>(&waitable);
  if (type == typeid(CVirtualTimer)) return static_cast<CVirtualTimer*>(&waitable);
  assert(type == typeid(CVirtualThread));
  return static_cast<CVirtualThread*>(&waitable);
}

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

/// The moment at which a wait of this limit ends. A limit of 0 only looks, and so ends before now.
std::optional<TimePoint> CVirtualRuntime::EndOf(std::optional<Milliseconds> limit) const {
  if (!limit) return std::nullopt;
  if (*limit <= Milliseconds::zero()) return TimePoint::min();
  const TimePoint now = m_scheduler.Now();
  return *limit < TimePoint::max() - now ? now + *limit : TimePoint::max();
}

std::optional<size_t> CVirtualRuntime::Wait(std::span<IWaitable* const> what,
                                            std::optional<Milliseconds> limit) {
  std::array<CSignal*, kFewObjects> few;
  std::vector<CSignal*> many(what.size() > few.size() ? what.size() : 0);
  CSignal** const signals = many.empty() ? few.data() : many.data();
  for (size_t i = 0; i < what.size(); ++i) signals[i] = SignalOf(*what[i]);
  return m_scheduler.Wait({signals, what.size()}, EndOf(limit), Precedence::kEngine);
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
  Guid guid;
  for (size_t i = 0; i < sizeof guid.bytes; i += 8) {
    const uint64_t word = m_guidRandom.Next();
    // Byte by byte, so that the id is the same on machines of either byte order.
    for (size_t k = 0; k < 8; ++k) guid.bytes[i + k] = static_cast<uint8_t>(word >> (8 * k));
  }
  return guid;
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
  CSignal* const one[] = {SignalOf(event)};
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

#include "platform/native/native_kernel.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

#include "platform/native/native_timer.h"

namespace iorder {
namespace {

/// The thread of a kernel that this OS thread is.
thread_local CNativeThread* t_current = nullptr;

/// Brings the timers up to date among what a thread waits for, and gives the moment at which the first of
/// them is due.
template <class Range, class Projection>
std::optional<TimePoint> UpdateTimers(const Range& what, Projection signalOf, TimePoint now) {
  std::optional<TimePoint> first;
  for (const auto& one : what) {
    CSignal* const signal = signalOf(one);
    if (signal == nullptr || signal->GetKind() != CSignal::Kind::kTimer) continue;
    const auto due = static_cast<CNativeTimer*>(signal)->Update(now);
    if (due && (!first || *due < *first)) first = due;
  }
  return first;
}

}  // namespace

CNativeKernel::CNativeKernel(std::optional<TimePoint> start, double speed)
    : m_clock(start, speed), m_host(*this, L"host", nullptr) {}

CNativeKernel::~CNativeKernel() {
  EndThreads();
}

CNativeThread& CNativeKernel::Current() noexcept {
  return t_current != nullptr && &t_current->m_kernel == this ? *t_current : m_host;
}

std::vector<std::string> CNativeKernel::Run(const std::function<void()>& main) {
  m_clock.Start();
  std::exception_ptr stray;
  try {
    main();
  } catch (...) {
    stray = std::current_exception();
  }
  EndThreads();
  if (stray) std::rethrow_exception(stray);
  return std::exchange(m_errors, {});
}

std::shared_ptr<CNativeThread> CNativeKernel::CreateThread(std::wstring name, std::function<void()> body) {
  auto thread = std::make_shared<CNativeThread>(*this, std::move(name), std::move(body));
  JoinEnded();
  const Guard guard(m_mutex);
  if (m_threadsToFail > 0) {
    --m_threadsToFail;
    return nullptr;
  }
  if (m_isEnding) return nullptr;
  if (const auto hold = m_holds.find(thread->Name()); hold != m_holds.end())
    thread->m_heldUntil = hold->second;
  try {
    m_threads.emplace(thread.get(),
                      Running{thread, std::thread([this, self = thread.get()] { RunThread(*self); })});
  } catch (const std::system_error&) {
    return nullptr;
  }
  return thread;
}

void CNativeKernel::RunThread(CNativeThread& thread) {
  t_current = &thread;
  thread.RunBody();
  const Guard guard(m_mutex);
  thread.m_isEnded = true;
  const auto running = m_threads.find(&thread);
  m_ended.push_back(std::move(running->second));
  m_threads.erase(running);
  thread.Raise();
  m_someEnded.notify_all();
}

void CNativeKernel::EndThreads() {
  {
    Guard guard(m_mutex);
    m_isEnding = true;
    for (const auto& [thread, running] : m_threads) {
      thread->m_isCutOff = true;
      thread->Wake();
    }
    m_someEnded.wait(guard, [&] { return m_threads.empty(); });
    m_isEnding = false;
  }
  JoinEnded();
}

void CNativeKernel::JoinEnded() {
  std::vector<Running> ended;
  {
    const Guard guard(m_mutex);
    ended.swap(m_ended);
  }
  for (Running& one : ended) one.osThread.join();
}

void CNativeKernel::FailThreads(int times) {
  const Guard guard(m_mutex);
  m_threadsToFail = times;
}

void CNativeKernel::HoldThread(std::wstring_view name, Milliseconds time) {
  const Guard guard(m_mutex);
  const TimePoint until = m_clock.Now() + time;
  m_holds.insert_or_assign(std::wstring(name), until);
  for (const auto& [thread, running] : m_threads) {
    if (thread->Name() != name) continue;
    thread->m_heldUntil = until;
    thread->Wake();  // a hold may be shorter than the one it stands in
  }
}

std::optional<size_t> CNativeKernel::Wait(std::span<CSignal* const> what, std::optional<TimePoint> until) {
  Guard guard(m_mutex);
  return Wait(guard, Current(), what, until);
}

std::optional<size_t> CNativeKernel::Wait(Guard& guard, CNativeThread& self, std::span<CSignal* const> what,
                                          std::optional<TimePoint> until) {
  const bool mayBlock = !self.CheckCutOff();
  UpdateTimers(
      what, [](CSignal* signal) { return signal; }, m_clock.Now());
  for (size_t i = 0; i < what.size(); ++i) {
    if (what[i]->TryTake()) return EndHold(guard, self, i);
  }
  if (!mayBlock) return std::nullopt;
  if (until && *until <= m_clock.Now()) return EndHold(guard, self, std::nullopt);

  self.BeginWait(what);
  while (!self.Released() && !self.m_isCutOff) {
    const TimePoint now = m_clock.Now();
    auto next = UpdateTimers(
        self.Nodes(), [](const WaitNode& node) { return node.signal; }, now);
    if (self.Released() || (until && *until <= now)) break;
    if (until && (!next || *until < *next)) next = until;
    WaitForWake(guard, self, next);
  }
  self.EndWait();
  self.CheckCutOff();
  return EndHold(guard, self, self.Released());
}

void CNativeKernel::WaitForWake(Guard& guard, CNativeThread& self, std::optional<TimePoint> until) {
  if (until) {
    self.m_wake.wait_until(guard, m_clock.RealTimeOf(*until));
  } else {
    self.m_wake.wait(guard);
  }
}

/// A thread that is held returns from no wait, not even from a look, before the hold is over.
std::optional<size_t> CNativeKernel::EndHold(Guard& guard, CNativeThread& self,
                                             std::optional<size_t> result) {
  while (m_clock.Now() < self.m_heldUntil && !self.CheckCutOff()) WaitForWake(guard, self, self.m_heldUntil);
  return result;
}

ThreadMessage CNativeKernel::GetMessage() {
  CNativeThread& self = Current();
  CSignal* const hasMessages[] = {&self.m_hasMessages};
  Guard guard(m_mutex);
  for (;;) {
    const bool isCutOff = self.CheckCutOff();
    if (isCutOff || self.m_heldUntil <= m_clock.Now()) {
      if (const auto message = self.PopMessage()) return *message;
    }
    // Under a shield a thread that is cut off can't wait; it is told to end.
    if (isCutOff) return {kQuitMessage, 0, 0};
    Wait(guard, self, hasMessages, std::nullopt);
  }
}

void CNativeKernel::NoteLockOrder(const CNativeThread& thread, CLockOrder::Role taken) {
  for (const CLockOrder::Role held : thread.m_heldRoles) {
    if (m_lockOrder.IsKnown(held, taken)) continue;
    for (std::string& report : m_lockOrder.Add(thread.m_heldRoles, taken, thread.Name())) {
      m_errors.push_back(std::move(report));
    }
  }
}

}  // namespace iorder

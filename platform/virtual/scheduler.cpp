#include "platform/virtual/scheduler.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <utility>

#include "platform/fatal.h"
#include "platform/virtual/virtual_lock.h"

namespace iorder {
namespace {

/// With a seed, one in so many posts, settings of an event and takings of a lock gives the turn away.
constexpr uint32_t kYieldOneIn = 8;

}  // namespace

CScheduler::CScheduler(TimePoint start, uint64_t seed)
    : m_seed(seed), m_random(seed), m_now(start), m_host(*this, L"host") {}

CScheduler::~CScheduler() {
  // Threads that were made but never run to an end in Run.
  EndThreads();
}

std::vector<std::string> CScheduler::Run(const std::function<void()>& main) {
  assert(m_current == &m_host);
  std::exception_ptr stray;
  try {
    main();
  } catch (const ThreadCutOff&) {
    // A deadlock, which is in m_errors.
  } catch (...) {
    stray = std::current_exception();
  }
  EndThreads();
  m_host.m_isCutOff = false;
  if (stray) std::rethrow_exception(stray);
  return std::exchange(m_errors, {});
}

std::shared_ptr<CVirtualThread> CScheduler::CreateThread(std::wstring name, std::function<void()> body) {
  if (m_isEnding) return nullptr;
  CFiberStack stack = m_stacks.Take();
  if (!stack) return nullptr;
  const uint64_t number = ++m_lastThreadNumber;
  auto thread =
      std::make_shared<CVirtualThread>(*this, number, std::move(name), std::move(body), std::move(stack));
  if (const auto hold = m_holds.find(thread->Name()); hold != m_holds.end())
    thread->m_heldUntil = hold->second;
  m_threads.emplace(number, thread);
  return thread;
}

void CScheduler::Resume(CVirtualThread& thread) {
  if (thread.m_state == CVirtualThread::State::kNew) Wake(thread);
}

void CScheduler::Wake(CVirtualThread& thread) {
  assert(thread.m_state == CVirtualThread::State::kNew || thread.m_state == CVirtualThread::State::kBlocked);
  thread.m_state = CVirtualThread::State::kRunnable;
  m_runnable.PushBack(&thread);
}

void CScheduler::Terminate(CVirtualThread& thread) {
  if (thread.m_isCutOff || thread.m_state == CVirtualThread::State::kEnded) return;
  thread.m_isCutOff = true;
  if (thread.m_state == CVirtualThread::State::kNew) {
    const std::shared_ptr<CVirtualThread> keep = m_threads.at(thread.m_number);
    const std::function<void()> body = std::exchange(thread.m_body, nullptr);
    m_stacks.Give(thread.m_fiber.TakeStack());
    SignalEnd(thread);
  } else if (thread.m_state == CVirtualThread::State::kBlocked && !thread.m_mustGetLock) {
    if (thread.m_wantedLock != nullptr) thread.m_wantedLock->RemoveWaiter(thread);
    thread.EndWait();
    m_due.Remove(thread);
    Wake(thread);
  }
}

void CScheduler::SignalEnd(CVirtualThread& thread) {
  thread.m_state = CVirtualThread::State::kEnded;
  m_threads.erase(thread.m_number);
  thread.Raise();
  if (m_doesHostAwaitEnd && m_threads.empty()) Wake(m_host);
}

void CScheduler::Finish(CVirtualThread& thread) noexcept {
  while (!thread.m_heldLocks.empty()) {
    CVirtualLock& lock = *thread.m_heldLocks.back();
    m_errors.push_back("thread ended without leaving a lock: " + thread.DescribeWait());
    while (!thread.m_heldLocks.empty() && thread.m_heldLocks.back() == &lock) lock.Leave();
  }
  m_finished = m_threads.at(thread.m_number);
  SignalEnd(thread);
  CVirtualThread& next = PickNext();
  next.m_state = CVirtualThread::State::kRunning;
  m_current = &next;
  thread.m_fiber.LeaveTo(next.m_fiber);
}

void CScheduler::OnArrived() noexcept {
  if (m_finished == nullptr) return;
  m_stacks.Give(m_finished->m_fiber.TakeStack());
  m_finished.reset();
}

void CScheduler::HoldThread(std::wstring_view name, Milliseconds time) {
  const TimePoint until = m_now + time;
  m_holds.insert_or_assign(std::wstring(name), until);
  for (const auto& [number, thread] : m_threads) {
    if (thread->Name() != name) continue;
    thread->m_heldUntil = until;
    if (!thread->m_isInHold || thread->m_state != CVirtualThread::State::kBlocked)
      continue;  // it looks by itself
    m_due.Remove(*thread);
    thread->m_isInHold = false;
    Wake(*thread);
  }
}

std::optional<size_t> CScheduler::Wait(std::span<CSignal* const> what, std::optional<TimePoint> until,
                                       Precedence precedence) {
  CVirtualThread& self = *m_current;
  const bool mayBlock = !self.CheckCutOff() && (!until || *until >= m_now);
  for (size_t i = 0; i < what.size(); ++i) {
    if (what[i]->TryTake()) return EndHold(self, i);
  }
  if (!mayBlock) return EndHold(self, std::nullopt);
  if (until && ComesFirst(*until, precedence)) {
    AdvanceTo(*until);
    return EndHold(self, std::nullopt);
  }
  self.BeginWait(what);
  if (until) m_due.Add(self, *until, precedence);
  Block();
  self.CheckCutOff();
  return EndHold(self, self.Released());
}

ThreadMessage CScheduler::GetMessage() {
  CVirtualThread& self = *m_current;
  CSignal* const hasMessages[] = {&self.m_hasMessages};
  for (;;) {
    const bool isCutOff = self.CheckCutOff();
    if (isCutOff || self.m_heldUntil <= m_now) {
      if (const auto message = self.TakeMessage()) return *message;
    }
    // Under a shield a thread that is cut off can't wait; it is told to end.
    if (isCutOff) return {kQuitMessage, 0, 0};
    Wait(hasMessages, std::nullopt, Precedence::kEngine);
  }
}

/// True if nothing else happens before a thread that waits until then.
bool CScheduler::ComesFirst(TimePoint until, Precedence precedence) const noexcept {
  if (!m_runnable.IsEmpty()) return false;
  if (m_due.IsEmpty() || until < m_due.FirstTime()) return true;
  // At an equal moment, what was armed earlier comes first; with a seed it is drawn.
  return m_seed == 0 && until == m_due.FirstTime() && precedence < m_due.FirstPrecedence();
}

/// A thread that is held returns from no wait, not even from a look, before the hold is over.
std::optional<size_t> CScheduler::EndHold(CVirtualThread& self, std::optional<size_t> result) {
  while (m_now < self.m_heldUntil && !self.CheckCutOff()) {
    m_due.Add(self, self.m_heldUntil, Precedence::kEngine);
    self.m_isInHold = true;
    Block();
    self.m_isInHold = false;
  }
  return result;
}

void CScheduler::DrawYield() {
  if (m_random.Below(kYieldOneIn) != 0) return;
  m_runnable.PushBack(m_current);
  GiveTurn(CVirtualThread::State::kRunnable);
}

void CScheduler::Block() {
  GiveTurn(CVirtualThread::State::kBlocked);
}

void CScheduler::GiveTurn(CVirtualThread::State state) {
  CVirtualThread& self = *m_current;
  self.m_state = state;
  CVirtualThread& next = PickNext();
  next.m_state = CVirtualThread::State::kRunning;
  if (&next == &self) return;
  m_current = &next;
  self.m_fiber.SwitchTo(next.m_fiber);
  OnArrived();
}

CVirtualThread& CScheduler::PickNext() {
  for (;;) {
    if (m_seed != 0) {
      while (!m_due.IsEmpty() && m_due.FirstTime() <= m_now) TakeDue();
    }
    if (!m_runnable.IsEmpty()) break;
    if (!m_due.IsEmpty()) {
      AdvanceTo(m_due.FirstTime());
      TakeDue();
    } else {
      OnNothingLeft();
    }
  }
  if (m_seed == 0) return *m_runnable.PopFront();
  return *m_runnable.PopAt(m_random.Below(static_cast<uint32_t>(m_runnable.Size())));
}

void CScheduler::TakeDue() {
  CDueItem& item = m_due.First();
  m_due.Remove(item);
  item.OnDue();
}

void CScheduler::AdvanceTo(TimePoint time) noexcept {
  m_now = std::max(m_now, time);
}

/// Every thread waits and nothing is due. The others end first, while what the host's thread owns is still
/// there.
void CScheduler::OnNothingLeft() {
  if (!m_isEnding) {
    m_errors.push_back("deadlock: every thread waits and nothing is due\n" + DescribeThreads());
    TerminateAll();
  } else if (!m_doesHostAwaitEnd && !m_host.m_isCutOff) {
    Terminate(m_host);
  } else {
    EndProcess("threads that can't be ended\n" + DescribeThreads());
  }
}

void CScheduler::TerminateAll() {
  m_isEnding = true;
  const auto threads = m_threads;
  for (const auto& [number, thread] : threads) Terminate(*thread);
}

void CScheduler::EndThreads() {
  TerminateAll();
  if (!m_threads.empty()) {
    m_doesHostAwaitEnd = true;
    Block();
    m_doesHostAwaitEnd = false;
  }
  m_isEnding = false;
}

std::string CScheduler::DescribeThreads() const {
  std::string text = "  " + m_host.DescribeWait();
  for (const auto& [number, thread] : m_threads) text += "\n  " + thread->DescribeWait();
  return text;
}

void CScheduler::AddLockOrder(CVirtualThread& thread, CLockOrder::Role taken) {
  for (std::string& report : m_lockOrder.Add(thread.m_heldRoles, taken, thread.Name())) {
    m_errors.push_back(std::move(report));
  }
}

}  // namespace iorder

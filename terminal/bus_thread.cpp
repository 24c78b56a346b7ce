#include "terminal/bus_thread.h"

#include <algorithm>
#include <utility>

#include "terminal/input_error.h"

namespace iorder {

CBusThread::CBusThread(IWorldRuntime& runtime)
    : m_runtime(runtime),
      m_wake(runtime.CreateEvent(EventReset::kAuto, false)),
      m_done(runtime.CreateEvent(EventReset::kAuto, false)),
      m_section(runtime, "bus jobs") {}

void CBusThread::Start() {
  m_thread = m_runtime.CreateThread(L"bus", [this] { Loop(); });
  m_thread->Resume();
}

void CBusThread::Stop() {
  {
    CLockGuard guard(m_section);
    m_isOver = true;
    m_due.clear();
  }
  Run([] {});
}

void CBusThread::Run(std::function<void()> job) {
  {
    CLockGuard guard(m_section);
    m_handedOver = std::move(job);
  }
  m_wake->Set();
  m_runtime.WaitUntil(*m_done, std::nullopt, Precedence::kDayLine);
  if (m_raised) {
    std::rethrow_exception(std::exchange(m_raised, nullptr));
  }
}

void CBusThread::Post(TimePoint due, std::function<void()> job) {
  {
    CLockGuard guard(m_section);
    if (m_isOver) return;
    const auto place = std::upper_bound(m_due.begin(), m_due.end(), due,
                                        [](TimePoint time, const DueJob& other) { return time < other.due; });
    m_due.insert(place, {due, std::move(job)});
  }
  m_wake->Set();
}

void CBusThread::Loop() {
  while (true) {
    m_runtime.WaitUntil(*m_wake, NextDue(), Precedence::kDayLine);
    while (const std::optional<DueJob> due = TakeDue()) {
      due->job();
    }
    if (const std::function<void()> job = TakeHandedOver()) {
      try {
        job();
      } catch (const InputError&) {
        m_raised = std::current_exception();
      }
      m_done->Set();
    }
  }
}

std::optional<TimePoint> CBusThread::NextDue() {
  CLockGuard guard(m_section);
  return m_due.empty() ? std::nullopt : std::optional(m_due.front().due);
}

std::optional<CBusThread::DueJob> CBusThread::TakeDue() {
  CLockGuard guard(m_section);
  if (m_due.empty() || m_due.front().due > m_runtime.Now()) {
    return std::nullopt;
  }
  std::optional<DueJob> due = std::move(m_due.front());
  m_due.pop_front();
  return due;
}

std::function<void()> CBusThread::TakeHandedOver() {
  CLockGuard guard(m_section);
  return std::exchange(m_handedOver, nullptr);
}

}  // namespace iorder

#include "platform/virtual/virtual_thread.h"

#include <exception>

#include "platform/fatal.h"
#include "platform/text.h"
#include "platform/virtual/scheduler.h"
#include "platform/virtual/virtual_lock.h"

namespace iorder {

CVirtualThread::CVirtualThread(CScheduler& scheduler, std::wstring name)
    : CSignal(Kind::kThread, &m_name, EventReset::kManual, false),
      m_scheduler(scheduler),
      m_name(std::move(name)),
      m_number(0),
      m_state(State::kRunning) {}

CVirtualThread::CVirtualThread(CScheduler& scheduler, uint64_t number, std::wstring name,
                               std::function<void()> body, CFiberStack stack)
    : CSignal(Kind::kThread, &m_name, EventReset::kManual, false),
      m_scheduler(scheduler),
      m_name(std::move(name)),
      m_number(number),
      m_body(std::move(body)),
      m_state(State::kNew),
      m_fiber(std::move(stack), &Main, this) {}

CVirtualThread::~CVirtualThread() = default;

void CVirtualThread::Resume() {
  m_scheduler.Resume(*this);
}

void CVirtualThread::Terminate() {
  m_scheduler.Terminate(*this);
}

bool CVirtualThread::Post(const ThreadMessage& message) {
  if (m_state == State::kEnded) return false;
  m_messages.PushBack(message);
  m_hasMessages.Raise();
  m_scheduler.MayYield();
  return true;
}

std::optional<ThreadMessage> CVirtualThread::TakeMessage() {
  if (m_messages.IsEmpty()) return std::nullopt;
  const ThreadMessage message = m_messages.PopFront();
  if (m_messages.IsEmpty()) m_hasMessages.Clear();
  return message;
}

bool CVirtualThread::IsShielded() const noexcept {
  return m_shields != 0 || std::uncaught_exceptions() != 0;
}

bool CVirtualThread::CheckCutOff() const {
  if (!m_isCutOff) return false;
  if (!IsShielded()) throw ThreadCutOff();
  return true;
}

void CVirtualThread::OnReleased() {
  m_scheduler.Due().Remove(*this);
  m_scheduler.Wake(*this);
}

void CVirtualThread::OnDue() {
  EndWait();
  m_scheduler.Wake(*this);
}

void CVirtualThread::Main(void* argument) {
  CVirtualThread& self = *static_cast<CVirtualThread*>(argument);
  self.m_scheduler.OnArrived();
  try {
    if (!self.m_isCutOff) self.m_body();
  } catch (const ThreadCutOff&) {
  } catch (const std::exception& error) {
    EndProcess("thread '" + ToUtf8(self.m_name) + "' ended by an exception: " + error.what());
  } catch (...) {
    EndProcess("thread '" + ToUtf8(self.m_name) + "' ended by an exception of unknown kind");
  }
  ++self.m_shields;  // what the body held is taken down in peace
  self.m_body = nullptr;
  self.m_scheduler.Finish(self);
}

std::string CVirtualThread::DescribeWait() const {
  std::string text = "thread '" + ToUtf8(m_name) + "' ";
  if (m_state == State::kNew) {
    text += "waits for Resume";
  } else if (m_wantedLock != nullptr) {
    text += "waits for " + m_wantedLock->Describe();
  } else {
    std::string what;
    for (const WaitNode& node : Nodes()) {
      what += (what.empty() ? "" : " or ") +
              (node.signal != nullptr ? node.signal->Describe() : "something gone");
    }
    text += "waits for " + (what.empty() ? "a moment" : what);
  }
  for (size_t i = 0; i < m_heldLocks.size(); ++i) {
    text += (i == 0 ? ", holds '" : ", '") + std::string(m_heldLocks[i]->Name()) + "'";
  }
  return text;
}

}  // namespace iorder

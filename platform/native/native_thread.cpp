#include "platform/native/native_thread.h"

#include <exception>

#include "platform/fatal.h"
#include "platform/native/native_kernel.h"
#include "platform/text.h"

namespace iorder {

CNativeThread::CNativeThread(CNativeKernel& kernel, std::wstring name, std::function<void()> body)
    : CSignal(Kind::kThread, &m_name, EventReset::kManual, false),
      m_kernel(kernel),
      m_name(std::move(name)),
      m_body(std::move(body)) {}

CNativeThread::~CNativeThread() {
  const std::lock_guard guard(m_kernel.Mutex());
  DropWaiters();
}

void CNativeThread::Resume() {
  const std::lock_guard guard(m_kernel.Mutex());
  m_isResumed = true;
  Wake();
}

bool CNativeThread::Post(const ThreadMessage& message) {
  const std::lock_guard guard(m_kernel.Mutex());
  if (m_isEnded) return false;
  m_messages.PushBack(message);
  m_hasMessages.Raise();
  return true;
}

std::optional<ThreadMessage> CNativeThread::TakeMessage() {
  const std::lock_guard guard(m_kernel.Mutex());
  return PopMessage();
}

std::optional<ThreadMessage> CNativeThread::PopMessage() {
  if (m_messages.IsEmpty()) return std::nullopt;
  const ThreadMessage message = m_messages.PopFront();
  if (m_messages.IsEmpty()) m_hasMessages.Clear();
  return message;
}

void CNativeThread::Terminate() {
  // Windows: the same way, since its call that ends a thread leaves locks held and stacks as they are.
  const std::lock_guard guard(m_kernel.Mutex());
  m_isCutOff = true;
  Wake();
}

bool CNativeThread::IsShielded() const noexcept {
  return m_shields != 0 || std::uncaught_exceptions() != 0;
}

bool CNativeThread::CheckCutOff() const {
  if (!m_isCutOff) return false;
  if (!IsShielded()) throw ThreadCutOff();
  return true;
}

void CNativeThread::RunBody() {
  bool begins = false;
  {
    std::unique_lock lock(m_kernel.Mutex());
    m_wake.wait(lock, [&] { return m_isResumed || m_isCutOff; });
    begins = !m_isCutOff;
  }
  try {
    if (begins) m_body();
  } catch (const ThreadCutOff&) {
  } catch (const std::exception& error) {
    EndProcess("thread '" + ToUtf8(m_name) + "' ended by an exception: " + error.what());
  } catch (...) {
    EndProcess("thread '" + ToUtf8(m_name) + "' ended by an exception of unknown kind");
  }
  RaiseShield();  // what the body held is taken down in peace
  m_body = nullptr;
}

}  // namespace iorder

#include "platform/signal.h"

#include "platform/text.h"

namespace iorder {

void CSignal::DropWaiters() noexcept {
  while (m_first != nullptr) {
    WaitNode& node = *m_first;
    Unlink(node);
    node.signal = nullptr;
  }
}

void CSignal::Raise() {
  m_isRaised = true;
  while (m_first != nullptr && TryTake()) {
    const size_t index = m_first->index;
    CWaiter& waiter = *m_first->waiter;
    waiter.EndWait();
    waiter.m_released = index;
    waiter.OnReleased();
  }
}

bool CSignal::TryTake() {
  if (!m_isRaised) return false;
  if (m_reset == EventReset::kAuto) {
    m_isRaised = false;
    OnTaken();
  }
  return true;
}

std::string CSignal::Describe() const {
  const std::string name = m_name != nullptr ? " '" + ToUtf8(*m_name) + "'" : "";
  switch (m_kind) {
    case Kind::kEvent:
      return "an event" + name;
    case Kind::kTimer:
      return "timer" + name;
    case Kind::kThread:
      return "thread" + name;
    case Kind::kMessage:
      return "a message";
  }
  return name;
}

void CSignal::Link(WaitNode& node) noexcept {
  node.previous = m_last;
  node.next = nullptr;
  (m_last != nullptr ? m_last->next : m_first) = &node;
  m_last = &node;
}

void CSignal::Unlink(WaitNode& node) noexcept {
  (node.previous != nullptr ? node.previous->next : m_first) = node.next;
  (node.next != nullptr ? node.next->previous : m_last) = node.previous;
}

void CWaiter::BeginWait(std::span<CSignal* const> what) {
  m_released.reset();
  m_nodes.resize(what.size());
  for (size_t i = 0; i < what.size(); ++i) {
    m_nodes[i].waiter = this;
    m_nodes[i].signal = what[i];
    m_nodes[i].index = i;
    what[i]->Link(m_nodes[i]);
  }
}

void CWaiter::EndWait() noexcept {
  for (WaitNode& node : m_nodes) {
    if (node.signal != nullptr) node.signal->Unlink(node);
  }
  m_nodes.clear();
}

}  // namespace iorder

#include "platform/virtual/virtual_lock.h"

#include <algorithm>
#include <cassert>

#include "platform/text.h"
#include "platform/virtual/scheduler.h"
#include "platform/virtual/virtual_thread.h"

namespace iorder {

CVirtualLock::CVirtualLock(CScheduler& scheduler, const char* name, Turn turn)
    : m_scheduler(scheduler), m_name(name), m_role(scheduler.LockOrder().RoleOf(name)), m_turn(turn) {}

CVirtualLock::~CVirtualLock() {
  while (m_firstWaiter != nullptr) RemoveWaiter(*m_firstWaiter);
  if (m_owner != nullptr) DropOwner();
}

void CVirtualLock::Enter() {
  CVirtualThread& self = m_scheduler.Current();
  if (m_owner == &self) {
    ++m_depth;
    return;
  }
  self.CheckCutOff();
  if (m_turn == Turn::kGiven) m_scheduler.MayYield();
  if (!self.m_heldLocks.empty()) m_scheduler.NoteLockOrder(self, m_role);
  if (m_owner == nullptr) {
    SetOwner(self);
  } else {
    WaitInLine(self);
  }
}

void CVirtualLock::Leave() noexcept {
  assert(m_owner == &m_scheduler.Current());
  if (--m_depth != 0) return;
  DropOwner();
  if (m_firstWaiter == nullptr) return;
  CVirtualThread& next = *m_firstWaiter;
  RemoveWaiter(next);
  SetOwner(next);
  m_scheduler.Wake(next);
}

void CVirtualLock::WaitInLine(CVirtualThread& self) {
  self.m_wantedLock = this;
  self.m_nextInLock = nullptr;
  (m_lastWaiter != nullptr ? m_lastWaiter->m_nextInLock : m_firstWaiter) = &self;
  m_lastWaiter = &self;
  self.m_mustGetLock = self.IsShielded();
  m_scheduler.Block();
  self.m_mustGetLock = false;
  // Only the end by force wakes a thread without handing it the lock, which may even be gone by then.
  if (self.m_heldLocks.empty() || self.m_heldLocks.back() != this) throw ThreadCutOff();
}

void CVirtualLock::RemoveWaiter(CVirtualThread& thread) noexcept {
  CVirtualThread* previous = nullptr;
  for (CVirtualThread* one = m_firstWaiter; one != &thread; one = one->m_nextInLock) previous = one;
  (previous != nullptr ? previous->m_nextInLock : m_firstWaiter) = thread.m_nextInLock;
  if (m_lastWaiter == &thread) m_lastWaiter = previous;
  thread.m_wantedLock = nullptr;
}

void CVirtualLock::SetOwner(CVirtualThread& thread) {
  m_owner = &thread;
  m_depth = 1;
  thread.m_heldLocks.push_back(this);
  thread.m_heldRoles.push_back(m_role);
}

void CVirtualLock::DropOwner() noexcept {
  auto& locks = m_owner->m_heldLocks;
  auto& roles = m_owner->m_heldRoles;
  if (locks.back() == this) {
    locks.pop_back();
    roles.pop_back();
  } else {
    const auto found = std::find(locks.begin(), locks.end(), this);
    roles.erase(roles.begin() + (found - locks.begin()));
    locks.erase(found);
  }
  m_owner = nullptr;
}

std::string CVirtualLock::Describe() const {
  return "lock '" + std::string(m_name) + "' of thread '" + ToUtf8(m_owner->Name()) + "'";
}

}  // namespace iorder

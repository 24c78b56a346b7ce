#include "platform/native/native_lock.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace iorder {
namespace {

CLockOrder::Role RoleOf(CNativeKernel& kernel, const char* name) {
  const std::lock_guard guard(kernel.Mutex());
  return kernel.LockOrder().RoleOf(name);
}

}  // namespace

CNativeLock::CNativeLock(CNativeKernel& kernel, const char* name)
    : m_kernel(kernel), m_role(RoleOf(kernel, name)) {}

void CNativeLock::Enter() {
  CNativeThread& self = m_kernel.Current();
  CNativeKernel::Guard guard(m_kernel.Mutex());
  if (m_owner == &self) {
    ++m_depth;
    return;
  }
  self.CheckCutOff();
  m_kernel.NoteLockOrder(self, m_role);
  if (m_owner == nullptr) {
    m_owner = &self;
    m_depth = 1;
  } else {
    WaitInLine(guard, self);
  }
  self.m_heldRoles.push_back(m_role);
}

void CNativeLock::WaitInLine(CNativeKernel::Guard& guard, CNativeThread& self) {
  m_waiters.push_back(&self);
  while (m_owner != &self) {
    if (self.m_isCutOff && !self.IsShielded()) {
      std::erase(m_waiters, &self);
      throw ThreadCutOff();
    }
    self.m_wake.wait(guard);
  }
}

void CNativeLock::Leave() noexcept {
  CNativeThread& self = m_kernel.Current();
  const std::lock_guard guard(m_kernel.Mutex());
  assert(m_owner == &self);
  if (--m_depth != 0) return;
  const auto role = std::find(self.m_heldRoles.rbegin(), self.m_heldRoles.rend(), m_role);
  self.m_heldRoles.erase(std::prev(role.base()));
  m_owner = nullptr;
  if (m_waiters.empty()) return;
  m_owner = m_waiters.front();
  m_depth = 1;
  m_waiters.pop_front();
  m_owner->Wake();
}

}  // namespace iorder

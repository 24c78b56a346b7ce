#include "grouporder/group_order_book.h"

#include <utility>

namespace iorder {

namespace {

/// Behind the last id comes the first again.
constexpr int32_t kLastTimerId = 9000;

}  // namespace

CGroupOrderBook::CGroupOrderBook(IRuntime& runtime)
    : m_csPending(runtime, "m_csPending"),
      m_csOrders(runtime, "m_csOrders"),
      m_csTimers(runtime, "m_csTimers") {}

// ---- Pending orders ----

void CGroupOrderBook::AddPending(const GroupOrderPtr& order) {
  CLockGuard guard(m_csPending);
  m_arPendingOrders.push_back(order);
}

std::vector<GroupOrderPtr> CGroupOrderBook::TakePending() {
  CLockGuard guard(m_csPending);
  return std::exchange(m_arPendingOrders, {});
}

void CGroupOrderBook::RemovePending(const std::vector<size_t>& indices) {
  CLockGuard guard(m_csPending);
  for (auto index = indices.rbegin(); index != indices.rend(); ++index) {
    if (*index >= m_arPendingOrders.size()) continue;
    m_arPendingOrders.erase(m_arPendingOrders.begin() + static_cast<ptrdiff_t>(*index));
  }
}

// ---- Orders that have sent ----

GroupOrderPtr CGroupOrderBook::Enter(const GroupOrderPtr& order) {
  CLockGuard guard(m_csOrders);
  return std::exchange(m_mapOrders[order->strStrategyID], order);
}

GroupOrderPtr CGroupOrderBook::Find(const std::wstring& strategyID) {
  CLockGuard guard(m_csOrders);
  const auto found = m_mapOrders.find(strategyID);
  return found != m_mapOrders.end() ? found->second : nullptr;
}

GroupOrderPtr CGroupOrderBook::Remove(const std::wstring& strategyID) {
  CLockGuard guard(m_csOrders);
  const auto node = m_mapOrders.extract(strategyID);
  return node ? node.mapped() : nullptr;
}

// ---- Children ----

bool CGroupOrderBook::NoteChild(const std::wstring& levelKey) {
  CLockGuard guard(m_csOrders);
  return m_mapChildRecords.try_emplace(levelKey).second;
}

CGroupOrderBook::Handles CGroupOrderBook::KeepChild(const std::wstring& levelKey,
                                                    std::unique_ptr<CBaseData> record) {
  CLockGuard guard(m_csOrders);
  Handles ended = std::exchange(m_arDeadRecords, {});
  std::unique_ptr<CBaseData>& kept = m_mapChildRecords[levelKey];
  if (kept != nullptr) m_arDeadRecords.push_back(std::move(kept));  // its event may be running
  kept = std::move(record);
  return ended;
}

void CGroupOrderBook::EndChild(const std::wstring& levelKey) {
  CLockGuard guard(m_csOrders);
  auto node = m_mapChildRecords.extract(levelKey);
  if (node && node.mapped() != nullptr) m_arDeadRecords.push_back(std::move(node.mapped()));
}

CGroupOrderBook::Handles CGroupOrderBook::TakeHandles() {
  CLockGuard guard(m_csOrders);
  Handles handles = std::exchange(m_arDeadRecords, {});
  for (auto& [levelKey, record] : m_mapChildRecords) handles.push_back(std::move(record));
  m_mapChildRecords.clear();
  return handles;
}

// ---- Re-check timers ----

CGroupOrderBook::CRecheck CGroupOrderBook::NoteRecheck(const GroupOrderPtr& order) {
  CLockGuard guard(m_csTimers);
  const auto [timer, isNew] = m_mapOrderTimers.try_emplace(order->strStrategyID, 0);
  if (!isNew) return {timer->second, false, nullptr};
  timer->second = NextTimerId();
  // A stale entry under a reused id is overwritten.
  return {timer->second, true, std::exchange(m_mapTimerOrders[timer->second], order)};
}

int32_t CGroupOrderBook::NextTimerId() {
  m_lNextTimerId = m_lNextTimerId < kLastTimerId ? m_lNextTimerId + 1 : kFirstTimerId;
  return m_lNextTimerId;
}

GroupOrderPtr CGroupOrderBook::TakeRecheck(int32_t timerId) {
  CLockGuard guard(m_csTimers);
  const auto node = m_mapTimerOrders.extract(timerId);
  if (!node) return nullptr;
  m_mapOrderTimers.erase(node.mapped()->strStrategyID);
  return node.mapped();
}

}  // namespace iorder

#include "app/group_order_watcher.h"

namespace iorder {

void CGroupOrderWatcher::Tell(const std::function<void(IGroupOrderWatch& watch)>& what) {
  m_terminal.Aside([&](const DateTime& local) { what(m_listener.GroupOrders(local)); });
}

void CGroupOrderWatcher::OnLook(const stcIntlgntOrd& order, const CStopCheck& check) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnLook(order, check); });
}

void CGroupOrderWatcher::OnCycle(const stcIntlgntOrd& order, const CGroupCycle& cycle) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnCycle(order, cycle); });
}

void CGroupOrderWatcher::OnEnd(const stcIntlgntOrd& order, GroupOrderEnd end) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnEnd(order, end); });
}

void CGroupOrderWatcher::OnChild(const stcIntlgntOrd& order, const std::wstring& levelKey) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnChild(order, levelKey); });
}

void CGroupOrderWatcher::OnChildUpdate(const stcIntlgntOrd& order, const std::wstring& levelKey,
                                       int32_t execType, size_t live) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnChildUpdate(order, levelKey, execType, live); });
}

void CGroupOrderWatcher::OnNoLook(const stcIntlgntOrd& order) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnNoLook(order); });
}

void CGroupOrderWatcher::OnRecheck(const stcIntlgntOrd& order, int32_t timerId, int32_t delayMs) {
  Tell([&](IGroupOrderWatch& watch) { watch.OnRecheck(order, timerId, delayMs); });
}

}  // namespace iorder

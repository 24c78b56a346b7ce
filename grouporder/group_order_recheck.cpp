#include <atomic>

#include "grouporder/group_orders.h"

namespace iorder {

void CGroupOrders::OnOrderRecheck(int32_t timerId) {
  const GroupOrderPtr order = m_book.TakeRecheck(timerId);
  if (order == nullptr) return;
  // With children that appeared meanwhile it stays where it is: the last of them arms a new timer. And a
  // cycle that runs owns its order: an update that found it just before it was taken out has armed this
  // timer.
  if (order->ChildCount() != 0 || order->bAtWork.exchange(true)) {
    if (m_watch != nullptr) m_watch->OnNoLook(*order);
    return;
  }

  const GroupOrderPtr removed = m_book.Remove(order->strStrategyID);
  if (removed != nullptr && removed != order) TellEnd(*removed, GroupOrderEnd::kReplaced);
  if (IsDone(*order)) return;
  SubmitGroupOrder(order, ApplyCheckConditions(*order, m_host.StrategyPosition()));
}

bool CGroupOrders::IsDone(stcIntlgntOrd& order) {
  const CStopCheck check = CheckStopCondition(order, m_host.StrategyPosition());
  if (m_watch != nullptr) m_watch->OnLook(order, check);
  if (check.bStop) TellEnd(order, GroupOrderEnd::kTarget);
  return check.bStop;
}

}  // namespace iorder

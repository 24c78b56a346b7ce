#include <atomic>

#include "grouporder/group_orders.h"

namespace iorder {

void CGroupOrders::OnOrderRecheck(int32_t timerId) {
  const GroupOrderPtr order = m_book.TakeRecheck(timerId);
  // With children that appeared meanwhile it stays where it is: the last of them arms a new timer.
  if (order == nullptr || order->ChildCount() != 0) return;
  // An update that found the order just before it was taken out has armed a second timer: the cycle that is
  // running owns the order.
  if (order->bAtWork.exchange(true)) return;

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

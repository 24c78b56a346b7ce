#include "grouporder/group_orders.h"

namespace iorder {

bool CGroupOrders::AreRecordsReady(const stcIntlgntOrd& order) {
  bool isReady = true;
  for (const auto* names : {&order.arCallSymbols, &order.arPutSymbols}) {
    for (const std::wstring& name : *names) isReady = m_host.IsQuoteValid(name) || isReady;
  }
  return isReady;
}

void CGroupOrders::PassPendingOrders() {
  const std::vector<GroupOrderPtr> orders = m_book.TakePending();
  if (orders.empty()) return;
  std::vector<size_t> submitted;
  for (size_t i = 0; i < orders.size(); ++i) {
    if (!AreRecordsReady(*orders[i])) continue;
    submitted.push_back(i);
    SubmitGroupOrder(orders[i], {});
  }
  m_book.RemovePending(submitted);
}

}  // namespace iorder

#include <algorithm>
#include <utility>

#include "grouporder/chase_price.h"
#include "grouporder/group_id.h"
#include "grouporder/group_orders.h"
#include "grouporder/leg_orders.h"
#include "grouporder/leg_scan.h"
#include "grouporder/position_node.h"

namespace iorder {

namespace {

constexpr const wchar_t* kOrderTopic = L"TRADE.NEWORDER";

bool HasGroup(const stcIntlgntOrd& order, const wchar_t* group) {
  return std::find(order.strGroup.begin(), order.strGroup.end(), group) != order.strGroup.end();
}

/// The last leg that has an option; none: no leg ever found one.
const std::wstring* LastLegSymbol(const stcIntlgntOrd& order) {
  for (size_t leg = kLegs; leg-- > 0;) {
    if (!order.strLegSymbol[leg].empty()) return &order.strLegSymbol[leg];
  }
  return nullptr;
}

}  // namespace

void CGroupOrders::SubmitGroupOrder(const GroupOrderPtr& order, const CBandChecks& checks) {
  CGroupCycle cycle;
  CHeldPositions positions = LoadPositions(m_host.StrategyPosition(), order->strStrategyID);
  CLegScan scan(m_host, *order, m_watch != nullptr ? &cycle.candidates : nullptr);
  scan.Run(positions);

  const std::wstring* chaseSymbol = LastLegSymbol(*order);
  if (chaseSymbol == nullptr) {
    TellEnd(*order, GroupOrderEnd::kNoLeg);
    return;
  }
  const std::wstring chasePrice = BuildChasePrice(m_host.ExtendOrderSetup(), kGroupChaseKind,
                                                  order->strBrokerID, order->strAccount, *chaseSymbol);
  NameGroups(*order);
  cycle.orders = MakeLegOrders(*order, scan, chasePrice);
  if (m_watch != nullptr) {
    cycle.checks = checks;
    for (size_t leg = 0; leg < kLegs; ++leg) cycle.held[leg] = scan.Held(leg);
    m_watch->OnCycle(*order, cycle);
  }

  // Entered before the first string leaves: the host may announce a child at once.
  Enter(order);
  for (const CLegOrder& leg : cycle.orders) m_host.SendHostEvent(kOrderTopic, 1, 2, leg.strText, {});
  if (cycle.orders.empty()) TellEnd(*order, GroupOrderEnd::kNothing);
}

void CGroupOrders::NameGroups(stcIntlgntOrd& order) {
  IRuntime& runtime = m_host.GetWorld().runtime;
  if (HasGroup(order, L"A")) order.strGroupAId = MakeGroupId(runtime);
  if (HasGroup(order, L"B")) order.strGroupBId = MakeGroupId(runtime);
}

void CGroupOrders::Enter(const GroupOrderPtr& order) {
  order->bAtWork = false;
  const GroupOrderPtr former = m_book.Enter(order);
  if (former != nullptr && former != order) TellEnd(*former, GroupOrderEnd::kReplaced);
}

void CGroupOrders::TellEnd(const stcIntlgntOrd& order, GroupOrderEnd end) {
  if (m_watch != nullptr) m_watch->OnEnd(order, end);
}

}  // namespace iorder

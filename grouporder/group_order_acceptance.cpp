#include <algorithm>

#include "grouporder/group_order_text.h"
#include "grouporder/group_orders.h"
#include "records/option_figures_record.h"
#include "reference/symbol.h"

namespace iorder {

namespace {

/// The legs' sides, by the direction alone; any direction but these leaves them unset.
PerLeg<int32_t> SidesOf(int32_t lDirection) {
  switch (lDirection) {
    case direction::kRise:
      return {side::kBuy, side::kSell, side::kSell, side::kBuy};
    case direction::kFall:
      return {side::kSell, side::kBuy, side::kBuy, side::kSell};
    default:
      return {};
  }
}

bool HasLeg(const stcIntlgntOrd& order, const wchar_t* callPut) {
  return std::find(order.strCallPut.begin(), order.strCallPut.end(), callPut) != order.strCallPut.end();
}

}  // namespace

void CGroupOrders::ParseGroupOrder(const rapidjson::Value& command) {
  const auto order = std::make_shared<stcIntlgntOrd>(m_host.GetWorld().runtime);
  order->llNumber = ++m_llLastNumber;
  ReadGroupOrder(command, *order);

  if (IsDone(*order)) return;
  order->lSide = SidesOf(order->lDirection);
  const CBandChecks checks = ApplyCheckConditions(*order, m_host.StrategyPosition());
  if (SubscribeChain(*order)) {
    SubmitGroupOrder(order, checks);
  } else {
    AddPending(order);
  }
}

bool CGroupOrders::SubscribeChain(stcIntlgntOrd& order) {
  const bool hasCall = HasLeg(order, L"Call");
  const bool hasPut = HasLeg(order, L"Put");
  // Stays true: the first cycle doesn't wait for data, and what has none yet competes as it is.
  bool isReady = true;
  const auto ensure = [this, &isReady](std::vector<std::wstring>& names, const std::wstring& name) {
    isReady = m_host.EnsureOptionTopic(name) || isReady;
    names.push_back(name);
  };
  for (const std::wstring& symbol : m_host.QueryOptionList(order.strSecurity)) {
    const std::wstring name = std::wstring(kOptionFiguresRecord) + symbol;
    if (hasCall) ensure(order.arCallSymbols, name);
    if (hasPut) ensure(order.arPutSymbols, PutOf(name));
  }
  return isReady;
}

}  // namespace iorder

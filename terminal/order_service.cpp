#include "terminal/order_service.h"

namespace iorder {

COrderService::COrderService(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                             CAccountsRecord& accounts, CEngineMessages& messages,
                             const std::optional<OrderRules>& rules, uint64_t seed)
    : m_bus(bus),
      m_accounts(accounts),
      m_list(runtime),
      m_children(bus, messages),
      m_manual(bus, m_list, m_children),
      m_positions(runtime, bus) {
  if (rules) {
    m_automatic.emplace(runtime, bus, busThread, accounts, m_children, m_positions, *rules, seed);
  }
}

void COrderService::NewOrder(const std::wstring& text) {
  OrderFields fields = ParseOrderText(text);
  std::wstring complaint = ComplaintOf(fields);
  const SentOrderPtr order = m_list.AddOrder(text, std::move(fields), std::move(complaint));
  if (m_automatic) {
    m_automatic->OnOrder(order);
  }
}

std::wstring COrderService::ComplaintOf(const OrderFields& fields) {
  std::wstring complaint =
      m_accounts.ComplaintAbout(OrderField(fields, L"BROKERID"), OrderField(fields, L"ACCOUNT"));
  if (!complaint.empty()) {
    return complaint;
  }
  const std::wstring symbol = OrderField(fields, L"SYMBOL");
  return m_bus.HasData(symbol) ? std::wstring() : L"unknown symbol " + symbol;
}

void COrderService::CancelOrder(const std::wstring& text) {
  const SentCancel cancel = m_list.AddCancel(text);
  if (m_automatic) {
    m_automatic->OnCancel(cancel);
  }
}

void COrderService::Child(const ChildAction& child) {
  // What ends a child that works is told behind what was told of it before; all else is as the line says.
  if (!m_automatic || !m_automatic->EndChild(child)) {
    m_manual.Child(child);
  }
}

void COrderService::Position(const PositionAction& position) {
  if (m_automatic) {
    m_positions.Set(position);
  } else {
    m_manual.Position(position);
  }
}

}  // namespace iorder

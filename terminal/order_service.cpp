#include "terminal/order_service.h"

namespace iorder {

COrderService::COrderService(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                             CAccountsRecord& accounts, const std::optional<OrderRules>& rules, uint64_t seed)
    : m_bus(bus), m_accounts(accounts), m_list(runtime), m_manual(bus, m_list) {
  if (rules) {
    m_automatic.emplace(runtime, bus, busThread, accounts, *rules, seed);
  }
}

void COrderService::NewOrder(const std::wstring& text) {
  OrderFields fields = ParseOrderText(text);
  std::wstring complaint = ComplaintOf(fields);
  const SentOrder order = m_list.AddOrder(text, std::move(fields), std::move(complaint));
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

}  // namespace iorder

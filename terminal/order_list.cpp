#include "terminal/order_list.h"

#include <utility>

#include "records/number_text.h"
#include "terminal/input_error.h"

namespace iorder {

SentOrderPtr COrderList::AddOrder(const std::wstring& text, OrderFields fields, std::wstring complaint) {
  SentOrder order;
  order.time = m_runtime.Now();
  order.text = text;
  order.fields = std::move(fields);
  order.complaint = std::move(complaint);
  CLockGuard guard(m_section);
  order.number = static_cast<int32_t>(m_orders.size()) + 1;
  m_orders.push_back(std::make_shared<const SentOrder>(std::move(order)));
  return m_orders.back();
}

SentCancel COrderList::AddCancel(const std::wstring& text) {
  SentCancel cancel{m_runtime.Now(), text, OrderField(ParseOrderText(text), L"REPORTID")};
  CLockGuard guard(m_section);
  m_cancels.push_back(cancel);
  return cancel;
}

std::vector<SentOrderPtr> COrderList::Orders() {
  CLockGuard guard(m_section);
  return m_orders;
}

std::vector<SentCancel> COrderList::Cancels() {
  CLockGuard guard(m_section);
  return m_cancels;
}

SentOrderPtr COrderList::Order(int32_t number) {
  CLockGuard guard(m_section);
  if (number < 1 || static_cast<size_t>(number) > m_orders.size()) {
    throw InputError("there is no order " + std::to_string(number) + " by then; the engine has sent " +
                     std::to_string(m_orders.size()));
  }
  return m_orders[static_cast<size_t>(number) - 1];
}

std::wstring ReportId(int32_t order) {
  return L"R" + std::to_wstring(order);
}

int32_t OrderOfReport(const std::wstring& reportId) {
  const int32_t order = reportId.empty() ? 0 : LeadingInt32(std::wstring_view(reportId).substr(1));
  return ReportId(order) == reportId ? order : 0;
}

}  // namespace iorder

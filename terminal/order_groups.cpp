#include "terminal/order_groups.h"

#include <utility>

#include "records/number_text.h"

namespace iorder {
namespace {

std::wstring GroupId(const SentOrder& order) {
  return OrderField(order.fields, L"GROUPID");
}

}  // namespace

bool IsGroupOrder(const SentOrder& order) {
  return LeadingInt64(OrderField(order.fields, L"SYNTHETIC")) == 1;
}

bool COrderGroups::Join(const SentOrderPtr& order) {
  if (GroupId(*order).empty()) return true;
  CLockGuard guard(m_section);
  std::vector<SentOrderPtr>& group = m_groups[GroupId(*order)];
  group.push_back(order);
  return group.size() == 1;
}

std::vector<SentOrderPtr> COrderGroups::Take(const SentOrderPtr& order) {
  if (GroupId(*order).empty()) return {order};
  CLockGuard guard(m_section);
  return std::move(m_groups.extract(GroupId(*order)).mapped());
}

}  // namespace iorder

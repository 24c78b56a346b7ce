#include "terminal/order_door.h"

#include <algorithm>

#include "records/number_text.h"
#include "terminal/security_info.h"

namespace iorder {
namespace {

/// One refusal is all orders' if the group says so.
void RefuseWholeGroup(std::vector<Arrival>& group) {
  if (LeadingInt64(OrderField(group.front().sent->fields, L"GROUPTYPE")) == 0) return;
  const auto refused = std::find_if(group.begin(), group.end(),
                                    [](const Arrival& arrival) { return !arrival.refusal.empty(); });
  if (refused == group.end()) return;
  const std::wstring reason =
      L"order " + ToDecimal(refused->sent->number) + L" of its group is rejected: " + refused->refusal;
  for (Arrival& arrival : group) {
    if (arrival.refusal.empty()) arrival.refusal = reason;
  }
}

}  // namespace

std::vector<Arrival> COrderDoor::Receive(const std::vector<SentOrderPtr>& together) {
  std::vector<Arrival> arrivals;
  for (const SentOrderPtr& sent : together) {
    OrderRequest request = ReadOrderRequest(sent->fields, m_rules.chase);
    CTickLadder ladder = TickLadderOf(m_bus, request.symbol);
    std::wstring refusal = RefusalOf(*sent, request);
    arrivals.push_back({sent, std::move(request), std::move(ladder), std::move(refusal)});
  }
  RefuseWholeGroup(arrivals);
  return arrivals;
}

std::wstring COrderDoor::RefusalOf(const SentOrder& sent, const OrderRequest& request) {
  if (!sent.complaint.empty()) return sent.complaint;
  // The account may have gone while the order was on its way.
  std::wstring complaint =
      m_accounts.ComplaintAbout(OrderField(sent.fields, L"BROKERID"), OrderField(sent.fields, L"ACCOUNT"));
  if (!complaint.empty()) return complaint;
  if (!request.mistake.empty()) return request.mistake;
  return m_draws.Rejects(sent.number, m_rules.reject) ? L"rejected by lot" : std::wstring();
}

}  // namespace iorder

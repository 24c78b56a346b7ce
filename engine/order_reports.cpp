#include "engine/intelligent_order.h"
#include "engine/report_payload.h"
#include "strategy/order_report.h"

namespace iorder {

void CIntelligentOrder::DispatchOrderSetUpdate(const std::wstring& payload) {
  CBaseData* const orderSet = m_pOrderSet.record;
  if (orderSet == nullptr) return;
  ForEachReportNode(payload, [this, orderSet](int32_t node) {
    const std::unique_ptr<CBaseData> report = orderSet->OpenNode(node);
    if (report == nullptr) return;
    const auto strategy = m_strategies.FindByKey(StrategyKeyOf(report->GetString(L"UserKey2")));
    if (strategy != nullptr) strategy->OnReportUpdate(report.get());
  });
}

}  // namespace iorder

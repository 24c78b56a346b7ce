#include "engine/engine_message.h"
#include "engine/intelligent_order.h"

namespace iorder {

void CIntelligentOrder::OnUpdate(CBaseData* source, int32_t, const std::wstring& payload) {
  if (m_pOrderSet.Is(source)) {
    if (source->GetEnum(L"IsReportReset", 0) == 1) return;
    PostText(&CIntelligentOrder::m_hMsgThread, engine_message::kReport, payload, 0);
  } else if (m_pSystemTime.Is(source)) {
    m_lSpeed = source->GetInt(L"Speed", 0);
  } else if (m_pAccounts.Is(source)) {
    m_accounts.Rebuild(*source);
  } else {
    Guarded([this, source] { m_groupOrders.OnChildOrderUpdate(*source); });
  }
}

}  // namespace iorder

#include "engine/intelligent_order.h"

// The roads whose ends aren't built yet, one operation each. Each goes from here when its end stands.

namespace iorder {

/// A command that isn't for a strategy: a conditional group order.
void CIntelligentOrder::ParseGroupOrder(const rapidjson::Document&) {}

/// The pass over group orders that wait for their option records.
void CIntelligentOrder::PassPendingOrders() {}

/// The host announces a child order of a group order by its record's handle.
void CIntelligentOrder::RegisterChildOrder(int32_t) {}

/// An update of a record that is none of the standing ones: a child order's.
void CIntelligentOrder::OnChildOrderUpdate(CBaseData*) {}

/// The re-check timer of a group order has fired.
void CIntelligentOrder::OnOrderRecheck(int32_t) {}

}  // namespace iorder

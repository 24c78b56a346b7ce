#pragma once

#include <memory>
#include <string>
#include <vector>

#include "grouporder/group_order.h"
#include "records/base_data.h"

/// Reading of the record "STRATEGY.POSITION": a node per strategy id, an item per held symbol.
namespace iorder {

/// The node of a strategy, or none; also if the record itself isn't there.
std::unique_ptr<CBaseData> OpenPositionNode(CBaseData* strategyPosition, const std::wstring& strategyID);

/// The items of a node that open, in their order.
std::vector<std::unique_ptr<CBaseData>> OpenItems(CBaseData& node);

/// What a strategy holds, calls and puts apart, in the order of the items. A symbol that isn't a call's
/// counts as a put's.
struct CHeldPositions {
  std::vector<stcPosition> calls;
  std::vector<stcPosition> puts;
};
CHeldPositions LoadPositions(CBaseData* strategyPosition, const std::wstring& strategyID);

}  // namespace iorder

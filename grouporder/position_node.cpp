#include "grouporder/position_node.h"

#include <utility>

#include "reference/symbol.h"

namespace iorder {

namespace {

int32_t ReadCut(CBaseData& item, const wchar_t* field) {
  return static_cast<int32_t>(item.GetInt64(field, NoValue));
}

}  // namespace

std::unique_ptr<CBaseData> OpenPositionNode(CBaseData* strategyPosition, const std::wstring& strategyID) {
  return strategyPosition != nullptr ? strategyPosition->OpenNodeByName(strategyID, nullptr) : nullptr;
}

std::vector<std::unique_ptr<CBaseData>> OpenItems(CBaseData& node) {
  std::vector<std::unique_ptr<CBaseData>> items;
  const int32_t count = node.GetItemCount();
  for (int32_t i = 0; i < count; ++i) {
    if (auto item = node.OpenItem(i, nullptr)) items.push_back(std::move(item));
  }
  return items;
}

CHeldPositions LoadPositions(CBaseData* strategyPosition, const std::wstring& strategyID) {
  CHeldPositions held;
  const auto node = OpenPositionNode(strategyPosition, strategyID);
  if (node == nullptr) return held;
  for (const auto& item : OpenItems(*node)) {
    stcPosition position{item->GetString(L"Symbol"), ReadCut(*item, L"Quantity"), ReadCut(*item, L"Side")};
    auto& list = IsCall(position.strSymbol) ? held.calls : held.puts;
    list.push_back(std::move(position));
  }
  return held;
}

}  // namespace iorder

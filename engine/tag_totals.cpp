#include "engine/tag_totals.h"

namespace iorder {

const std::wstring* CTagTotals::Add(CStrategy& strategy) {
  static const std::wstring kCost = L"Cost";
  static const std::wstring kPnL = L"PnL";
  const CStrategy::IdentityPtr identity = strategy.Identity();
  if (identity->m_strStrategyType != L"OpenLottery") return nullptr;
  auto& [tag, total] = *m_totals.try_emplace(identity->m_strStrategyTag).first;
  total.dbCost += strategy.GetDoubleValue(kCost, 0.0);
  total.dbPnL += strategy.GetDoubleValue(kPnL, 0.0);
  return &tag;
}

CTagTotal CTagTotals::Of(const std::wstring& tag) const {
  const auto found = m_totals.find(tag);
  return found == m_totals.end() ? CTagTotal() : found->second;
}

}  // namespace iorder

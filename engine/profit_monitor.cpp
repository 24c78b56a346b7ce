#include "engine/profit_monitor.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "engine/profit_limit.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

void CProfitMonitor::Run() {
  const std::optional<CQuoteData> quote = m_quotes.Take();
  // A changed limit takes effect at once, without waiting for a quote.
  std::set<std::wstring> tags = m_limits.TakeChangedTags();
  if (!quote && tags.empty()) return;
  const CTagTotals totals = Value(quote, tags);
  const std::set<std::wstring> closing = TagsToClose(tags, totals);
  if (!closing.empty()) CloseOut(closing);
}

CTagTotals CProfitMonitor::Value(const std::optional<CQuoteData>& quote, std::set<std::wstring>& tags) {
  CTagTotals totals;
  m_strategies.ForEach([&](CStrategy& strategy) {
    const bool changed = quote && strategy.OnPositionProfit(*quote) != 0;
    const std::wstring* tag = totals.Add(strategy);
    if (changed && tag != nullptr) tags.insert(*tag);
  });
  return totals;
}

std::set<std::wstring> CProfitMonitor::TagsToClose(const std::set<std::wstring>& tags,
                                                   const CTagTotals& totals) {
  std::set<std::wstring> closing;
  for (const std::wstring& tag : tags) {
    const std::shared_ptr<CPnLInfo> limits = m_limits.Find(tag);
    if (limits == nullptr) continue;
    const CTagTotal total = totals.Of(tag);
    if (const auto line = ReachedLimit(tag, limits->Get(), total.dbCost, total.dbPnL)) {
      closing.insert(tag);
      m_host.WriteLog(*line);
    }
  }
  return closing;
}

void CProfitMonitor::CloseOut(const std::set<std::wstring>& tags) {
  m_strategies.ForEach([&](CStrategy& strategy) {
    const CStrategy::IdentityPtr identity = strategy.Identity();
    if (!tags.contains(identity->m_strStrategyTag)) return;
    m_host.WriteLog(
        fmt::sprintf(L"[OpenLottery] CalPositionProfit.ClosPos. strStrategyID=%s, strStrStrategyTag=%s, "
                     L"m_strStrStrategySN=%s.",
                     identity->m_strStrategyID, identity->m_strStrategyTag, identity->m_strStrategySN));
    m_host.PostEngineMessage(lottery_event::kLimitReached, &strategy, 0);
  });
}

}  // namespace iorder

#include "engine/profit_publisher.h"

#include <utility>

#include "records/scaled_value.h"
#include "strategy/status_message.h"

namespace iorder {

namespace {

constexpr int kMoneyDecimals = 2;

/// Hundredths, with a small term that takes up what the multiplication lost.
double CutToHundredths(double money) {
  const double hundredths = money * 100.0;
  return static_cast<double>(Truncate(money > 0 ? hundredths + 0.05 : hundredths - 0.05)) / 100.0;
}

std::wstring TotalProfitMessage(const std::wstring& tag, const CTagTotal& total) {
  CStatusMessage message("TotalProfit", tag, kMoneyDecimals);
  message.Integer("Cost", Truncate(total.dbCost)).Number("PnL", CutToHundredths(total.dbPnL));
  return message.Finish();
}

}  // namespace

void CProfitPublisher::Run() {
  const std::optional<CTagTotals> totals = PublishPositions();
  if (!totals) return;
  for (const auto& [tag, total] : totals->All()) PublishTotal(tag, total);
}

std::optional<CTagTotals> CProfitPublisher::PublishPositions() {
  CLockGuard guard(m_strategies.Lock());
  // In most cycles nothing has changed.
  bool changed = m_strategies.Revision() != m_revision;
  m_revision = m_strategies.Revision();
  m_strategies.ForEach([&changed](CStrategy& strategy) {
    strategy.PublishProfit();
    changed = strategy.TakeTotalsChanged() || changed;
  });
  if (!changed) return std::nullopt;
  CTagTotals totals;
  m_strategies.ForEach([&totals](CStrategy& strategy) { totals.Add(strategy); });
  return totals;
}

void CProfitPublisher::PublishTotal(const std::wstring& tag, const CTagTotal& total) {
  std::wstring text = TotalProfitMessage(tag, total);
  std::wstring& last = m_sent[tag];
  if (text == last) return;
  last = std::move(text);
  m_host.WriteLog(last);
  m_host.SendHostEvent(kClientTopic, 1, 1, last, std::wstring(L"OpenLottery"));
}

}  // namespace iorder

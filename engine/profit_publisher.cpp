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
  CTagTotals totals;
  m_strategies.ForEach([&totals](CStrategy& strategy) {
    strategy.PublishProfit();
    totals.Add(strategy);
  });
  for (const auto& [tag, total] : totals.All()) PublishTotal(tag, total);
}

void CProfitPublisher::PublishTotal(const std::wstring& tag, const CTagTotal& total) {
  const auto [sent, isNew] = m_sent.try_emplace(tag);
  CSent& last = sent->second;
  // Equal totals make an equal text: most cycles end here.
  if (!isNew && last.total.dbCost == total.dbCost && last.total.dbPnL == total.dbPnL) return;
  last.total = total;
  std::wstring text = TotalProfitMessage(tag, total);
  if (text == last.text) return;
  last.text = std::move(text);
  m_host.WriteLog(last.text);
  m_host.SendHostEvent(kClientTopic, 1, 1, last.text, std::wstring(L"OpenLottery"));
}

}  // namespace iorder

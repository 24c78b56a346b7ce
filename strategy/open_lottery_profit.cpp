#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr int kMoneyDecimals = 2;

bool IsUsable(double weight) {
  return weight > 0 && weight != NoPrice;
}

/// Down to the ten places of a scaled value.
double CutToScale(double money) {
  return static_cast<double>(ToScaled(money)) / kScale;
}

}  // namespace

void CStrategyOpenLottery::EnqueueSnapshot(const std::wstring& symbol, CBaseData* quote, int32_t updateId) {
  const auto field = [quote](int32_t id) { return quote != nullptr ? quote->GetFieldById(id) : NoValue; };
  Owner().EnqueueQuote({.strSymbol = symbol,
                        .llField21 = field(quote_field::kDate),
                        .llField2 = field(quote_field::kTime),
                        .llPrice = field(quote_field::kPrice),
                        .llField6 = field(quote_field::kVolume),
                        .lTransHandle = updateId});
}

int32_t CStrategyOpenLottery::OnPositionProfit(const CQuoteData& quote) {
  return m_positions.WithLock([&](auto& positions) {
    const auto found = positions.find(quote.strSymbol);
    if (found == positions.end() || !found->second.CanBeValued(quote.llPrice)) return 0;
    CPosInfo& position = found->second;
    position.llPrice = quote.llPrice;
    const double weight = WeightOf(quote.strSymbol, position);
    const double profit = position.ProfitAt(quote.llPrice, weight);
    if (profit == position.dbProfit && quote.lTransHandle != kNoUpdate) return 0;
    position.dbProfit = profit;
    position.bDirty = true;

    double totalProfit = 0.0;
    double totalCost = 0.0;
    for (const auto& [symbol, entry] : positions) {
      if (entry.dbProfit != NoPrice) totalProfit += entry.dbProfit;
      totalCost += entry.CostAt(weight);  // one weight for all: a chain has one
    }
    {
      CLockGuard guard(m_csProfit);
      m_dbTotalPnL = totalProfit;
      m_dbTotalCost = totalCost;
    }
    m_hasUntoldProfit = true;
    NoteTotalsChanged();
    WriteLog(fmt::sprintf(
        L"OnPositionProfit Result. strSymbol=%s, llAvgPrice=%lld, lCumQty=%d, llPrice=%lld, dbProfit=%f, "
        L"dbTotalProfit=%f, lTransHandle=%d.",
        quote.strSymbol, position.llAvgPrice, position.NetPosition(), position.llPrice, profit, totalProfit,
        quote.lTransHandle));
    return 1;
  });
}

double CStrategyOpenLottery::WeightOf(const std::wstring& symbol, CPosInfo& position) {
  if (IsUsable(position.dbWeight)) return position.dbWeight;
  const double weight = GetContractWeight(symbol);
  if (!IsUsable(weight)) return 1.0;  // and looked up again at the next quote
  return position.dbWeight = weight;
}

double CStrategyOpenLottery::GetDoubleValue(const std::wstring& name, double fallback) {
  const bool isProfit = name == L"PnL";
  if (!isProfit && name != L"Cost") return fallback;
  CLockGuard guard(m_csProfit);
  return isProfit ? m_dbTotalPnL : m_dbTotalCost;
}

void CStrategyOpenLottery::PublishProfit() {
  if (!m_hasUntoldProfit.load() || !m_hasUntoldProfit.exchange(false)) return;
  // Told under the lock, so that no close-out comes between what is told of one moment.
  m_positions.WithLock([this](auto& positions) {
    for (auto& [symbol, position] : positions) {
      if (!position.bDirty) continue;
      position.bDirty = false;
      CStatusMessage message(*Identity(), "Profit", kMoneyDecimals);
      message.About(StampText(), symbol)
          .Number("Last", FromScaled(position.llPrice))
          .Number("PnL", CutToScale(position.dbProfit));
      UpdateStatus(message.Finish(), 1);
    }
  });
}

}  // namespace iorder

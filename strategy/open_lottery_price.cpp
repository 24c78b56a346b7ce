#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "platform/platform_error.h"
#include "records/quote_field.h"
#include "reference/trading_calendar.h"
#include "strategy/order_pricing.h"
#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

double CStrategyOpenLottery::GetCalOrderPrice(const COpenLotteryInfo& info, const std::wstring& symbol) {
  COrderPricing pricing;
  pricing.strSymbol = symbol;
  ReadVolatility(info, pricing);
  ReadUnderlying(info, pricing);
  pricing.Calculate(info);
  const ScaledValue onTick =
      pricing.dbResult != NoPrice ? Owner().RoundToTick(symbol, pricing.dbResult) : NoValue;
  const double orderPrice = FromScaled(onTick);
  LogCalOrderPrice(info, pricing, orderPrice);
  PublishCalOrderPrice(info, pricing);
  return orderPrice;
}

void CStrategyOpenLottery::ReadVolatility(const COpenLotteryInfo& info, COrderPricing& pricing) {
  pricing.dbVolatility = info.m_dbVolatility;
  if (!info.TakesMarketVolatility()) return;
  std::wstring greeks;
  {
    CLockGuard guard(m_csRun);
    greeks = m_strSymbolUnderlyingGreeks;
  }
  const QuoteHandle handle = GetQuote(greeks);
  if (handle == nullptr) return;
  pricing.dbMarketVolatility = FromScaled(handle->GetInt64(L"ImpVol", NoValue));
  pricing.dbVolatility = pricing.dbMarketVolatility + info.m_dbAdjustIV;
}

void CStrategyOpenLottery::ReadUnderlying(const COpenLotteryInfo& info, COrderPricing& pricing) {
  {
    CLockGuard guard(m_csRun);
    pricing.strUnderlying = m_strSymbolUnderlying;
  }
  const std::wstring& underlying = pricing.strUnderlying;
  if (const int32_t id = PriceField(info.m_strPriceType); id != 0)
    pricing.dbUnderlyingPrice = FromScaled(GetQuoteField(underlying, id));
  pricing.llEndDate = GetQuoteField(underlying, quote_field::kEndDate);
  if (pricing.llEndDate != NoValue) CountDays(pricing);
}

/// A last day that is no date leaves no days, like one that is missing: the price is told whatever comes of
/// it.
void CStrategyOpenLottery::CountDays(COrderPricing& pricing) {
  try {
    const auto endDate = static_cast<int32_t>(pricing.llEndDate);
    const int32_t tradingDays = Owner().GetTradingDays(pricing.strUnderlying, endDate, 0);
    pricing.llCalendarDays = GetCalendarDays(Runtime(), pricing.llEndDate);
    pricing.llTradingDays = tradingDays;
  } catch (const CPlatformError&) {
    pricing.llCalendarDays = 0;
  }
}

void CStrategyOpenLottery::LogCalOrderPrice(const COpenLotteryInfo& info, const COrderPricing& pricing,
                                            double orderPrice) {
  WriteLog(fmt::sprintf(
      L"GetCalOrderPrice(a). Symbol=%s, OrderPriceEndDate=%s, TradingDays=%lld, TradingDaysYear=%lld, "
      L"CalendarDays=%lld, CalendarDaysYear=%lld.",
      pricing.strSymbol, info.m_strEndDate, pricing.llTradingDays, info.m_lTDays, pricing.llCalendarDays,
      info.m_lCDays));
  WriteLog(fmt::sprintf(
      L"GetCalOrderPrice(b). Symbol=%s, IV=%f(%f,%f), UnderlyingPrice=%f, StrikePrice=%f, OrderPriceRF=%f, "
      L"OrderPriceDY=%f, EDRate=%f, CP=%s.",
      pricing.strSymbol, pricing.dbVolatility, pricing.dbMarketVolatility, info.m_dbAdjustIV,
      pricing.dbMovedPrice, pricing.dbStrike, info.m_dbRF / 100, info.m_dbDY / 100, pricing.dbYears,
      pricing.strCP));
  WriteLog(fmt::sprintf(L"GetCalOrderPrice(c). Symbol=%s, OptTheoryPrice=%f, Result=%f, dbOrderPrice=%f.",
                        pricing.strSymbol, pricing.dbTheoryPrice, pricing.dbResult, orderPrice));
}

void CStrategyOpenLottery::PublishCalOrderPrice(const COpenLotteryInfo& info, const COrderPricing& pricing) {
  const bool inPoints = info.m_dbUnderlyingChange != NoPrice;
  CStatusMessage message(*Identity(), "Scanner");
  message.About(StampText(), pricing.strSymbol)
      .Text("UnderlyingSymbol", pricing.strUnderlying)
      .Number("TheoryPrice", pricing.dbTheoryPrice)
      .Text("PriceType", info.m_strPriceType)
      .Number("UnderlyingPrice", pricing.dbUnderlyingPrice)
      .Number(inPoints ? "UnderlyingChange" : "UnderlyingChange%",
              inPoints ? info.m_dbUnderlyingChange : info.m_dbUnderlyingChangePct)
      .Number("Volatility", pricing.dbVolatility)
      .Number("RF", info.m_dbRF)
      .Number("DY", info.m_dbDY)
      .Text("EndDateType", info.m_strEndDate)
      .Integer("EndDate", pricing.llEndDate)
      .Integer("Days", info.GoesByCalendarDays() ? pricing.llCalendarDays : pricing.llTradingDays)
      .Number("PriceUp", info.m_dbPriceUp)
      .Number("PriceDn", info.m_dbPriceDn);
  UpdateStatus(message.Finish(), 1);
}

}  // namespace iorder

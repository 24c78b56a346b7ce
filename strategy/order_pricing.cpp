#include "strategy/order_pricing.h"

#include "analytics/theory_price.h"
#include "records/quote_field.h"
#include "reference/symbol.h"
#include "strategy/option_chain.h"

namespace iorder {

int32_t PriceField(const std::wstring& priceType) {
  if (priceType == L"O") return quote_field::kOpen;
  if (priceType == L"L") return quote_field::kPrice;
  if (priceType == L"Y") return quote_field::kPriceY;
  if (priceType == L"R") return quote_field::kPriceR;
  return priceType == L"P" ? quote_field::kPriceP : 0;
}

double MovedPrice(const COpenLotteryInfo& info, double underlyingPrice) {
  if (info.m_dbUnderlyingChange != NoPrice) {
    return info.IsPut() ? underlyingPrice + info.m_dbUnderlyingChange
                        : underlyingPrice - info.m_dbUnderlyingChange;
  }
  const double part = info.m_dbUnderlyingChangePct / 100;
  return underlyingPrice * (info.IsPut() ? part + 1 : 1 - part);
}

void COrderPricing::Calculate(const COpenLotteryInfo& info) {
  strCP = GetSymbolCallPut(strSymbol);
  dbStrike = static_cast<double>(StrikeOf(strSymbol)) / kScale;
  dbMovedPrice = MovedPrice(info, dbUnderlyingPrice);
  dbYears = info.GoesByCalendarDays()
                ? static_cast<double>(llCalendarDays) / static_cast<double>(info.m_lCDays)
                : static_cast<double>(llTradingDays) / static_cast<double>(info.m_lTDays);
  dbTheoryPrice = CalcTheoryPrice(dbVolatility / 100, dbStrike, dbMovedPrice, info.m_dbRF / 100, dbYears,
                                  dbYears, info.m_dbDY / 100, strCP);
  // Both ends belong to the band. No upper end is no limit; with no lower end nothing lies in it.
  const bool outside = dbTheoryPrice < info.m_dbPriceDn || dbTheoryPrice > info.m_dbPriceUp;
  dbResult = outside ? NoPrice : dbTheoryPrice;
}

}  // namespace iorder

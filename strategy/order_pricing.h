#pragma once

#include <cstdint>
#include <string>

#include "strategy/open_lottery_info.h"

namespace iorder {

/// How a calculated order price came about. Prices are whole price units, volatilities are percentages;
/// what is missing is NoPrice.
struct COrderPricing {
  std::wstring strSymbol;
  std::wstring strUnderlying;
  double dbMarketVolatility = 0.0;     ///< of the analytics record, where it is asked for
  double dbVolatility = NoPrice;       ///< that the option is priced with
  double dbUnderlyingPrice = NoPrice;  ///< as published
  double dbMovedPrice = NoPrice;       ///< after the assumed move
  int64_t llEndDate = NoValue;         ///< of the underlying, yyyymmdd
  int64_t llTradingDays = 0;
  int64_t llCalendarDays = 0;

  // Worked out from these by Calculate.
  std::wstring strCP;  ///< the symbol's own right
  double dbStrike = NoPrice;
  double dbYears = 0.0;  ///< to expiry; with no days in a year not finite
  double dbTheoryPrice = NoPrice;
  double dbResult = NoPrice;  ///< the theoretical price if it lies in the band

  void Calculate(const COpenLotteryInfo& info);
};

/// The quote field that a price type names; 0 for any other text.
int32_t PriceField(const std::wstring& priceType);

/// The underlying's price after the assumed move against a buyer: down for calls, up for puts, as the order
/// info says which are bought. A change in points goes before one in percent.
double MovedPrice(const COpenLotteryInfo& info, double underlyingPrice);

}  // namespace iorder

#include "analytics/theory_price.h"

#include "analytics/opt_greeks.h"

namespace iorder {

double CalcTheoryPrice(double volatility, double strike, double underlyingPrice, double rate, double rateTime,
                       double volatilityTime, double carry, std::wstring_view callOrPut) {
  COptGreeks greeks;
  greeks.SetInputs({.call = callOrPut == L"C",
                    .rate = rate,
                    .rateTime = rateTime,
                    .volatilityTime = volatilityTime,
                    .carry = carry});
  return greeks.Theory().TheoreticalPrice(volatility, strike, underlyingPrice);
}

}  // namespace iorder

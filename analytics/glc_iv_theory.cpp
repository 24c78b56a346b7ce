#include "analytics/glc_iv_theory.h"

#include <algorithm>
#include <cmath>

namespace iorder {

namespace {

bool IsVolatility(double volatility) {
  return volatility > 0.0 && std::isfinite(volatility);
}

}  // namespace

void GlcIVTheory::UpdateCachedTerms() {
  m_results.value = 0.0;
  // The power function, which doesn't round as the square root does.
  m_rootOfVolatilityTime = std::pow(m_inputs.volatilityTime, 0.5);
  m_discount = std::exp(-(m_inputs.rate * m_inputs.rateTime));
  m_carryFactor =
      m_inputs.carry != 0.0 ? std::exp((m_inputs.carry - m_inputs.rate) * m_inputs.rateTime) : m_discount;
}

inline TheoryResults GlcIVTheory::Begin(double d1, double volatility) const {
  return {.d1 = d1, .d2 = d1 - m_rootOfVolatilityTime * volatility};
}

inline TheoryResults GlcIVTheory::Call(double d1, double volatility, double strike,
                                       double underlyingPrice) const {
  TheoryResults results = Begin(d1, volatility);
  if (!std::isfinite(results.d1) || !std::isfinite(results.d2)) return results;
  results.firstProbability = m_normal.Cdf(results.d1);
  results.secondTerm = m_normal.Cdf(results.d2) * m_discount;
  results.value = underlyingPrice * m_carryFactor * results.firstProbability - results.secondTerm * strike;
  return results;
}

inline TheoryResults GlcIVTheory::Put(double d1, double volatility, double strike,
                                      double underlyingPrice) const {
  TheoryResults results = Begin(d1, volatility);
  if (!std::isfinite(results.d1) || !std::isfinite(results.d2)) return results;
  results.firstProbability = m_normal.Cdf(-results.d1);
  results.secondTerm = m_normal.Cdf(-results.d2) * m_discount;
  results.value = results.secondTerm * strike - underlyingPrice * results.firstProbability * m_carryFactor;
  return results;
}

void GlcIVTheory::ComputeD1D2(double volatility, double strike, double underlyingPrice) {
  m_results = Begin(D1Of(std::log(underlyingPrice / strike), volatility), volatility);
}

double GlcIVTheory::CallPrice(double volatility, double strike, double underlyingPrice) {
  if (!IsVolatility(volatility)) return 0.0;
  ComputeD1D2(volatility, strike, underlyingPrice);
  m_results = Call(m_results.d1, volatility, strike, underlyingPrice);
  return m_results.value;
}

double GlcIVTheory::PutPrice(double volatility, double strike, double underlyingPrice) {
  if (!IsVolatility(volatility)) return 0.0;
  ComputeD1D2(volatility, strike, underlyingPrice);
  m_results = Put(m_results.d1, volatility, strike, underlyingPrice);
  return m_results.value;
}

double GlcIVTheory::TheoreticalPrice(double volatility, double strike, double underlyingPrice) {
  return m_inputs.call ? CallPrice(volatility, strike, underlyingPrice)
                       : PutPrice(volatility, strike, underlyingPrice);
}

void GlcIVTheory::TheoreticalPrices(double volatility, std::span<const double> strikes,
                                    double underlyingPrice, std::span<double> prices) const {
  if (!IsVolatility(volatility)) {
    std::ranges::fill(prices, 0.0);
    return;
  }
  // Step by step for the whole chain: so the divisions of neighbours go side by side, and the logarithms
  // don't wait for what follows them.
  for (size_t i = 0; i < prices.size(); ++i) prices[i] = underlyingPrice / strikes[i];
  for (double& price : prices) price = std::log(price);
  for (double& price : prices) price = D1Of(price, volatility);
  for (size_t i = 0; i < prices.size(); ++i) {
    prices[i] = m_inputs.call ? Call(prices[i], volatility, strikes[i], underlyingPrice).value
                              : Put(prices[i], volatility, strikes[i], underlyingPrice).value;
  }
}

}  // namespace iorder

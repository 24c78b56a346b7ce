#include "analytics/glc_iv_theory.h"

#include <cmath>

namespace iorder {

void GlcIVTheory::UpdateCachedTerms() {
  m_results.value = 0.0;
  // The power function, which doesn't round as the square root does.
  m_rootOfVolatilityTime = std::pow(m_inputs.volatilityTime, 0.5);
  m_discount = std::exp(-(m_inputs.rate * m_inputs.rateTime));
  m_carryFactor =
      m_inputs.carry != 0.0 ? std::exp((m_inputs.carry - m_inputs.rate) * m_inputs.rateTime) : m_discount;
}

void GlcIVTheory::ComputeD1D2(double volatility, double strike, double underlyingPrice) {
  m_results.value = 0.0;
  const double variance = volatility * volatility;
  const double drift = std::log(underlyingPrice / strike) + m_inputs.carry * m_inputs.rateTime +
                       variance * 0.5 * m_inputs.volatilityTime;
  m_results.d1 = drift / volatility / m_rootOfVolatilityTime;
  m_results.d2 = m_results.d1 - m_rootOfVolatilityTime * volatility;
}

bool GlcIVTheory::Prepare(double volatility, double strike, double underlyingPrice) {
  if (volatility <= 0.0 || !std::isfinite(volatility)) return false;
  ComputeD1D2(volatility, strike, underlyingPrice);
  return std::isfinite(m_results.d1) && std::isfinite(m_results.d2);
}

double GlcIVTheory::CallPrice(double volatility, double strike, double underlyingPrice) {
  if (!Prepare(volatility, strike, underlyingPrice)) return 0.0;
  m_results.firstProbability = m_normal.Cdf(m_results.d1);
  m_results.secondTerm = m_normal.Cdf(m_results.d2) * m_discount;
  m_results.value =
      underlyingPrice * m_carryFactor * m_results.firstProbability - m_results.secondTerm * strike;
  return m_results.value;
}

double GlcIVTheory::PutPrice(double volatility, double strike, double underlyingPrice) {
  if (!Prepare(volatility, strike, underlyingPrice)) return 0.0;
  m_results.firstProbability = m_normal.Cdf(-m_results.d1);
  m_results.secondTerm = m_normal.Cdf(-m_results.d2) * m_discount;
  m_results.value =
      m_results.secondTerm * strike - underlyingPrice * m_results.firstProbability * m_carryFactor;
  return m_results.value;
}

double GlcIVTheory::TheoreticalPrice(double volatility, double strike, double underlyingPrice) {
  return m_inputs.call ? CallPrice(volatility, strike, underlyingPrice)
                       : PutPrice(volatility, strike, underlyingPrice);
}

}  // namespace iorder

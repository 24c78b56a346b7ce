#pragma once

#include <span>

#include "analytics/normal_dist.h"

namespace iorder {

/// What the price of an option depends on beside its volatility, its strike and the underlying. Rates are
/// fractions (0.02 for two percent), continuously compounded; times are years.
struct TheoryInputs {
  bool call = false;
  double rate = 0.0;
  double rateTime = 0.0;        ///< for the discount and carry terms
  double volatilityTime = 0.0;  ///< for the volatility terms
  /// Cost of carry: 0 for options on futures, the rate itself for stocks. It isn't a yield that is taken off
  /// the rate.
  double carry = 0.0;
};

/// What the last price was made of.
struct TheoryResults {
  double d1 = 0.0;
  double d2 = 0.0;
  double firstProbability = 0.0;  ///< N(d1) of a call, N(-d1) of a put
  double secondTerm = 0.0;        ///< N(d2) of a call, N(-d2) of a put, discounted
  double value = 0.0;
};

/// The European value of a call or put on the generalised Black-Scholes model with a cost of carry, with
/// separate times for the rates and for the volatility. It is given a volatility (a fraction) and asked for a
/// price (in the units of strike and underlying); it never looks for a volatility.
///
/// Nothing is raised. What has no price (a volatility that isn't above 0 or not finite, d1 or d2 not finite)
/// has the value 0. The order of the operations is part of the contract: the same inputs give the same bits
/// everywhere. One object serves one thread; once the terms are there, it prices any number of strikes.
class GlcIVTheory {
 public:
  GlcIVTheory() { m_normal.SetParameters(0.0, 1.0); }
  virtual ~GlcIVTheory() = default;

  void SetInputs(const TheoryInputs& inputs) { m_inputs = inputs; }
  /// Works out what depends on the inputs alone; before any price, and after each change of them.
  void UpdateCachedTerms();

  void ComputeD1D2(double volatility, double strike, double underlyingPrice);
  double CallPrice(double volatility, double strike, double underlyingPrice);
  double PutPrice(double volatility, double strike, double underlyingPrice);
  /// The one or the other, as the inputs say.
  double TheoreticalPrice(double volatility, double strike, double underlyingPrice);
  /// The theoretical prices of a chain, one for each strike: bit for bit those of TheoreticalPrice, faster.
  void TheoreticalPrices(double volatility, std::span<const double> strikes, double underlyingPrice,
                         std::span<double> prices) const;

  const TheoryResults& Results() const { return m_results; }

 private:
  /// d1 of ln(S / K).
  double D1Of(double logMoneyness, double volatility) const {
    const double variance = volatility * volatility;
    return (logMoneyness + m_inputs.carry * m_inputs.rateTime + variance * 0.5 * m_inputs.volatilityTime) /
           volatility / m_rootOfVolatilityTime;
  }
  /// d1 and d2, and no value yet.
  TheoryResults Begin(double d1, double volatility) const;
  TheoryResults Call(double d1, double volatility, double strike, double underlyingPrice) const;
  TheoryResults Put(double d1, double volatility, double strike, double underlyingPrice) const;

  TheoryInputs m_inputs;
  CNormalDist m_normal;

  double m_rootOfVolatilityTime = 0.0;
  double m_discount = 0.0;
  double m_carryFactor = 0.0;
  TheoryResults m_results;
};

}  // namespace iorder

#include "analytics/glc_iv_theory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "analytics/opt_greeks.h"
#include "tests/analytics/exact_price.h"

namespace iorder {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TheoryInputs Inputs(bool call, double rate, double rateTime, double volatilityTime, double carry) {
  return {.call = call, .rate = rate, .rateTime = rateTime, .volatilityTime = volatilityTime, .carry = carry};
}

GlcIVTheory Theory(const TheoryInputs& inputs) {
  GlcIVTheory theory;
  theory.SetInputs(inputs);
  theory.UpdateCachedTerms();
  return theory;
}

/// Options of all kinds, the same in every run.
class CRandomOptions {
 public:
  ExactOption Next() {
    const bool call = m_generator() % 2 == 0;
    const long double rate = Draw(-0.05, 0.2);
    return {.call = call,
            .strike = Draw(50, 200),
            .underlying = Draw(50, 200),
            .rate = rate,
            .rateTime = Draw(0.001, 2),
            .volatilityTime = Draw(0.001, 2),
            .b = m_generator() % 3 == 0 ? 0.0L : Draw(-0.1, 0.2),
            .volatility = Draw(0.02, 1.5)};
  }

 private:
  long double Draw(double low, double high) {
    const double part = static_cast<double>(m_generator() >> 11) / 9007199254740992.0;
    return low + (high - low) * part;
  }

  std::mt19937_64 m_generator{1};
};

TheoryInputs InputsOf(const ExactOption& option) {
  return Inputs(option.call, static_cast<double>(option.rate), static_cast<double>(option.rateTime),
                static_cast<double>(option.volatilityTime), static_cast<double>(option.b));
}

TEST(GlcIVTheory, IsTheModelWithinTheErrorOfTheTable) {
  CRandomOptions options;
  for (int i = 0; i < 20000; ++i) {
    const ExactOption option = options.Next();
    GlcIVTheory theory = Theory(InputsOf(option));
    const double price =
        theory.TheoreticalPrice(static_cast<double>(option.volatility), static_cast<double>(option.strike),
                                static_cast<double>(option.underlying));
    const long double bound =
        CNormalDist::kMaxError * (option.Underlying() + option.Strike()) + 1e-12L * option.Underlying();
    EXPECT_NEAR(static_cast<double>(option.Price()), price, static_cast<double>(bound)) << i;
  }
}

TEST(GlcIVTheory, ItsOperationsGoInTheStatedOrder) {
  CRandomOptions options;
  const CNormalDist normal;
  const volatile double half = 0.5;
  for (int i = 0; i < 20000; ++i) {
    const ExactOption option = options.Next();
    const TheoryInputs in = InputsOf(option);
    const auto sigma = static_cast<double>(option.volatility);
    const auto strike = static_cast<double>(option.strike);
    const auto underlying = static_cast<double>(option.underlying);

    // Each step is stored, so that no compiler joins two.
    const volatile double root = std::pow(in.volatilityTime, half);
    const volatile double discount = std::exp(-(in.rate * in.rateTime));
    const volatile double carryFactor =
        in.carry != 0 ? std::exp((in.carry - in.rate) * in.rateTime) : discount;
    const volatile double variance = sigma * sigma;
    volatile double d1 = std::log(underlying / strike);
    d1 = d1 + in.carry * in.rateTime;
    d1 = d1 + variance * 0.5 * in.volatilityTime;
    d1 = d1 / sigma;
    d1 = d1 / root;
    const volatile double spread = root * sigma;
    const volatile double d2 = d1 - spread;

    const double sign = in.call ? 1 : -1;
    const volatile double first = normal.Cdf(sign * d1);
    const volatile double second = normal.Cdf(sign * d2) * discount;
    volatile double underlyingPart = underlying * (in.call ? carryFactor : first);
    underlyingPart = underlyingPart * (in.call ? first : carryFactor);
    const volatile double strikePart = second * strike;
    const double value = in.call ? underlyingPart - strikePart : strikePart - underlyingPart;

    GlcIVTheory theory = Theory(in);
    EXPECT_EQ(value, theory.TheoreticalPrice(sigma, strike, underlying)) << i;
    EXPECT_EQ(d1, theory.Results().d1) << i;
    EXPECT_EQ(d2, theory.Results().d2) << i;
    EXPECT_EQ(first, theory.Results().firstProbability) << i;
    EXPECT_EQ(second, theory.Results().secondTerm) << i;
    EXPECT_EQ(value, theory.Results().value) << i;
  }
}

TEST(GlcIVTheory, CallLessPutIsTheForwardLessTheStrikeDiscounted) {
  for (const double carry : {0.05, 0.0, 0.02}) {
    for (const double strike : {60.0, 95.0, 100.0, 105.0, 160.0}) {
      GlcIVTheory call = Theory(Inputs(true, 0.05, 0.75, 0.6, carry));
      GlcIVTheory put = Theory(Inputs(false, 0.05, 0.75, 0.6, carry));
      const double parity = 100 * std::exp((carry - 0.05) * 0.75) - strike * std::exp(-0.05 * 0.75);
      // The symmetry of the table makes it hold far better than the table is.
      EXPECT_NEAR(parity, call.CallPrice(0.3, strike, 100) - put.PutPrice(0.3, strike, 100), 1e-12)
          << carry << ' ' << strike;
    }
  }
}

TEST(GlcIVTheory, DeepInTheMoneyItIsTheDifferenceItself) {
  GlcIVTheory theory = Theory(Inputs(true, 0.03, 0.5, 0.5, 0.01));
  EXPECT_EQ(100 * std::exp((0.01 - 0.03) * 0.5) - std::exp(-(0.03 * 0.5)) * 20,
            theory.CallPrice(0.2, 20, 100));
  EXPECT_GT(theory.Results().d2, CNormalDist::kUpperBound);
}

TEST(GlcIVTheory, DeepOutOfTheMoneyItIsExactlyNothing) {
  GlcIVTheory call = Theory(Inputs(true, 0.03, 0.5, 0.5, 0.01));
  EXPECT_EQ(0.0, call.CallPrice(0.2, 500, 100));
  EXPECT_LT(call.Results().d1, -CNormalDist::kUpperBound);
  GlcIVTheory put = Theory(Inputs(false, 0.03, 0.5, 0.5, 0.01));
  EXPECT_EQ(0.0, put.PutPrice(0.2, 20, 100));
}

TEST(GlcIVTheory, TimesOfRateAndVolatilityAreApart) {
  const ExactOption option{.call = true,
                           .strike = 100,
                           .underlying = 102,
                           .rate = 0.06,
                           .rateTime = 1.5,
                           .volatilityTime = 0.25,
                           .b = 0.06,
                           .volatility = 0.3};
  const auto exact = static_cast<double>(option.Price());
  EXPECT_NEAR(exact, Theory(Inputs(true, 0.06, 1.5, 0.25, 0.06)).CallPrice(0.3, 100, 102), 2e-5);
  EXPECT_GT(std::abs(exact - Theory(Inputs(true, 0.06, 0.25, 1.5, 0.06)).CallPrice(0.3, 100, 102)), 1.0);
}

TEST(GlcIVTheory, WithoutCarryItPricesAFuturesOption) {
  // Forward 100, a year, 20 %: N(0.1) - N(-0.1) of the discounted forward.
  const double exact = 100 * std::exp(-0.05) * static_cast<double>(ExactCdf(0.1L) - ExactCdf(-0.1L));
  EXPECT_NEAR(exact, Theory(Inputs(true, 0.05, 1, 1, 0)).CallPrice(0.2, 100, 100), 2e-5);
}

TEST(GlcIVTheory, TheCarryIsNoYield) {
  // A carry above the rate makes a call dearer; taken off as a yield it would make it cheaper.
  EXPECT_GT(Theory(Inputs(true, 0.02, 1, 1, 0.05)).CallPrice(0.2, 100, 100),
            Theory(Inputs(true, 0.02, 1, 1, 0.02)).CallPrice(0.2, 100, 100));
}

TEST(GlcIVTheory, WhatHasNoPriceIsZero) {
  for (const bool call : {true, false}) {
    GlcIVTheory theory = Theory(Inputs(call, 0.02, 0.5, 0.5, 0.01));
    for (const double volatility : {0.0, -0.0, -0.01, -kInfinity, kInfinity, kNaN}) {
      EXPECT_EQ(0.0, theory.TheoreticalPrice(volatility, 100, 100)) << volatility;
    }
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, 0, 100)) << "no strike";
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, 100, 0)) << "no underlying";
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, 0, 0));
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, -100, 100));
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, 100, -100));
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, kNaN, 100));
    EXPECT_EQ(0.0, theory.TheoreticalPrice(0.2, 100, kInfinity));
    for (const double time : {0.0, -1.0, kNaN, kInfinity}) {
      GlcIVTheory timeless = Theory(Inputs(call, 0.02, 0.5, time, 0.01));
      EXPECT_EQ(0.0, timeless.TheoreticalPrice(0.2, 100, 105)) << time;
    }
  }
}

TEST(GlcIVTheory, BelowZeroOnBothSidesHasAPriceOfItsOwn) {
  // Only the ratio of the two tells whether there is a price.
  GlcIVTheory theory = Theory(Inputs(true, 0, 1, 1, 0));
  const double above = theory.CallPrice(0.2, 100, 100);
  EXPECT_EQ(-above, theory.CallPrice(0.2, -100, -100));
}

TEST(GlcIVTheory, AnEnormousVolatilityHasAPrice) {
  EXPECT_EQ(100 * std::exp(-(0.02 * 0.5)), Theory(Inputs(true, 0.02, 0.5, 0.5, 0)).CallPrice(1e16, 90, 100));
  EXPECT_EQ(90 * std::exp(-(0.02 * 0.5)), Theory(Inputs(false, 0.02, 0.5, 0.5, 0)).PutPrice(1e16, 90, 100));
}

TEST(GlcIVTheory, AFurtherStrikeNeedsNoNewTerms) {
  GlcIVTheory chain = Theory(Inputs(true, 0.02, 0.25, 0.25, 0.01));
  for (double strike = 80; strike <= 120; strike += 0.5) {
    GlcIVTheory fresh = Theory(Inputs(true, 0.02, 0.25, 0.25, 0.01));
    EXPECT_EQ(fresh.CallPrice(0.2, strike, 101), chain.CallPrice(0.2, strike, 101)) << strike;
  }
}

TEST(GlcIVTheory, AChainHasThePricesOfItsOptionsOneByOne) {
  std::vector<double> strikes{0.0, -100.0, kNaN, kInfinity, 1e-300, 1e300};
  for (double strike = 20; strike <= 500; strike += 0.7) strikes.push_back(strike);
  std::vector<double> prices(strikes.size());
  for (const bool call : {true, false}) {
    for (const double time : {0.25, 0.0, -1.0}) {
      for (const double volatility : {0.2, 1.7, 0.0, -0.2, kNaN, kInfinity}) {
        GlcIVTheory theory = Theory(Inputs(call, 0.03, 0.5, time, 0.01));
        prices.assign(prices.size(), 5.0);
        theory.TheoreticalPrices(volatility, strikes, 101.3, prices);
        for (size_t i = 0; i < strikes.size(); ++i) {
          EXPECT_EQ(theory.TheoreticalPrice(volatility, strikes[i], 101.3), prices[i])
              << call << ' ' << volatility << ' ' << strikes[i];
        }
      }
    }
  }
}

TEST(GlcIVTheory, NewInputsTakeNewTerms) {
  GlcIVTheory theory = Theory(Inputs(true, 0.02, 0.25, 0.25, 0.01));
  theory.CallPrice(0.2, 100, 101);
  theory.SetInputs(Inputs(false, 0.05, 0.5, 0.75, 0));
  theory.UpdateCachedTerms();
  EXPECT_EQ(0.0, theory.Results().value);
  EXPECT_EQ(Theory(Inputs(false, 0.05, 0.5, 0.75, 0)).PutPrice(0.2, 100, 101),
            theory.TheoreticalPrice(0.2, 100, 101));
}

TEST(OptGreeks, MakesTheModelReady) {
  COptGreeks greeks;
  greeks.SetInputs(Inputs(false, 0.05, 0.5, 0.75, 0.01));
  EXPECT_EQ(Theory(Inputs(false, 0.05, 0.5, 0.75, 0.01)).PutPrice(0.2, 100, 101),
            greeks.Theory().TheoreticalPrice(0.2, 100, 101));
}

}  // namespace
}  // namespace iorder

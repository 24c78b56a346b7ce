#include <cmath>
#include <functional>
#include <stdexcept>
#include <vector>

#include "analytics/glc_iv_theory.h"
#include "analytics/theory_price.h"
#include "bench/paths.h"
#include "bench/quantlib_chain.h"

namespace iorder {

namespace {

constexpr int kOptions = 200;
constexpr int kMoves = 200;
constexpr double kUnderlying = 17250;

using PriceChain = std::function<void(double underlying, std::vector<double>& prices)>;

ChainTerms Terms() {
  ChainTerms terms;
  for (int i = 0; i < kOptions; ++i) terms.strikes.push_back(kUnderlying + 25.0 * (i - kOptions / 2));
  return terms;
}

/// One option after the other, as an order asks for its price.
void PriceOneByOne(const ChainTerms& terms, double underlying, std::vector<double>& prices) {
  for (size_t i = 0; i < prices.size(); ++i) {
    prices[i] = CalcTheoryPrice(terms.volatility, terms.strikes[i], underlying, terms.rate, terms.Years(),
                                terms.Years(), 0.0, L"C");
  }
}

/// What depends on the chain alone is worked out once.
void PriceTogether(const ChainTerms& terms, double underlying, std::vector<double>& prices) {
  GlcIVTheory theory;
  theory.SetInputs({.call = true,
                    .rate = terms.rate,
                    .rateTime = terms.Years(),
                    .volatilityTime = terms.Years(),
                    .carry = 0.0});
  theory.UpdateCachedTerms();
  theory.TheoreticalPrices(terms.volatility, terms.strikes, underlying, prices);
}

/// The underlying moves on and the whole chain is priced anew; ns of one option.
Side Moves(const PriceChain& price) {
  return Timed(kOptions * kMoves, [price, prices = std::vector<double>(kOptions)]() mutable {
    for (int i = 0; i < kMoves; ++i) {
      price(kUnderlying + 0.5 * i, prices);
      Keep(prices.data());
    }
  });
}

/// A side that priced something else would be no baseline.
void CheckSame(const PriceChain& one, const PriceChain& other, double tolerance) {
  std::vector<double> left(kOptions);
  std::vector<double> right(kOptions);
  one(kUnderlying + 10, left);
  other(kUnderlying + 10, right);
  for (size_t i = 0; i < left.size(); ++i) {
    if (!(std::abs(left[i] - right[i]) <= tolerance)) throw std::runtime_error("the prices differ");
  }
}

}  // namespace

std::vector<Ratio> PricesAgainstQuantLib(int repeats) {
  const ChainTerms terms = Terms();
  CQuantLibChain quantLib(terms);
  const PriceChain oneByOne = [&](double s, std::vector<double>& prices) { PriceOneByOne(terms, s, prices); };
  const PriceChain together = [&](double s, std::vector<double>& prices) { PriceTogether(terms, s, prices); };
  const PriceChain calculator = [&](double s, std::vector<double>& prices) {
    quantLib.PriceByCalculator(s, prices);
  };
  const PriceChain engine = [&](double s, std::vector<double>& prices) { quantLib.PriceByEngine(s, prices); };

  constexpr double kTableError = 2 * CNormalDist::kMaxError * kUnderlying * 2;
  CheckSame(oneByOne, together, 0.0);
  CheckSame(together, calculator, kTableError);
  CheckSame(together, engine, kTableError);

  const char* const chain = "one price of a chain of 200";
  const char* const alone = "the same, each option for itself";
  return {
      Compare(chain, "BlackCalculator of QuantLib", Moves(calculator), Moves(together), 1.0 / 20, repeats),
      Compare(alone, "BlackCalculator of QuantLib", Moves(calculator), Moves(oneByOne), 0, repeats),
      Compare(chain, "AnalyticEuropeanEngine of QuantLib", Moves(engine), Moves(together), 1.0 / 200,
              repeats),
      Compare(alone, "AnalyticEuropeanEngine of QuantLib", Moves(engine), Moves(oneByOne), 0, repeats)};
}

}  // namespace iorder

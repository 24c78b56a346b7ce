#include "terminal/chain_volatility.h"

#include <cmath>
#include <iterator>

#include "terminal/implied_volatility.h"

namespace iorder {
namespace {

constexpr int kOptionsOnEachSide = 2;

/// Sums up what the options of one side imply.
class CAverage {
 public:
  CAverage(ScaledValue underlying, double years) : m_underlying(FromScaled(underlying)), m_years(years) {}

  /// The first options from `first` on that imply something.
  template <typename Iterator>
  void AddNearest(Iterator first, Iterator last, bool calls) {
    for (int taken = 0; first != last && taken < kOptionsOnEachSide; ++first) {
      const ScaledValue price = calls ? first->second.call : first->second.put;
      if (price == NoValue) continue;
      const std::optional<double> volatility =
          ImpliedVolatility(calls, FromScaled(first->first), m_underlying, FromScaled(price), m_years);
      if (!volatility) continue;
      m_sum += *volatility;
      ++m_count;
      ++taken;
    }
  }

  ScaledValue Result() const {
    // Whole ten-thousandths of a percent, as each of the volatilities is.
    return m_count > 0 ? static_cast<ScaledValue>(std::floor(m_sum / m_count * 1e4 + 0.5)) * 1'000'000
                       : NoValue;
  }

 private:
  const double m_underlying;
  const double m_years;
  double m_sum = 0;
  int m_count = 0;
};

}  // namespace

ScaledValue ChainVolatility(const ChainPrices& prices, ScaledValue underlying, double years) {
  if (underlying == NoValue || !(years > 0)) return NoValue;
  CAverage average(underlying, years);
  const auto money = prices.lower_bound(underlying);
  average.AddNearest(money, prices.end(), true);
  average.AddNearest(std::make_reverse_iterator(money), prices.rend(), false);
  return average.Result();
}

}  // namespace iorder

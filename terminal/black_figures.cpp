#include "terminal/black_figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace iorder {
namespace {

constexpr double kPercent = 100;
constexpr double kDaysOfYear = 365;
constexpr double kRootOfHalf = std::numbers::sqrt2 / 2;
constexpr double kDensityOfZero = std::numbers::inv_sqrtpi * kRootOfHalf;
/// What a scaled value holds, with a little to spare.
constexpr double kLargest = 9.2e8;

/// How a figure of so many places becomes a scaled value.
struct Rounding {
  double steps = 1;      ///< in a whole one
  ScaledValue step = 1;  ///< as a scaled value
};

constexpr auto kRoundings = [] {
  constexpr int kPlacesOfScale = 10;
  std::array<Rounding, kOptionFigureFields.size()> roundings;
  for (size_t i = 0; i < roundings.size(); ++i) {
    for (int place = 0; place < kOptionFigureFields[i].places; ++place) roundings[i].steps *= 10;
    for (int place = kOptionFigureFields[i].places; place < kPlacesOfScale; ++place) roundings[i].step *= 10;
  }
  return roundings;
}();

using Numbers = std::array<double, kOptionFigureFields.size()>;

/// To the nearest step, halves away from 0.
OptionFigures Rounded(const Numbers& numbers) {
  OptionFigures figures;
  double sum = 0;
  for (const double number : numbers) sum += std::abs(number);
  if (!(sum < kLargest)) {  // or it is no number
    figures.fill(NoValue);
    return figures;
  }
  for (size_t i = 0; i < numbers.size(); ++i) {
    const double steps = numbers[i] * kRoundings[i].steps;
    figures[i] = static_cast<int64_t>(steps + std::copysign(0.5, steps)) * kRoundings[i].step;
  }
  return figures;
}

/// Some options of the chain, which take each step together: the calls of one step don't wait for each other
/// as the steps of one option do.
class CBlock {
 public:
  static constexpr size_t kSize = 64;

  CBlock(double forward, double years, std::span<const BlackTerms> options)
      : m_forward(forward), m_years(years), m_options(options) {}

  void WorkOut(std::span<OptionFigures> figures) {
    for (size_t i = 0; i < m_options.size(); ++i) m_d1[i] = std::log(m_forward / m_options[i].strike);
    for (size_t i = 0; i < m_options.size(); ++i) {
      m_deviation[i] = m_options[i].volatility / kPercent * m_rootOfYears;
      m_d1[i] = m_d1[i] / m_deviation[i] + m_deviation[i] / 2;
    }
    for (size_t i = 0; i < m_options.size(); ++i) {
      m_density[i] = kDensityOfZero * std::exp(-m_d1[i] * m_d1[i] / 2);
    }
    for (size_t i = 0; i < m_options.size(); ++i) {
      const double sign = m_options[i].isCall ? 1 : -1;
      m_delta[i] = sign * std::erfc(-sign * m_d1[i] * kRootOfHalf) / 2;
    }
    for (size_t i = 0; i < m_options.size(); ++i) {
      if (IsDefined(m_options[i])) {
        figures[i] = Rounded(NumbersOf(i));
      } else {
        figures[i].fill(NoValue);
      }
    }
  }

 private:
  bool IsDefined(const BlackTerms& option) const {
    return m_forward > 0 && m_years > 0 && option.strike > 0 && option.volatility > 0;
  }

  Numbers NumbersOf(size_t i) const {
    const double volatility = m_options[i].volatility / kPercent;
    const double gamma = m_density[i] / (m_forward * m_deviation[i]);
    const double vega = m_forward * m_density[i] * m_rootOfYears / kPercent;
    const double theta = -m_forward * m_density[i] * volatility / (2 * m_rootOfYears) / kDaysOfYear;
    const double vanna = -m_density[i] * (m_d1[i] - m_deviation[i]) / volatility / kPercent;
    const double moneyDelta = m_delta[i] * m_forward;
    const double moneyGamma = gamma * m_forward * (m_forward / kPercent);
    const double moneyVanna = vanna * m_forward;
    return {m_options[i].volatility,
            m_delta[i] * kPercent,
            gamma,
            vega,
            theta,
            vanna,
            moneyDelta,
            moneyGamma,
            vega,
            theta,
            moneyVanna};
  }

  const double m_forward;
  const double m_years;
  const double m_rootOfYears = std::sqrt(m_years);
  const std::span<const BlackTerms> m_options;
  std::array<double, kSize> m_deviation;
  std::array<double, kSize> m_d1;
  std::array<double, kSize> m_density;
  std::array<double, kSize> m_delta;
};

}  // namespace

void BlackFigures(double forward, double years, std::span<const BlackTerms> options,
                  std::span<OptionFigures> figures) {
  for (size_t done = 0; done < options.size(); done += CBlock::kSize) {
    const size_t count = std::min(CBlock::kSize, options.size() - done);
    CBlock(forward, years, options.subspan(done, count)).WorkOut(figures.subspan(done, count));
  }
}

}  // namespace iorder

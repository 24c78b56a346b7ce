#include "tests/checkers/valuation.h"

#include <cmath>

namespace iorder::testing {
namespace {

__extension__ using Wide = __int128;

/// Each price carries a term of 5e-12 against what its division lost, and a double has about 16 digits.
constexpr long double kTerm = 5e-12L;
constexpr long double kDigits = 4e-16L;

/// Whether `told`, a multiple of `step`, is what cutting an amount between the two toward zero comes to.
bool IsCut(long double least, long double most, long double told, long double step) {
  const auto units = std::llround(told / step);
  return units >= static_cast<long long>(std::trunc(least / step)) &&
         units <= static_cast<long long>(std::trunc(most / step));
}

}  // namespace

bool Money::IsNear(double told, long double more) const {
  return std::abs(static_cast<long double>(told) - exact) <= apart + more;
}

Money ProfitOf(Scaled last, Scaled average, int64_t lots, double weight) {
  if (last == average) return {};
  const long double times = static_cast<long double>(lots) * weight;
  const long double exact = static_cast<long double>(Wide{last} - average) / kUnit * times;
  const long double size =
      (std::abs(static_cast<long double>(last)) + std::abs(static_cast<long double>(average))) / kUnit;
  return {exact, std::abs(times) * (2 * kTerm + size * kDigits)};
}

Money CostOf(Scaled average, int64_t lots, double weight) {
  const long double times = static_cast<long double>(lots) * weight;
  const long double exact = static_cast<long double>(average) / kUnit * times;
  return {exact, std::abs(times) * kTerm + std::abs(exact) * kDigits};
}

bool IsCutToHundredths(const Money& money, double told) {
  // What doesn't fit ten places of 64 bits becomes the least of them.
  constexpr long double kMost = 922337203.685L;
  if (std::abs(money.exact) + money.apart >= kMost && told == -922337203.68) return true;
  return IsCut(money.exact - money.apart, money.exact + money.apart, told, 0.01L);
}

bool IsToldAsTotal(const Money& money, double told) {
  const long double term = money.exact > 0 ? 0.0005L : -0.0005L;
  const long double apart = money.apart + std::abs(money.exact) * kDigits;
  return IsCut(money.exact + term - apart, money.exact + term + apart, told, 0.01L);
}

bool IsCutToWhole(const Money& money, int64_t told) {
  return IsCut(money.exact - money.apart, money.exact + money.apart, static_cast<long double>(told), 1.0L);
}

}  // namespace iorder::testing

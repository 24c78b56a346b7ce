#include "terminal/implied_volatility.h"

#include <cmath>
#include <exception>
#include <ql/option.hpp>
#include <ql/pricingengines/blackformula.hpp>

namespace iorder {
namespace {

constexpr double kAccuracy = 1e-9;
constexpr double kPlaces = 1e4;
/// Less than this isn't told in a price of ten places.
constexpr double kNoTimeValue = 5e-11;

}  // namespace

std::optional<double> ImpliedVolatility(bool isCall, double strike, double future, double price,
                                        double years) {
  if (!(strike > 0 && future > 0 && price > 0 && years > 0)) return std::nullopt;
  const double exercised = isCall ? future - strike : strike - future;
  if (price - exercised < kNoTimeValue) return std::nullopt;
  try {
    const QuantLib::Option::Type type = isCall ? QuantLib::Option::Call : QuantLib::Option::Put;
    const double deviation = QuantLib::blackFormulaImpliedStdDev(type, strike, future, price, 1.0, 0.0,
                                                                 QuantLib::Null<QuantLib::Real>(), kAccuracy);
    const double percent = 100.0 * deviation / std::sqrt(years);
    return std::floor(percent * kPlaces + 0.5) / kPlaces;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace iorder

#pragma once

#include <cmath>

namespace iorder {

/// The standard normal distribution from the mathematics library, without a table.
inline long double ExactCdf(long double x) {
  return std::erfc(-x / std::sqrt(2.0L)) / 2;
}

/// The terms of an option's price without a table; `b` is the cost of carry.
struct ExactOption {
  bool call;
  long double strike, underlying, rate, rateTime, volatilityTime, b, volatility;

  long double Underlying() const { return underlying * std::exp((b - rate) * rateTime); }
  long double Strike() const { return strike * std::exp(-rate * rateTime); }

  long double Price() const {
    const long double deviation = volatility * std::sqrt(volatilityTime);
    const long double d1 =
        (std::log(underlying / strike) + b * rateTime + volatility * volatility / 2 * volatilityTime) /
        deviation;
    const long double d2 = d1 - deviation;
    return call ? Underlying() * ExactCdf(d1) - Strike() * ExactCdf(d2)
                : Strike() * ExactCdf(-d2) - Underlying() * ExactCdf(-d1);
  }
};

}  // namespace iorder

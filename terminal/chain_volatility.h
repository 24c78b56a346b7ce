#pragma once

#include <map>

#include "records/scaled_value.h"

namespace iorder {

/// The last prices of the two options of one strike; NoValue: none.
struct StrikePrices {
  ScaledValue call = NoValue;
  ScaledValue put = NoValue;
};
/// By strike.
using ChainPrices = std::map<ScaledValue, StrikePrices>;

/// The volatility of a chain's underlying, in percent as a scaled value: the average of what the options out
/// of the money nearest to it imply, two calls at or above the underlying's price and two puts below it.
/// Options without a price, or with one that implies nothing, are passed over for the next ones. NoValue if
/// there is none at all.
ScaledValue ChainVolatility(const ChainPrices& prices, ScaledValue underlying, double years);

}  // namespace iorder

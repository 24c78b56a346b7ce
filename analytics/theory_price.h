#pragma once

#include <string_view>

namespace iorder {

/// The European value of one option, as GlcIVTheory has it. Volatility, rate and carry are fractions, times
/// are years. `callOrPut` is "C" for a call; every other text, "c" too, counts as a put. Nothing is kept
/// between two calls; any thread may call.
double CalcTheoryPrice(double volatility, double strike, double underlyingPrice, double rate, double rateTime,
                       double volatilityTime, double carry, std::wstring_view callOrPut);

}  // namespace iorder

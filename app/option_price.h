#pragma once

#include <cstdint>

namespace iorder {

/// The premium of a call, in points, if the underlying ends normally distributed about `forward` with the
/// standard deviation `deviation` (above 0). Only exactly rounded arithmetic goes into it, so that every
/// machine gives the same bits; that is why no function of the mathematics library is used.
double CallPremium(double forward, double strike, double deviation);

/// The same of a put.
double PutPremium(double forward, double strike, double deviation);

/// The tick of an index option at a price, both in tenths of a point: 0.1 below 10 points, 0.5 below 50, 1
/// below 500, 5 below 1000, 10 above.
int64_t OptionTick(int64_t price);

/// The ladder of OptionTick in the form that the attribute "TickSize" has.
inline constexpr const char* kOptionTickLadder = "0:0.1;10:0.5;50:1;500:5;1000:10";

/// The price, in tenths of a point, on the ladder nearest to `points`; at least one tick.
int64_t RoundToOptionTick(double points);

}  // namespace iorder

#pragma once

#include "terminal/chain_volatility.h"

namespace iorder {

/// The forward that the prices of a chain imply by put-call parity, without interest: strike plus call less
/// put. Of the strikes that have both prices the five nearest to the money count, those whose call and put
/// differ least; the forward is the median of what they give, so that one old price doesn't carry it away.
/// NoValue: no strike has both, or none of them gives a forward above 0.
ScaledValue ParityForward(const ChainPrices& prices);

}  // namespace iorder

#pragma once

#include <cstdint>
#include <string>

#include "terminal/record_bus.h"
#include "terminal/tick_ladder.h"

namespace iorder {

/// The ticks of a symbol's product, from "TickSize" in the record "Security.Info": the item of the exchange
/// ("ND.O.TWF"), the field of the product ("ND.O.TWF.TX"), JSON. What isn't there counts as the engine counts
/// it: CTickLadder::kFallbackTick. No fault of the record shows here: they are for the engine.
CTickLadder TickLadderOf(CEmbeddedBus& bus, const std::wstring& symbol);

/// The whole part of "Weight" of a symbol's product, 1 without it: as the engine reads it.
int64_t ContractWeightOf(CEmbeddedBus& bus, const std::wstring& symbol);

}  // namespace iorder

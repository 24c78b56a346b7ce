#pragma once

#include <optional>
#include <string>

#include "engine/pnl_settings.h"

namespace iorder {

/// Compares the totals of a tag, in money, with its limits. Gives the log line of the limit that is reached
/// (equalled or passed), or none. A percentage of the cost, where it is set, takes the place of the amount of
/// its side; amounts are compared to two decimals, and without a cost of at least 0.01 nothing is reached.
std::optional<std::wstring> ReachedLimit(const std::wstring& tag, const CPnLLimits& limits, double cost,
                                         double profit);

}  // namespace iorder

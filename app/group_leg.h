#pragma once

#include <cstddef>
#include <optional>

#include "app/group_order_happening.h"

namespace iorder {

/// What a leg, counted from 0, came to; none for a leg that the command doesn't tell. Name and number of the
/// cycle are left to the caller.
std::optional<GroupLegChosen> ReadLeg(const stcIntlgntOrd& order, const CGroupCycle& cycle, size_t leg);

/// Lots that the strings of a leg should come to.
int64_t LegLots(const stcIntlgntOrd& order, size_t leg);

/// "B" or "S", as order strings spell it.
std::string SideLetter(int32_t side);

}  // namespace iorder

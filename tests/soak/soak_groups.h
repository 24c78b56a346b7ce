#pragma once

#include <string>
#include <vector>

#include "tests/soak/draw.h"
#include "tests/soak/soak_orders.h"

namespace iorder::testing {

/// A command of a group order: any target, checks, legs and groups, among them odd ones. Its id is one of
/// few, so that several orders share one.
std::string DrawGroupOrder(CDraw& draw, const SoakPlan& plan);
/// A line that says what such an id holds.
std::string DrawGroupPosition(CDraw& draw, const std::vector<std::string>& options);
/// A line of order settings: chases that are on, off, or told in no way that can be read.
std::string DrawChaseSettings(CDraw& draw, const SoakPlan& plan, const std::vector<std::string>& options);
/// A line with the figures of an option; some aren't there.
std::string DrawFigures(CDraw& draw, const std::string& option);
/// A line that sets the replay speed.
std::string ReplaySpeed(int64_t speed);

/// A line that changes the child of an order from outside: it may end, fail, move, or be announced again.
std::string DrawChildChange(CDraw& draw, size_t order);

/// Members of "orders" that say how child orders come and go.
std::string DrawChildRules(CDraw& draw);

}  // namespace iorder::testing

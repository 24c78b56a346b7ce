#pragma once

#include <string>
#include <vector>

#include "terminal/day.h"

namespace iorder::testing {

/// The calls of a chain that the day has listed by then, in the order of their strikes.
std::vector<std::string> CallsOf(const Day& day, const std::string& chain, LocalTime at);

}  // namespace iorder::testing

#pragma once

#include "terminal/day.h"
#include "terminal/json_line.h"

namespace iorder {

/// Reads and checks the first line of a day file. A mistake is an InputError "FILE:LINE: what".
DayHead ReadDayHead(const JsonNode& line, const FilePlace& place);

}  // namespace iorder

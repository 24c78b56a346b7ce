#pragma once

#include <string>

#include "terminal/day.h"
#include "terminal/object_reader.h"

namespace iorder {

/// Reads the action of one line of a day; "at" and "next_day" have been asked for already. No action, two of
/// them, or a mistake in one is an InputError.
Action ReadAction(CObjectReader& line);

}  // namespace iorder

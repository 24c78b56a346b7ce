#pragma once

#include "terminal/day.h"
#include "terminal/object_reader.h"

namespace iorder {

/// Reads the line of a fault: each is its misbehaviour, or "none", which takes it back. Every mistake is an
/// InputError.
FaultAction ReadFault(CObjectReader& reader);

}  // namespace iorder

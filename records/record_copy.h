#pragma once

#include <memory>

#include "records/base_data.h"

namespace iorder {

/// Copies what `source` holds at this moment into `target`, whose former content goes; without a target, into
/// a new record outside the bus's own. Gives the target; none if there was none and no copy could be made. A
/// source that offers nothing to copy leaves the target as it was.
std::unique_ptr<CBaseData> CopyRecord(World& world, CBaseData& source, std::unique_ptr<CBaseData> target);

}  // namespace iorder

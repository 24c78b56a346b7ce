#pragma once

#include <rapidjson/document.h>

#include "grouporder/group_order.h"

namespace iorder {

/// Fills a new order from its command. No member is mandatory: one that is missing, or of another kind, is as
/// one that isn't there, and leaves its field empty or 0 (the stop factor: 1). Legs beyond the fourth are
/// dropped.
void ReadGroupOrder(const rapidjson::Value& command, stcIntlgntOrd& order);

}  // namespace iorder

#pragma once

#include <optional>
#include <string>

#include "terminal/json_line.h"

namespace iorder::testing {

/// What is wrong with the form of a status message: its keys, their order, their types, the places of its
/// decimals. None if it is one of the kinds.
std::optional<std::string> ComplaintAboutMessage(const JsonNode& message);

}  // namespace iorder::testing

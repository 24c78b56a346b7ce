#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/checkers/group_look.h"

namespace iorder::testing {

/// The CHASEPRICE that the settings ask for which the look saw, for a cycle whose last option is `symbol`;
/// none if their text isn't plain JSON. Tells what the look had to ask for and didn't.
std::optional<std::string> WorkOutChase(const GroupCommand& command, const std::string& symbol,
                                        const GroupLook& look, std::vector<std::string>& mistakes);

}  // namespace iorder::testing

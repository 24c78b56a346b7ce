#pragma once

#include <string_view>
#include <vector>

namespace iorder {

/// Cuts a line at its commas into `fields`, each without the blanks around it. There are no quoted fields in
/// the exchange's files.
void SplitFields(std::string_view line, std::vector<std::string_view>& fields);

}  // namespace iorder

#pragma once

#include <string>
#include <string_view>

#include "app/happening.h"

namespace iorder {

/// One JSON object: "at" first, then "kind", then what the happening holds.
std::string Json(std::string_view at, const Happening& happening);

}  // namespace iorder

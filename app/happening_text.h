#pragma once

#include <string>
#include <string_view>

#include "app/happening.h"

namespace iorder {

/// A state of a strategy in words.
std::string StateWords(int64_t state);

/// One readable line without its time and end; empty for what isn't worth a line.
std::string Words(const Happening& happening);

/// One JSON object: "at" first, then "kind", then what the happening holds.
std::string Json(std::string_view at, const Happening& happening);

}  // namespace iorder

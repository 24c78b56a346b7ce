#pragma once

#include <string>

#include "app/happening.h"

namespace iorder {

/// A state of a strategy in words.
std::string StateWords(int64_t state);

/// One readable line without its time and end; empty for what isn't worth a line.
std::string Words(const Happening& happening);

/// A side as orders spell it, in words: "buy", "sell", or as it is.
std::string SideWords(const std::string& side);

}  // namespace iorder

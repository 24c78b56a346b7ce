#pragma once

#include <string>

#include "app/happening.h"

namespace iorder {

/// A state of a strategy in words.
std::string StateWords(int64_t state);

/// One readable line without its time and end; empty for what isn't worth a line.
std::string Words(const Happening& happening);

/// The side of an order: "buy", "sell", or as it was sent.
std::string SideWords(const OrderSent& order);

}  // namespace iorder

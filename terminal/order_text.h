#pragma once

#include <map>
#include <string>
#include <string_view>

namespace iorder {

/// The keys and values of an order or cancel string.
using OrderFields = std::map<std::wstring, std::wstring, std::less<>>;

/// Reads "KEY=VALUE,KEY=VALUE": a value ends at the next comma, at the first of several equal keys the
/// reading stays. A piece without "=" is left out.
OrderFields ParseOrderText(std::wstring_view text);

/// The value of a key, or "".
std::wstring OrderField(const OrderFields& fields, std::wstring_view key);

}  // namespace iorder

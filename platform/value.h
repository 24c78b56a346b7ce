#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace iorder {

/// A value as it travels over the host's record bus and with the host's events: nothing, a 32-bit or a 64-bit
/// integer, or a text. The kind is part of the meaning: a 32-bit 5 and a 64-bit 5 are different values.
using Value = std::variant<std::monostate, int32_t, int64_t, std::wstring>;

/// The 32-bit integer in `value`, or `fallback` if it holds another kind.
inline int32_t Int32Or(const Value& value, int32_t fallback) {
  const int32_t* number = std::get_if<int32_t>(&value);
  return number != nullptr ? *number : fallback;
}

}  // namespace iorder

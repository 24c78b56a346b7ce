#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace iorder {

/// A number times 10,000,000,000 in a signed 64-bit integer: prices, money amounts and implied volatilities
/// on the bus.
using ScaledValue = int64_t;

/// A 64-bit field without a value.
inline constexpr int64_t NoValue = std::numeric_limits<int64_t>::min();
/// A double without a value: 2^63.
inline constexpr double NoPrice = 9.223372036854776e+18;
/// A 32-bit field without a value.
inline constexpr int32_t NoInt = std::numeric_limits<int32_t>::min();

inline constexpr double kScale = 10000000000.0;

/// The whole part of `number` as a 64-bit integer. What doesn't fit, NoPrice above all, gives NoValue.
int64_t Truncate(double number);

/// NoPrice stays unconverted (NoValue). Above 0: x * 1e10 + 0.05 truncated, else x * 1e10 - 0.05 truncated.
/// The rounding term takes up what the multiplication lost. What doesn't fit 64 bits gives NoValue.
ScaledValue ToScaled(double number);

/// NoValue gives NoPrice. Above 0: v / 1e10 + 5e-12, else v / 1e10 - 5e-12; so 0 gives -5e-12.
double FromScaled(ScaledValue value);

/// The scaled value that the decimal `text` spells, exactly: an optional sign, digits, at most one point, at
/// most ten places behind it. None for any other text and for what doesn't fit.
std::optional<ScaledValue> ParseScaled(std::string_view text);

}  // namespace iorder

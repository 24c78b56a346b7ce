#pragma once

#include <cstdint>

/// Arithmetic of signed integers that goes round where the value range ends, as the machine does it, and is
/// defined for all inputs. Where a rule lets a number wrap, the wrapped number is the result.
namespace iorder {

constexpr int64_t WrappedSum(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

constexpr int64_t WrappedDifference(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}

constexpr int64_t WrappedProduct(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

constexpr int32_t WrappedProduct(int32_t a, int32_t b) {
  return static_cast<int32_t>(WrappedProduct(int64_t{a}, int64_t{b}));
}

/// |a - b|. Of the smallest integer there is no absolute value: it stays, and is below 0.
constexpr int64_t WrappedDistance(int64_t a, int64_t b) {
  const int64_t difference = WrappedDifference(a, b);
  return difference < 0 ? WrappedDifference(0, difference) : difference;
}

}  // namespace iorder

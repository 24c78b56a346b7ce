#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "records/scaled_value.h"

namespace iorder {

/// Numeric fields of a quote record.
namespace feed_field {
inline constexpr int32_t kTime = 2;
inline constexpr int32_t kPrice = 3;
inline constexpr int32_t kQuantity = 4;
inline constexpr int32_t kVolume = 6;
inline constexpr int32_t kOpen = 8;
inline constexpr int32_t kPriceR = 12;
inline constexpr int32_t kPriceP = 15;
inline constexpr int32_t kDate = 21;
inline constexpr int32_t kEndDate = 104;
inline constexpr int32_t kPriceY = 135;
}  // namespace feed_field

/// The best prices and quantities of a market. They are no fields: the order service alone knows them.
/// NoValue: unknown, or, in an update, as before.
struct BestPrices {
  ScaledValue bid = NoValue;
  ScaledValue ask = NoValue;
  int64_t bidQuantity = NoValue;
  int64_t askQuantity = NoValue;
};

/// One change of a quote, without any memory of its own: a table of ticks fills one object row by row.
struct QuoteUpdate {
  struct Number {
    int32_t id;
    bool remove;
    int64_t value;
  };
  static constexpr size_t kMaxNumbers = 10;

  std::array<Number, kMaxNumbers> numbers;
  size_t count = 0;
  /// Whether time and date come from the clock where they aren't named.
  bool clock = true;
  bool hasTime = false;
  bool hasDate = false;
  std::optional<int32_t> mcode;
  std::optional<int32_t> timeFormat;
  BestPrices best;

  bool NeedsClock() const { return clock && !(hasTime && hasDate); }

  void Reset() {
    count = 0;
    clock = true;
    hasTime = false;
    hasDate = false;
    mcode.reset();
    timeFormat.reset();
    best = {};
  }

  /// At most once for each id.
  void Set(int32_t id, int64_t value) {
    numbers[count++] = {id, false, value};
    hasTime |= id == feed_field::kTime;
    hasDate |= id == feed_field::kDate;
  }
  void Remove(int32_t id) {
    numbers[count++] = {id, true, 0};
    hasTime |= id == feed_field::kTime;
    hasDate |= id == feed_field::kDate;
  }
};

}  // namespace iorder

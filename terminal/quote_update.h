#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "records/quote_field.h"
#include "records/scaled_value.h"

namespace iorder {

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
    hasTime |= id == quote_field::kTime;
    hasDate |= id == quote_field::kDate;
  }
  void Remove(int32_t id) {
    numbers[count++] = {id, true, 0};
    hasTime |= id == quote_field::kTime;
    hasDate |= id == quote_field::kDate;
  }
};

}  // namespace iorder

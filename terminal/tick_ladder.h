#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "records/scaled_value.h"

namespace iorder {

/// The ticks of a product's prices: one for all, or one for each band of prices.
class CTickLadder {
 public:
  /// Reads a "TickSize" text: a decimal, or bands "0:0.1;10:0.5;50:1", each with the price in whole units
  /// from which on its tick holds. Below the first band the tick is 1. A text that gives no tick above 0
  /// counts as kFallbackTick.
  explicit CTickLadder(std::wstring_view tickSize);

  /// The price so many ticks up (or down, below 0), each as wide as the band that it crosses. It doesn't fall
  /// below one tick, nor rise beyond what fits.
  ScaledValue Step(ScaledValue price, int64_t ticks) const;

  static constexpr std::wstring_view kFallbackTick = L"0.001";

 private:
  struct Band {
    ScaledValue from;
    ScaledValue tick;
  };

  void AddBand(std::wstring_view text);
  ScaledValue Up(ScaledValue price, int64_t ticks) const;
  ScaledValue Down(ScaledValue price, int64_t ticks) const;

  std::vector<Band> m_bands;  ///< by `from`; the first begins at the least price
};

/// A price in words: the best bid or ask, and so many ticks more or less ("BID-3T", "ASK+0T").
struct PriceWords {
  bool isBid = true;
  int64_t ticks = 0;
};
std::optional<PriceWords> ParsePriceWords(std::wstring_view text);

}  // namespace iorder

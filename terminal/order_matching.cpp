#include "terminal/order_matching.h"

#include <algorithm>

namespace iorder {

namespace {

/// How far the volume has risen, 0 if it fell; at most what is still told apart from any quantity.
int64_t RiseOf(int64_t volume, int64_t before) {
  return static_cast<int64_t>(std::clamp<Int128>(Int128{volume} - before, 0, kAnyQuantity - 1));
}

}  // namespace

std::optional<Liquidity> TradeOf(const QuoteUpdate& update, const std::optional<int64_t>& volumeBefore,
                                 Share partial) {
  std::optional<int64_t> price;
  std::optional<int64_t> volume;
  std::optional<int64_t> quantity;
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.remove) continue;
    if (number.id == quote_field::kPrice) price = number.value;
    if (number.id == quote_field::kQuantity) quantity = number.value;
    if (number.id == quote_field::kVolume) volume = number.value;
  }
  if (!price) return std::nullopt;
  if (!quantity) quantity = volume && volumeBefore ? RiseOf(*volume, *volumeBefore) : kAnyQuantity;
  return *quantity > 0 ? std::optional<Liquidity>({*price, *quantity, ShareOf(*quantity, partial)})
                       : std::nullopt;
}

bool Reaches(OrderRules::Fill rule, OrderSide side, ScaledValue limit, ScaledValue market) {
  if (rule != OrderRules::Fill::kTouch && market == limit) return false;
  return side == OrderSide::kBuy ? market <= limit : market >= limit;
}

int64_t ShareOf(int64_t quantity, Share share) {
  if (quantity == kAnyQuantity) return share > 0 ? kAnyQuantity : 0;
  if (share == kWholeShare) return quantity;  // most days; a division of 128 bits isn't cheap
  return static_cast<int64_t>(Int128{quantity} * share / kWholeShare);
}

ScaledValue AveragePrice(Int128 value, int64_t quantity) {
  return static_cast<ScaledValue>(value / quantity);
}

}  // namespace iorder

#include "terminal/order_matching.h"

namespace iorder {

std::optional<Liquidity> TradeOf(const QuoteUpdate& update, int64_t volumeBefore) {
  Liquidity trade;
  int64_t volume = NoValue;
  int64_t quantity = NoValue;
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.remove) continue;
    if (number.id == quote_field::kPrice) trade.price = number.value;
    if (number.id == quote_field::kQuantity) quantity = number.value;
    if (number.id == quote_field::kVolume) volume = number.value;
  }
  if (trade.price == NoValue) return std::nullopt;
  const bool knowsRise = volume != NoValue && volumeBefore != NoValue;
  trade.quantity = quantity != NoValue ? quantity : knowsRise ? volume - volumeBefore : kAnyQuantity;
  return trade.quantity > 0 ? std::optional(trade) : std::nullopt;
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

#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "records/int128.h"
#include "records/scaled_value.h"
#include "terminal/order_rules.h"
#include "terminal/quote_update.h"

/// The rules by which the market fills orders. All functions are pure.
namespace iorder {

enum class OrderSide { kBuy, kSell };

/// A quantity that the feed doesn't tell: it suffices for any order.
inline constexpr int64_t kAnyQuantity = std::numeric_limits<int64_t>::max();

/// Something that orders can be filled by: a trade, or the best price of the other side.
struct Liquidity {
  ScaledValue price = NoValue;
  int64_t quantity = 0;  ///< what all orders together may (still) take
  int64_t share = 0;     ///< what one order may take
};

/// The trade that a quote tells of, if it names a price. Its quantity is the quote's, else the rise of the
/// volume over `volumeBefore`, else any. A quantity below 1 is no trade. `partial`: the share for one order.
std::optional<Liquidity> TradeOf(const QuoteUpdate& update, const std::optional<int64_t>& volumeBefore,
                                 Share partial);

/// Whether a market price reaches (kTouch), or passes (kThrough), an order's limit.
bool Reaches(OrderRules::Fill rule, OrderSide side, ScaledValue limit, ScaledValue market);

/// The whole part of a share of a quantity; all of any quantity for a share above 0.
int64_t ShareOf(int64_t quantity, Share share);

/// The price per lot of fills that cost `value` (the sum of price times lots), truncated.
ScaledValue AveragePrice(Int128 value, int64_t quantity);

}  // namespace iorder

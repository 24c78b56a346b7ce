#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "terminal/chase_price.h"
#include "terminal/order_matching.h"
#include "terminal/order_text.h"
#include "terminal/tick_ladder.h"

namespace iorder {

/// What an order string asks the market for.
struct OrderRequest {
  std::wstring symbol;
  OrderSide side = OrderSide::kBuy;
  int64_t quantity = 0;
  bool isAtMarket = false;           ///< ORDERTYPE 1 or 25, or 10 without a chase
  ScaledValue price = NoValue;       ///< of a limit order with a price
  std::optional<PriceWords> words;   ///< of a limit order with a price in words
  std::optional<ChasePrice> chase;   ///< of an order at the working price (ORDERTYPE 10)
  bool isImmediateOrCancel = false;  ///< TIMEINFORCE 2
  std::wstring mistake;              ///< why no market takes the order; "" if one does
};

/// `chases`: whether orders follow the market. If not, a CHASEPRICE isn't read.
OrderRequest ReadOrderRequest(const OrderFields& fields, bool chases);

}  // namespace iorder

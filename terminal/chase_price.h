#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/date_time.h"
#include "terminal/order_book.h"
#include "terminal/tick_ladder.h"

namespace iorder {

/// How an order follows the market, as its CHASEPRICE says: "0|times|timeout|C|2".
struct ChasePrice {
  int32_t times = 0;        ///< that it is priced anew before it goes to the market, not below 0
  Milliseconds timeout{0};  ///< without a complete fill, before each of these steps, not below 0

  friend bool operator==(const ChasePrice&, const ChasePrice&) = default;
};

/// None for any text of another form.
std::optional<ChasePrice> ParseChasePrice(std::wstring_view text);

/// Where an order stands that follows the market. It begins at the best price of its own side and gives way
/// by a further tick each time it is priced anew, reckoned from the best price of then, but goes no further
/// than the best price of the other side. Without a best price of its own side the last price stands in.
/// Behind its last step, and where there is no price to reckon from, it is at the market; so it is from the
/// start if the steps take no time.
class CChase {
 public:
  CChase(const ChasePrice& price, OrderSide side, CTickLadder ladder)
      : m_price(price), m_side(side), m_ladder(std::move(ladder)) {}

  /// The limit in this market; NoValue: at the market, where the chase ends.
  ScaledValue LimitIn(const COrderBook& book) const;
  void Step() { ++m_steps; }
  Milliseconds Timeout() const { return m_price.timeout; }

 private:
  ChasePrice m_price;
  OrderSide m_side;
  CTickLadder m_ladder;
  int64_t m_steps = 0;
};

}  // namespace iorder

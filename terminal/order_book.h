#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "terminal/order_matching.h"

namespace iorder {

/// An order as the market sees it.
struct BookOrder {
  int32_t number = 0;
  OrderSide side = OrderSide::kBuy;
  ScaledValue limit = NoValue;  ///< none: at the market
  int64_t left = 0;             ///< lots that are still to be filled, at least 1
  bool works = true;            ///< what isn't filled at once stays
  bool lastStandsIn = false;    ///< as it comes in, for an opposite best price that the feed doesn't have
};

struct BookFill {
  int32_t number = 0;
  ScaledValue price = NoValue;
  int64_t quantity = 0;
};

/// The market of one symbol and the orders that work in it.
///
/// A limit order is filled at its own price, by a trade that comes while it works or by the best price of the
/// other side, when that is renewed or as the order comes in. An order at the market is filled whole at the
/// last price as it comes in. Of a trade, and of a best price until it is renewed, each order takes no more
/// than the share of its quantity and all together no more than the quantity; the better price comes first,
/// then the earlier order, then the buy.
///
/// Fills are appended in the order in which they happen. It knows no time and has no lock of its own.
class COrderBook {
 public:
  COrderBook(OrderRules::Fill fill, Share partial) : m_fill(fill), m_partial(partial) {}

  /// The market moves. Takes no memory without a working order.
  void Quote(const QuoteUpdate& update, std::vector<BookFill>& fills);
  /// An order comes in: fills what can be at once; the rest works, or is gone. The lots that are left.
  int64_t Enter(BookOrder order, std::vector<BookFill>& fills);
  /// Takes a working order out. False if it doesn't work.
  bool Cancel(int32_t number);

  /// NoValue: unknown. A price of 0 or less is no best price.
  ScaledValue Last() const { return m_last.price; }
  ScaledValue Bid() const { return m_bid.price; }
  ScaledValue Ask() const { return m_ask.price; }

 private:
  std::vector<BookOrder>& OrdersOf(OrderSide side) { return side == OrderSide::kBuy ? m_buys : m_sells; }
  void FillAtOnce(BookOrder& order, std::vector<BookFill>& fills);
  bool Renew(Liquidity& best, int64_t& told, ScaledValue price, int64_t quantity) const;
  void FillFrom(Liquidity& liquidity, OrderSide side, std::vector<BookFill>& fills);
  bool Take(Liquidity& liquidity, BookOrder& order, std::vector<BookFill>& fills) const;

  const OrderRules::Fill m_fill;
  const Share m_partial;
  std::optional<int64_t> m_volume;
  int64_t m_bidQuantity = kAnyQuantity;  ///< as the feed told them last
  int64_t m_askQuantity = kAnyQuantity;
  Liquidity m_last;  ///< the last trade, with what orders may still take of it; without any, the last price
  Liquidity m_bid;   ///< with what orders may still take of it
  Liquidity m_ask;
  std::vector<BookOrder> m_buys;  ///< the one that is filled first stands first
  std::vector<BookOrder> m_sells;
};

}  // namespace iorder

#include "terminal/order_book.h"

#include <algorithm>

namespace iorder {
namespace {

/// Whether `left` is filled before `right` where both stand on one side and `right` came later.
bool ComesFirst(const BookOrder& left, const BookOrder& right) {
  if (left.limit == NoValue || right.limit == NoValue) return left.limit == NoValue;
  return left.side == OrderSide::kBuy ? left.limit >= right.limit : left.limit <= right.limit;
}

void Fill(BookOrder& order, ScaledValue price, int64_t quantity, std::vector<BookFill>& fills) {
  fills.push_back({order.number, price, quantity});
  order.left -= quantity;
}

}  // namespace

void COrderBook::Quote(const QuoteUpdate& update, std::vector<BookFill>& fills) {
  const bool isEmpty = m_buys.empty() && m_sells.empty();
  const std::optional<Liquidity> trade = isEmpty ? std::nullopt : TradeOf(update, m_volume);
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.id == quote_field::kPrice) m_last = number.remove ? NoValue : number.value;
    if (number.id == quote_field::kVolume) m_volume = number.remove ? NoValue : number.value;
  }
  RenewBest(update);
  if (isEmpty) return;
  if (trade) FillByTrade(*trade, fills);
  FillByBest(OrderSide::kBuy, fills);
  FillByBest(OrderSide::kSell, fills);
}

void COrderBook::RenewBest(const QuoteUpdate& update) {
  const BestPrices& best = update.best;
  const auto renew = [this](Liquidity& side, int64_t& told, ScaledValue price, int64_t quantity) {
    if (price == NoValue && quantity == NoValue) return;
    if (price != NoValue) side.price = price > 0 ? price : NoValue;
    if (quantity != NoValue) told = quantity;
    side.quantity = ShareOf(std::max<int64_t>(told, 0), m_partial);
  };
  renew(m_bid, m_bidQuantity, best.bid, best.bidQuantity);
  renew(m_ask, m_askQuantity, best.ask, best.askQuantity);
}

void COrderBook::FillByTrade(const Liquidity& trade, std::vector<BookFill>& fills) {
  Liquidity share{trade.price, ShareOf(trade.quantity, m_partial)};
  FillFrom(share, OrderSide::kBuy, fills);
  FillFrom(share, OrderSide::kSell, fills);
}

void COrderBook::FillByBest(OrderSide side, std::vector<BookFill>& fills) {
  FillFrom(side == OrderSide::kBuy ? m_ask : m_bid, side, fills);
}

void COrderBook::FillFrom(Liquidity& liquidity, OrderSide side, std::vector<BookFill>& fills) {
  std::vector<BookOrder>& orders = OrdersOf(side);
  size_t filled = 0;
  // Who stands behind an order that the price doesn't reach isn't reached either.
  while (filled < orders.size() && Take(liquidity, orders[filled], fills) && orders[filled].left == 0) {
    ++filled;
  }
  orders.erase(orders.begin(), orders.begin() + static_cast<std::ptrdiff_t>(filled));
}

/// Fills the order as far as the liquidity goes. False if it doesn't go to this order at all.
bool COrderBook::Take(Liquidity& liquidity, BookOrder& order, std::vector<BookFill>& fills) const {
  if (m_fill == OrderRules::Fill::kNone || liquidity.price == NoValue || liquidity.quantity <= 0) {
    return false;
  }
  const bool isAtMarket = order.limit == NoValue;
  if (!isAtMarket && !Reaches(m_fill, order.side, order.limit, liquidity.price)) {
    return false;
  }
  const int64_t quantity = std::min(order.left, liquidity.quantity);
  Fill(order, isAtMarket ? liquidity.price : order.limit, quantity, fills);
  if (liquidity.quantity != kAnyQuantity) liquidity.quantity -= quantity;
  return true;
}

int64_t COrderBook::Enter(BookOrder order, std::vector<BookFill>& fills) {
  FillAtOnce(order, fills);
  if (order.left == 0 || !order.works) return order.left;
  std::vector<BookOrder>& orders = OrdersOf(order.side);
  const auto place = std::find_if(orders.begin(), orders.end(),
                                  [&](const BookOrder& other) { return !ComesFirst(other, order); });
  orders.insert(place, order);
  return order.left;
}

void COrderBook::FillAtOnce(BookOrder& order, std::vector<BookFill>& fills) {
  Liquidity& best = order.side == OrderSide::kBuy ? m_ask : m_bid;
  if (m_fill == OrderRules::Fill::kNone) return;
  if (order.limit == NoValue) {
    const ScaledValue price = m_last != NoValue ? m_last : best.price;
    if (price != NoValue) Fill(order, price, order.left, fills);
    return;
  }
  if (m_fill == OrderRules::Fill::kImmediate) {
    Fill(order, order.limit, order.left, fills);
    return;
  }
  Liquidity last{m_last, kAnyQuantity};
  Take(best.price == NoValue && order.lastStandsIn ? last : best, order, fills);
}

bool COrderBook::Cancel(int32_t number) {
  const auto isIt = [number](const BookOrder& order) { return order.number == number; };
  return std::erase_if(m_buys, isIt) + std::erase_if(m_sells, isIt) > 0;
}

}  // namespace iorder

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
  const std::optional<Liquidity> trade = TradeOf(update, m_volume, m_partial);
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.id == quote_field::kPrice) m_last = {number.remove ? NoValue : number.value, 0, 0};
    if (number.id == quote_field::kVolume) {
      m_volume = number.remove ? std::nullopt : std::optional(number.value);
    }
  }
  const bool renewsBid = Renew(m_bid, m_bidQuantity, update.best.bid, update.best.bidQuantity);
  const bool renewsAsk = Renew(m_ask, m_askQuantity, update.best.ask, update.best.askQuantity);
  if (trade) {
    m_last = *trade;
    FillFrom(m_last, OrderSide::kBuy, fills);
    FillFrom(m_last, OrderSide::kSell, fills);
  }
  // An order meets a best price once: here, or as it comes in. So it can't take its share of it twice.
  if (renewsAsk) FillFrom(m_ask, OrderSide::kBuy, fills);
  if (renewsBid) FillFrom(m_bid, OrderSide::kSell, fills);
}

/// False if the update doesn't name the best price of this side.
bool COrderBook::Renew(Liquidity& best, int64_t& told, ScaledValue price, int64_t quantity) const {
  if (price == NoValue && quantity == NoValue) return false;
  if (price != NoValue) best.price = price > 0 ? price : NoValue;
  if (quantity != NoValue) told = quantity;
  best.quantity = std::max<int64_t>(told, 0);
  best.share = ShareOf(best.quantity, m_partial);
  return true;
}

void COrderBook::FillFrom(Liquidity& liquidity, OrderSide side, std::vector<BookFill>& fills) {
  std::vector<BookOrder>& orders = OrdersOf(side);
  const size_t before = fills.size();
  for (BookOrder& order : orders) {
    // Who stands behind an order that the price doesn't reach isn't reached either.
    if (!Take(liquidity, order, fills)) break;
  }
  if (fills.size() == before) return;
  std::erase_if(orders, [](const BookOrder& order) { return order.left == 0; });
}

/// Fills the order with its share, as far as the liquidity goes. False if it doesn't go to this order at all.
bool COrderBook::Take(Liquidity& liquidity, BookOrder& order, std::vector<BookFill>& fills) const {
  if (m_fill == OrderRules::Fill::kNone || liquidity.price == NoValue) return false;
  const bool isAtMarket = order.limit == NoValue;
  if (!isAtMarket && !Reaches(m_fill, order.side, order.limit, liquidity.price)) return false;
  const int64_t quantity = std::min({order.left, liquidity.share, liquidity.quantity});
  if (quantity <= 0) return false;
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
    const ScaledValue price = m_last.price != NoValue ? m_last.price : best.price;
    if (price != NoValue) Fill(order, price, order.left, fills);
    return;
  }
  if (m_fill == OrderRules::Fill::kImmediate) {
    Fill(order, order.limit, order.left, fills);
    return;
  }
  const bool lastStandsIn = best.price == NoValue && order.lastStandsIn;
  // Nobody can say what the share of an unknown quantity is, and this trade is over.
  if (lastStandsIn && m_last.quantity == kAnyQuantity && m_partial != kWholeShare) return;
  Take(lastStandsIn ? m_last : best, order, fills);
}

bool COrderBook::Cancel(int32_t number) {
  const auto isIt = [number](const BookOrder& order) { return order.number == number; };
  return std::erase_if(m_buys, isIt) + std::erase_if(m_sells, isIt) > 0;
}

}  // namespace iorder

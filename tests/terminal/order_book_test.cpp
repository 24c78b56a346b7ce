#include "terminal/order_book.h"

#include <gmock/gmock.h>

namespace iorder::testing {
namespace {

using Fill = OrderRules::Fill;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string Text(const BookFill& fill) {
  return std::to_string(fill.number) + ": " + std::to_string(fill.quantity) + " at " +
         std::to_string(fill.price);
}

/// A book whose moves give their fills as "ORDER: LOTS at PRICE". Prices are whole numbers here.
class CTestBook {
 public:
  explicit CTestBook(Fill fill = Fill::kTouch, Share partial = kWholeShare) : book(fill, partial) {}

  std::vector<std::string> Trade(int64_t price, int64_t quantity) {
    QuoteUpdate update;
    update.Set(quote_field::kPrice, price);
    update.Set(quote_field::kQuantity, quantity);
    return Quote(update);
  }
  std::vector<std::string> Bid(int64_t price, int64_t quantity = NoValue) {
    QuoteUpdate update;
    update.best.bid = price;
    update.best.bidQuantity = quantity;
    return Quote(update);
  }
  std::vector<std::string> Ask(int64_t price, int64_t quantity = NoValue) {
    QuoteUpdate update;
    update.best.ask = price;
    update.best.askQuantity = quantity;
    return Quote(update);
  }
  std::vector<std::string> Buy(int32_t number, int64_t limit, int64_t lots, bool works = true) {
    return Enter({number, OrderSide::kBuy, limit, lots, works});
  }
  std::vector<std::string> Sell(int32_t number, int64_t limit, int64_t lots, bool works = true) {
    return Enter({number, OrderSide::kSell, limit, lots, works});
  }
  std::vector<std::string> Enter(const BookOrder& order) {
    std::vector<BookFill> fills;
    left = book.Enter(order, fills);
    return Texts(fills);
  }
  std::vector<std::string> Quote(const QuoteUpdate& update) {
    std::vector<BookFill> fills;
    book.Quote(update, fills);
    return Texts(fills);
  }

  COrderBook book;
  int64_t left = 0;

 private:
  static std::vector<std::string> Texts(const std::vector<BookFill>& fills) {
    std::vector<std::string> texts;
    for (const BookFill& fill : fills) texts.push_back(Text(fill));
    return texts;
  }
};

TEST(OrderBook, ALimitOrderIsFilledAtItsOwnPriceByTheTradesThatReachIt) {
  CTestBook book;
  EXPECT_THAT(book.Buy(1, 10, 5), IsEmpty());
  EXPECT_THAT(book.Trade(11, 9), IsEmpty());
  EXPECT_THAT(book.Trade(10, 2), ElementsAre("1: 2 at 10"));
  EXPECT_THAT(book.Trade(8, 9), ElementsAre("1: 3 at 10"));
  EXPECT_THAT(book.Trade(8, 9), IsEmpty());
}

TEST(OrderBook, ATradeBeforeTheOrderDoesNotFillIt) {
  CTestBook book;
  book.Trade(9, 5);
  EXPECT_THAT(book.Buy(1, 10, 5), IsEmpty());
}

TEST(OrderBook, ThroughFillsOnlyBehindTheOrdersPrice) {
  CTestBook book(Fill::kThrough);
  book.Buy(1, 10, 2);
  book.Sell(2, 20, 2);
  EXPECT_THAT(book.Trade(10, 9), IsEmpty());
  EXPECT_THAT(book.Trade(20, 9), IsEmpty());
  EXPECT_THAT(book.Ask(10), IsEmpty());
  EXPECT_THAT(book.Trade(9, 1), ElementsAre("1: 1 at 10"));
  EXPECT_THAT(book.Bid(21), ElementsAre("2: 2 at 20"));
}

TEST(OrderBook, TheOppositeBestPriceFillsWhatComesInAndWhatWaits) {
  CTestBook book;
  book.Ask(10, 3);
  EXPECT_THAT(book.Buy(1, 12, 5), ElementsAre("1: 3 at 12"));
  EXPECT_EQ(2, book.left);
  EXPECT_THAT(book.Trade(20, 1), IsEmpty());
  EXPECT_THAT(book.Ask(11), ElementsAre("1: 2 at 12"));  // the quantity told last, renewed
  EXPECT_THAT(book.Buy(2, 11, 9), ElementsAre("2: 1 at 11"));
}

TEST(OrderBook, TheOwnSideOfTheMarketFillsNothing) {
  CTestBook book;
  book.Bid(10, 9);
  EXPECT_THAT(book.Buy(1, 10, 1), IsEmpty());
  EXPECT_THAT(book.Bid(12, 9), IsEmpty());
}

TEST(OrderBook, ABestPriceOfZeroIsNone) {
  CTestBook book;
  book.Ask(10, 9);
  book.Ask(0);
  EXPECT_THAT(book.Buy(1, 10, 1), IsEmpty());
  EXPECT_EQ(NoValue, book.book.Ask());
}

TEST(OrderBook, OfATradeEachOrderTakesItsShareAndAllTogetherNoMoreThanTheWhole) {
  CTestBook book(Fill::kTouch, kWholeShare / 2);
  book.Buy(1, 10, 9);
  book.Buy(2, 10, 3);
  book.Sell(3, 10, 9);
  EXPECT_THAT(book.Trade(10, 9), ElementsAre("1: 4 at 10", "2: 3 at 10", "3: 2 at 10"));
  EXPECT_THAT(book.Trade(10, 1), IsEmpty());
  EXPECT_THAT(book.Trade(10, 9), ElementsAre("1: 4 at 10", "3: 4 at 10"));
}

TEST(OrderBook, OfABestPriceEachOrderTakesItsShareOnceUntilItIsRenewed) {
  CTestBook book(Fill::kTouch, kWholeShare / 2);
  book.Bid(10, 9);
  EXPECT_THAT(book.Sell(1, 10, 9), ElementsAre("1: 4 at 10"));
  EXPECT_THAT(book.Sell(2, 10, 3), ElementsAre("2: 3 at 10"));
  EXPECT_THAT(book.Ask(12, 9), IsEmpty());
  EXPECT_THAT(book.Trade(9, 9), IsEmpty());
  EXPECT_THAT(book.Sell(3, 10, 9), ElementsAre("3: 2 at 10"));
  EXPECT_THAT(book.Sell(4, 10, 9), IsEmpty());
  EXPECT_THAT(book.Bid(10, 9), ElementsAre("1: 4 at 10", "3: 4 at 10", "4: 1 at 10"));
}

TEST(OrderBook, TheBetterPriceComesFirstThenTheEarlierOrderThenTheBuy) {
  CTestBook book;
  book.Sell(1, 8, 2);
  book.Buy(2, 10, 1);
  book.Buy(3, 12, 1);
  book.Buy(4, 12, 1);
  book.Buy(5, NoValue, 1);
  EXPECT_THAT(book.Trade(9, 6),
              ElementsAre("5: 1 at 9", "3: 1 at 12", "4: 1 at 12", "2: 1 at 10", "1: 2 at 8"));
}

TEST(OrderBook, AnOrderAtTheMarketIsFilledWholeAtTheLastPrice) {
  CTestBook book(Fill::kTouch, kWholeShare / 2);
  book.Trade(9, 1);
  book.Bid(7, 1);
  EXPECT_THAT(book.Sell(1, NoValue, 50), ElementsAre("1: 50 at 9"));
}

TEST(OrderBook, WithoutALastPriceAnOrderAtTheMarketTakesTheBestPriceOrWaitsForATrade) {
  CTestBook book;
  EXPECT_THAT(book.Sell(1, NoValue, 3), IsEmpty());
  EXPECT_THAT(book.Trade(9, 2), ElementsAre("1: 2 at 9"));
  EXPECT_THAT(book.Trade(4, 2), ElementsAre("1: 1 at 4"));
  CTestBook other;
  other.Bid(7, 1);
  EXPECT_THAT(other.Sell(1, NoValue, 3), ElementsAre("1: 3 at 7"));
}

TEST(OrderBook, TheLastPriceStandsInForAMissingBestPriceOnlyIfTheOrderSaysSo) {
  CTestBook book;
  book.Trade(9, 1);
  EXPECT_THAT(book.Sell(1, 9, 4), IsEmpty());
  EXPECT_THAT(book.Enter({2, OrderSide::kSell, 8, 4, true, true}), ElementsAre("2: 1 at 8"));
  book.Trade(9, 9);
  book.Bid(6, 1);
  EXPECT_THAT(book.Enter({3, OrderSide::kSell, 8, 4, true, true}), IsEmpty());
}

TEST(OrderBook, OfALastTradeThatStandsInNoMoreIsTakenThanOfAnyTrade) {
  CTestBook book(Fill::kTouch, kWholeShare / 2);
  const auto sell = [&](int32_t number) { return book.Enter({number, OrderSide::kSell, 8, 9, false, true}); };
  book.Buy(1, 10, 1);
  EXPECT_THAT(book.Trade(10, 9), ElementsAre("1: 1 at 10"));
  EXPECT_THAT(sell(2), ElementsAre("2: 4 at 8"));
  EXPECT_THAT(sell(3), ElementsAre("3: 4 at 8"));
  EXPECT_THAT(sell(4), IsEmpty());
  book.Trade(10, 0);  // a price, but nothing was traded
  EXPECT_THAT(sell(5), IsEmpty());
}

TEST(OrderBook, ALastTradeOfUnknownQuantityStandsInOnlyIfOrdersTakeTheWhole) {
  QuoteUpdate trade;
  trade.Set(quote_field::kPrice, 10);
  for (const auto& [partial, lots] : {std::pair{kWholeShare, 9}, {kWholeShare / 2, 0}, {Share{0}, 0}}) {
    CTestBook book(Fill::kTouch, partial);
    book.Quote(trade);
    book.Enter({1, OrderSide::kSell, 8, 9, false, true});
    EXPECT_EQ(9 - lots, book.left);
  }
}

TEST(OrderBook, ImmediateFillsWhateverComesInAtItsOwnPrice) {
  CTestBook book(Fill::kImmediate, 0);
  EXPECT_THAT(book.Buy(1, 3, 7), ElementsAre("1: 7 at 3"));
}

TEST(OrderBook, NoneFillsNothing) {
  CTestBook book(Fill::kNone);
  book.Trade(9, 1);
  book.Ask(9, 1);
  EXPECT_THAT(book.Buy(1, 10, 1), IsEmpty());
  EXPECT_THAT(book.Buy(2, NoValue, 1), IsEmpty());
  EXPECT_THAT(book.Trade(1, 9), IsEmpty());
}

TEST(OrderBook, WhatDoesNotWorkOnIsGone) {
  CTestBook book;
  book.Ask(10, 2);
  EXPECT_THAT(book.Buy(1, 10, 3, false), ElementsAre("1: 2 at 10"));
  EXPECT_EQ(1, book.left);
  EXPECT_THAT(book.Trade(9, 9), IsEmpty());
}

TEST(OrderBook, ACancelledOrderIsNotFilledAndIsCancelledOnce) {
  CTestBook book;
  book.Buy(1, 10, 1);
  EXPECT_TRUE(book.book.Cancel(1));
  EXPECT_FALSE(book.book.Cancel(1));
  EXPECT_THAT(book.Trade(9, 9), IsEmpty());
}

}  // namespace
}  // namespace iorder::testing

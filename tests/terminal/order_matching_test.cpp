#include "terminal/order_matching.h"

#include <gmock/gmock.h>

#include "terminal/order_request.h"
#include "terminal/tick_ladder.h"

namespace iorder::testing {
namespace {

using Fill = OrderRules::Fill;

constexpr ScaledValue Price(double units) {
  return static_cast<ScaledValue>(units * kScale + (units < 0 ? -0.5 : 0.5));
}

QuoteUpdate Quote(std::initializer_list<std::pair<int32_t, int64_t>> numbers) {
  QuoteUpdate update;
  for (const auto& [id, value] : numbers) update.Set(id, value);
  return update;
}

// ---- Trades ----

TEST(TradeOf, AQuoteThatNamesNoPriceIsNoTrade) {
  EXPECT_FALSE(TradeOf(Quote({{quote_field::kQuantity, 5}, {quote_field::kVolume, 9}}), 1, kWholeShare));
  QuoteUpdate removed;
  removed.Remove(quote_field::kPrice);
  EXPECT_FALSE(TradeOf(removed, {}, kWholeShare));
}

TEST(TradeOf, TheQuantityIsTheQuotesThenTheRiseOfTheVolumeThenAny) {
  const auto quantity = [](const QuoteUpdate& update, std::optional<int64_t> before) {
    return TradeOf(update, before, kWholeShare)->quantity;
  };
  constexpr int32_t kPrice = quote_field::kPrice;
  EXPECT_EQ(5, quantity(Quote({{kPrice, 1}, {quote_field::kQuantity, 5}, {quote_field::kVolume, 9}}), 1));
  EXPECT_EQ(8, quantity(Quote({{kPrice, 1}, {quote_field::kVolume, 9}}), 1));
  EXPECT_EQ(kAnyQuantity, quantity(Quote({{kPrice, 1}, {quote_field::kVolume, 9}}), {}));
  EXPECT_EQ(kAnyQuantity, quantity(Quote({{kPrice, 1}}), 1));
}

TEST(TradeOf, NothingTradedIsNoTrade) {
  EXPECT_FALSE(TradeOf(Quote({{quote_field::kPrice, 1}, {quote_field::kQuantity, 0}}), {}, kWholeShare));
  EXPECT_FALSE(TradeOf(Quote({{quote_field::kPrice, 1}, {quote_field::kVolume, 9}}), 9, kWholeShare));
}

TEST(TradeOf, OneOrderMayTakeItsShare) {
  const Liquidity trade =
      *TradeOf(Quote({{quote_field::kPrice, 1}, {quote_field::kQuantity, 5}}), {}, kWholeShare / 2);
  EXPECT_EQ(5, trade.quantity);
  EXPECT_EQ(2, trade.share);
}

TEST(TradeOf, NumbersAtTheEndsOfTheirRangeAreNumbersLikeAnyOther) {
  constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
  constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
  const auto rise = [](int64_t from, int64_t to) {
    return TradeOf(Quote({{quote_field::kPrice, 1}, {quote_field::kVolume, to}}), from, kWholeShare);
  };
  EXPECT_EQ(kAnyQuantity - 1, rise(kLeast, kMost)->quantity);
  EXPECT_EQ(1, rise(kLeast, kLeast + 1)->quantity);
  EXPECT_FALSE(rise(kMost, kLeast));
  EXPECT_FALSE(TradeOf(Quote({{quote_field::kPrice, 1}, {quote_field::kQuantity, kLeast}}), 1, kWholeShare));
}

// ---- Prices and shares ----

TEST(Reaches, TouchTakesTheEqualPriceAndThroughDoesNot) {
  for (const Fill rule : {Fill::kTouch, Fill::kThrough}) {
    EXPECT_EQ(rule == Fill::kTouch, Reaches(rule, OrderSide::kBuy, 10, 10));
    EXPECT_EQ(rule == Fill::kTouch, Reaches(rule, OrderSide::kSell, 10, 10));
    EXPECT_TRUE(Reaches(rule, OrderSide::kBuy, 10, 9));
    EXPECT_FALSE(Reaches(rule, OrderSide::kBuy, 10, 11));
    EXPECT_TRUE(Reaches(rule, OrderSide::kSell, 10, 11));
    EXPECT_FALSE(Reaches(rule, OrderSide::kSell, 10, 9));
  }
}

TEST(ShareOf, AShareIsExactAndRoundedDown) {
  EXPECT_EQ(29, ShareOf(100, *ParseScaled("0.29")));
  EXPECT_EQ(0, ShareOf(1, *ParseScaled("0.9999999999")));
  EXPECT_EQ(7, ShareOf(7, kWholeShare));
  EXPECT_EQ(kAnyQuantity - 1, ShareOf(kAnyQuantity - 1, kWholeShare));
  EXPECT_EQ(kAnyQuantity, ShareOf(kAnyQuantity, 1));
  EXPECT_EQ(0, ShareOf(kAnyQuantity, 0));
}

TEST(AveragePrice, IsTruncatedAndDoesNotOverflow) {
  EXPECT_EQ(3, AveragePrice(Int128{11}, 3));
  EXPECT_EQ(-3, AveragePrice(Int128{-11}, 3));
  constexpr ScaledValue kDear = Price(900'000'000);
  EXPECT_EQ(kDear, AveragePrice(Int128{kDear} * 2'000'000'000, 2'000'000'000));
}

// ---- Ticks ----

TEST(TickLadder, OneTickHoldsForAllPrices) {
  const CTickLadder ladder(L"0.5");
  EXPECT_EQ(Price(8.5), ladder.Step(Price(10), -3));
  EXPECT_EQ(Price(11), ladder.Step(Price(10), 2));
  EXPECT_EQ(Price(10), ladder.Step(Price(10), 0));
}

TEST(TickLadder, ATickIsAsWideAsTheBandThatItCrosses) {
  const CTickLadder ladder(L"0:0.1;10:0.5;50:1");
  EXPECT_EQ(Price(9.9), ladder.Step(Price(10), -1));
  EXPECT_EQ(Price(10.5), ladder.Step(Price(10), 1));
  EXPECT_EQ(Price(9.8), ladder.Step(Price(10.5), -3));
  EXPECT_EQ(Price(51), ladder.Step(Price(49), 3));
  EXPECT_EQ(Price(49), ladder.Step(Price(51), -3));
  // A price between two ticks keeps its place on its way.
  EXPECT_EQ(Price(10.07), ladder.Step(Price(9.97), 1));
}

TEST(TickLadder, APriceStaysAboveZeroAndInRange) {
  EXPECT_EQ(Price(0.1), CTickLadder(L"0:0.1;10:0.5").Step(Price(0.3), -9));
  EXPECT_EQ(Price(0.5), CTickLadder(L"0.5").Step(Price(1), std::numeric_limits<int64_t>::min()));
  EXPECT_EQ(std::numeric_limits<int64_t>::max(),
            CTickLadder(L"0.5").Step(Price(1), std::numeric_limits<int64_t>::max()));
}

TEST(TickLadder, ATextWithoutATickCountsAsTheLeastTick) {
  for (const wchar_t* const text : {L"", L"0", L"-1", L"abc", L"0:0.1;10:0"}) {
    EXPECT_EQ(Price(0.999), CTickLadder(text).Step(Price(1), -1));
  }
}

TEST(PriceWords, NameTheBestPriceAndTheTicks) {
  EXPECT_TRUE(ParsePriceWords(L"BID-3T")->isBid);
  EXPECT_EQ(-3, ParsePriceWords(L"BID-3T")->ticks);
  EXPECT_EQ(2, ParsePriceWords(L"BID+2T")->ticks);
  EXPECT_EQ(0, ParsePriceWords(L"BID+0T")->ticks);
  EXPECT_FALSE(ParsePriceWords(L"ASK+10T")->isBid);
  for (const wchar_t* const text :
       {L"", L"BID", L"BID+T", L"BID3T", L"BID-3", L"MID-3T", L"BID-3xT", L"BID--3T"}) {
    EXPECT_FALSE(ParsePriceWords(text));
  }
}

// ---- Order strings ----

OrderRequest Request(const wchar_t* text) {
  return ReadOrderRequest(ParseOrderText(text), true);
}

TEST(OrderRequest, ALimitOrderHasAPriceOrWords) {
  const OrderRequest buy = Request(L"SYMBOL=X,SIDE=B,QTY=3,PRICE=20000000000,ORDERTYPE=2,TIMEINFORCE=1");
  EXPECT_EQ(L"", buy.mistake);
  EXPECT_EQ(L"X", buy.symbol);
  EXPECT_EQ(OrderSide::kBuy, buy.side);
  EXPECT_EQ(3, buy.quantity);
  EXPECT_EQ(Price(2), buy.price);
  EXPECT_FALSE(buy.isAtMarket || buy.words || buy.isImmediateOrCancel);
  const OrderRequest sell = Request(L"SIDE=S,QTY=1,PRICESTRING=BID-3T,ORDERTYPE=2");
  EXPECT_EQ(L"", sell.mistake);
  EXPECT_EQ(OrderSide::kSell, sell.side);
  EXPECT_EQ(-3, sell.words->ticks);
}

TEST(OrderRequest, OrdersOfTypeOneAndTwentyFiveAreAtTheMarket) {
  for (const wchar_t* const text : {L"SIDE=S,QTY=1,PRICE=-9223372036854775808,ORDERTYPE=1,TIMEINFORCE=2",
                                    L"SIDE=S,QTY=1,PRICE=-9223372036854775808,ORDERTYPE=25,TIMEINFORCE=2"}) {
    const OrderRequest order = Request(text);
    EXPECT_EQ(L"", order.mistake);
    EXPECT_TRUE(order.isAtMarket && order.isImmediateOrCancel);
    EXPECT_EQ(NoValue, order.price);
  }
}

TEST(OrderRequest, WhatNoMarketTakesIsAMistake) {
  EXPECT_EQ(L"side 'X' is neither B nor S", Request(L"SIDE=X,QTY=1,PRICE=1,ORDERTYPE=2").mistake);
  EXPECT_EQ(L"quantity '0' isn't a number of lots", Request(L"SIDE=B,QTY=0,PRICE=1,ORDERTYPE=2").mistake);
  EXPECT_EQ(L"quantity '3000000000' isn't a number of lots",
            Request(L"SIDE=B,QTY=3000000000,PRICE=1,ORDERTYPE=2").mistake);
  EXPECT_EQ(L"a limit order without a price", Request(L"SIDE=B,QTY=1,ORDERTYPE=2").mistake);
  EXPECT_EQ(L"a limit order without a price",
            Request(L"SIDE=B,QTY=1,PRICE=-9223372036854775808,ORDERTYPE=2").mistake);
  EXPECT_EQ(L"price 'CHEAP' isn't understood",
            Request(L"SIDE=B,QTY=1,PRICESTRING=CHEAP,ORDERTYPE=2").mistake);
}

}  // namespace
}  // namespace iorder::testing

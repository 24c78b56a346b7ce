#include "terminal/chase_price.h"

#include <gmock/gmock.h>

namespace iorder::testing {
namespace {

constexpr ScaledValue kUnit = 10'000'000'000;

COrderBook Market(ScaledValue last, ScaledValue bid, ScaledValue ask) {
  COrderBook book(OrderRules::Fill::kTouch, kWholeShare);
  QuoteUpdate update;
  if (last != 0) update.Set(quote_field::kPrice, last * kUnit);
  if (bid != 0) update.best.bid = bid * kUnit;
  if (ask != 0) update.best.ask = ask * kUnit;
  std::vector<BookFill> fills;
  book.Quote(update, fills);
  return book;
}

/// The limits from step to step, in whole units; -1 at the market.
std::vector<ScaledValue> Limits(const ChasePrice& price, OrderSide side, const COrderBook& book) {
  CChase chase(price, side, CTickLadder(L"2"));
  std::vector<ScaledValue> limits;
  do {
    const ScaledValue limit = chase.LimitIn(book);
    limits.push_back(limit != NoValue ? limit / kUnit : -1);
    chase.Step();
  } while (limits.back() != -1);
  return limits;
}

using ::testing::ElementsAre;

TEST(ChasePrice, ItsFiveParts) {
  EXPECT_EQ((ChasePrice{3, Milliseconds(200)}), ParseChasePrice(L"0|3|200|C|2"));
  EXPECT_EQ((ChasePrice{0, Milliseconds(0)}), ParseChasePrice(L"0|0|0|C|2"));
  EXPECT_EQ((ChasePrice{2147483647, Milliseconds(2147483647)}),
            ParseChasePrice(L"0|2147483647|2147483647|C|2"));
}

TEST(ChasePrice, AnyOtherTextIsNone) {
  for (const wchar_t* const text :
       {L"", L"0", L"0|3", L"0|3|200", L"0|3|200|C", L"0|3|200|C|", L"0|3|200|C|2|", L"0|3|200|C|3",
        L"1|3|200|C|2", L"0|-1|200|C|2", L"0|3|-200|C|2", L"0||200|C|2", L"0|3||C|2", L"0| 3|200|C|2",
        L"0|3|2147483648|C|2", L"0|3.5|200|C|2", L"0|99999999999999999999|1|C|2"}) {
    EXPECT_EQ(std::nullopt, ParseChasePrice(text)) << std::wstring(text).size();
  }
}

TEST(Chase, ABuyGivesWayUpwardsFromTheBid) {
  EXPECT_THAT(Limits({3, Milliseconds(1)}, OrderSide::kBuy, Market(50, 10, 40)),
              ElementsAre(10, 12, 14, 16, -1));
}

TEST(Chase, ASellGivesWayDownwardsFromTheAsk) {
  EXPECT_THAT(Limits({2, Milliseconds(1)}, OrderSide::kSell, Market(50, 10, 40)),
              ElementsAre(40, 38, 36, -1));
}

TEST(Chase, ItGoesNoFurtherThanTheOtherSide) {
  EXPECT_THAT(Limits({3, Milliseconds(1)}, OrderSide::kBuy, Market(0, 10, 13)),
              ElementsAre(10, 12, 13, 13, -1));
  EXPECT_THAT(Limits({3, Milliseconds(1)}, OrderSide::kSell, Market(0, 10, 13)),
              ElementsAre(13, 11, 10, 10, -1));
}

TEST(Chase, TheLastPriceStandsInForABestPriceThatIsNotThere) {
  EXPECT_THAT(Limits({1, Milliseconds(1)}, OrderSide::kBuy, Market(50, 0, 60)), ElementsAre(50, 52, -1));
  EXPECT_THAT(Limits({1, Milliseconds(1)}, OrderSide::kSell, Market(50, 0, 0)), ElementsAre(50, 48, -1));
}

TEST(Chase, WithoutAPriceOrWithoutTimeItIsAtTheMarketFromTheStart) {
  EXPECT_THAT(Limits({3, Milliseconds(1)}, OrderSide::kBuy, Market(0, 0, 60)), ElementsAre(-1));
  EXPECT_THAT(Limits({3, Milliseconds(0)}, OrderSide::kBuy, Market(50, 10, 40)), ElementsAre(-1));
}

}  // namespace
}  // namespace iorder::testing

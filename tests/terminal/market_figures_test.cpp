#include "terminal/market_figures.h"

#include <gmock/gmock.h>

#include "terminal/chain_volatility.h"
#include "terminal/implied_volatility.h"
#include "tests/terminal/figures_day.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;

ScaledValue Scaled(double number) {
  return ToScaled(number);
}

// ---- One option, one chain ----

TEST(ImpliedVolatility, IsTheOneThatThePriceWasMadeWith) {
  for (const double percent : {5.0, 20.0, 80.0}) {
    for (const double strike : {16000.0, 18000.0, 19500.0}) {
      const bool isCall = strike >= 18000;
      const double price = BlackPrice(isCall, strike, 18000, percent, 0.1);
      if (price < 1e-6) continue;  // too far away for its price to tell anything
      EXPECT_NEAR(percent, ImpliedVolatility(isCall, strike, 18000, price, 0.1).value_or(0), 1e-4);
    }
  }
}

TEST(ImpliedVolatility, APriceOutsideTheModelImpliesNothing) {
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 100, 110, 9, 0.1));   // below what exercise brings
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 100, 110, 10, 0.1));  // just that: a volatility of 0
  EXPECT_EQ(std::nullopt, ImpliedVolatility(false, 110, 100, 10, 0.1));
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 100, 110, 111, 0.1));  // above the future
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 100, 110, 0, 0.1));
  EXPECT_EQ(std::nullopt, ImpliedVolatility(false, 100, 110, -1, 0.1));
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 0, 110, 12, 0.1));
  EXPECT_EQ(std::nullopt, ImpliedVolatility(true, 100, 110, 12, 0));
}

/// A chain whose calls imply 10, 20, 30 percent going up from the future at 1000, its puts 40, 50, 60 going
/// down.
ChainPrices Smile() {
  ChainPrices chain;
  double percent = 10;
  for (const double strike : {1000.0, 1010.0, 1020.0}) {
    chain[Scaled(strike)].call = Scaled(BlackPrice(true, strike, 1000, percent, 0.25));
    percent += 10;
  }
  for (const double strike : {990.0, 980.0, 970.0}) {
    chain[Scaled(strike)].put = Scaled(BlackPrice(false, strike, 1000, percent, 0.25));
    percent += 10;
  }
  return chain;
}

TEST(ChainVolatility, IsTheAverageOfTheTwoNearestOutOfTheMoneyOnEachSide) {
  // 10, 20, 40 and 50.
  EXPECT_NEAR(30, FromScaled(ChainVolatility(Smile(), Scaled(1000), 0.25)), 0.001);
}

TEST(ChainVolatility, PassesOverWhatHasNoPriceOrImpliesNothing) {
  ChainPrices chain = Smile();
  chain[Scaled(1010)].call = NoValue;
  chain[Scaled(990)].put = Scaled(995);  // above its strike
  // 10, 30, 50 and 60.
  EXPECT_NEAR(37.5, FromScaled(ChainVolatility(chain, Scaled(1000), 0.25)), 0.001);
}

TEST(ChainVolatility, OneOptionIsEnoughAndNoneGivesNone) {
  ChainPrices chain;
  EXPECT_EQ(NoValue, ChainVolatility(chain, Scaled(1000), 0.25));
  chain[Scaled(1000)].call = Smile()[Scaled(1000)].call;
  EXPECT_NEAR(10, FromScaled(ChainVolatility(chain, Scaled(1000), 0.25)), 0.001);
  EXPECT_EQ(NoValue, ChainVolatility(chain, NoValue, 0.25));
  EXPECT_EQ(NoValue, ChainVolatility(chain, Scaled(1000), 0));
}

// ---- The record ----

constexpr const wchar_t* kRecord = L"OPT.Volatility.ND.F.TWF.TX.202403";
constexpr double kYears =
    16.0 / 365 + (15.0 + 1.0 / 6) / 24 / 365;  // 08:50 on the 4th to the end of the 20th

std::string Option(const std::string& at, bool isCall, int strike, double percent,
                   const std::string& chain = "TX.202403") {
  return TradeLine(at, "ND.O.TWF." + chain + (isCall ? ".C." : ".P.") + std::to_string(strike),
                   BlackPrice(isCall, strike, 18000, percent, kYears));
}

const std::string kSymbols =
    R"({"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Type": "O", "ExpDate": "20240320"}]}
)";

/// Notes the volatility in tenths of a percent and MCODE.
class CVolatilityDay : public CFiguresDay {
 public:
  explicit CVolatilityDay(const std::string& lines, const std::string& head = "")
      : CFiguresDay(kRecord, lines, head, [](IBusObject& shown) {
          const std::optional<int64_t> scaled = ScaledField(shown, L"ImpVol");
          const std::string tenths =
              scaled ? std::to_string((*scaled + 500'000'000) / 1'000'000'000) : "none";
          return tenths + " " + std::to_string(Mcode(shown));
        }) {}
};

TEST(MarketFigures, ASubscribedRecordShowsWhatTheMarketImplies) {
  CVolatilityDay day(kSymbols + TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                     Option("08:50:00", true, 18000, 20) + "{\"command\": \"subscribe\"}\n");
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 200 1"));
}

TEST(MarketFigures, TheEndDateOfAQuoteCountsBeforeThatOfTheSymbolsWhicheverComesFirst) {
  const std::string symbols =
      R"({"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Type": "O", "ExpDate": "20240417"}]}
)";
  const std::string quote = R"({"quote": "ND.O.TWF.TX.202403.C.18000", "end_date": 20240320}
)";
  const std::string market = TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                             Option("08:50:00", true, 18000, 20) + "{\"command\": \"subscribe\"}\n";
  for (const std::string& setup : {symbols + quote, quote + symbols}) {
    CVolatilityDay day(setup + market);
    EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 200 1"));
  }
}

TEST(MarketFigures, ARecordIsUpdatedWhenItChangesAndAtMostOnceInItsPeriod) {
  CVolatilityDay day(kSymbols + TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                         Option("08:50:00", true, 18000, 20) + "{\"command\": \"subscribe\"}\n" +
                         Option("08:50:00.100", true, 18000, 30) + Option("08:50:00.200", true, 18000, 25) +
                         Option("08:50:00.300", true, 18000, 25) + Option("08:50:02", true, 18000, 40),
                     R"(, "figures_ms": 500)");
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 200 1", "08:50:00.500 250 1", "08:50:02.000 400 1"));
}

TEST(MarketFigures, TheFutureMovesTheFigureToo) {
  CVolatilityDay day(kSymbols + TradeLine("08:50:00", "ND.F.TWF.TX.202403", 17000) +
                     Option("08:50:00", true, 18000, 20) + "{\"command\": \"subscribe\"}\n" +
                     TradeLine("08:50:01", "ND.F.TWF.TX.202403", 18000));
  ASSERT_EQ(2U, day.seen.size());
  EXPECT_EQ("08:50:01.000 200 1", day.seen[1]);
}

TEST(MarketFigures, WhatNobodyWantsIsNotWorkedOut) {
  CVolatilityDay day(kSymbols + TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                     Option("08:50:00", true, 18000, 20) +
                     "{\"command\": \"subscribe\"}\n{\"at\": \"08:51:00\", \"command\": \"unsubscribe\"}\n" +
                     Option("08:52:00", true, 18000, 40));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 200 1"));
}

TEST(MarketFigures, WithoutAMarketTheRecordIsThereAndEmpty) {
  CVolatilityDay day("{\"at\": \"08:50:00\", \"command\": \"subscribe\"}\n");
  ASSERT_NE(nullptr, day.record);
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 none 0"));
}

TEST(MarketFigures, TheSettingsNameTheFutureOfAProductAndTheQuoteTheExpiry) {
  const std::string product =
      R"({"settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.TX=ND.F.TWF.OTHER\nND.O.TWF.TXW=ND.F.TWF.TX\n"}
{"quote": "ND.O.TWF.TXW.202403.C.18000", "end_date": 20240320}
)";
  CVolatilityDay day(product + kSymbols + TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                     Option("08:50:00", true, 18000, 20) + Option("08:50:00", true, 18000, 30, "TXW.202403") +
                     Option("08:50:00", true, 18000, 50, "TXW.202404") + "{\"command\": \"subscribe\"}\n");
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 300 1"));
}

TEST(MarketFigures, OfChainsThatExpireTogetherTheFirstProductCounts) {
  const std::string settings =
      R"({"settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.AX=ND.F.TWF.TX\n"})"
      "\n";
  const std::string end = R"({"quote": "ND.O.TWF.AX.202403.C.18000", "end_date": 20240320}
)";
  const std::string market = TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                             Option("08:50:00", true, 18000, 20) +
                             Option("08:50:00", true, 18000, 30, "AX.202403");
  const std::string subscribe = "{\"command\": \"subscribe\"}\n";
  for (const std::string& lines : {settings + kSymbols + end + market, settings + end + kSymbols + market,
                                   kSymbols + end + market + settings}) {
    CVolatilityDay day(lines + subscribe);
    EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 300 1"));
  }
}

TEST(MarketFigures, SettingsAndSymbolsOfTheDayMoveTheFigure) {
  const std::string product =
      R"({"at": "08:51:00", "settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.TX=ND.F.TWF.OTHER\nND.O.TWF.TXW=ND.F.TWF.TX\n"})"
      "\n";
  const std::string market =
      TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) + Option("08:50:00", true, 18000, 20) +
      Option("08:50:00", true, 18000, 30, "TXW.202403") + "{\"command\": \"subscribe\"}\n";
  CVolatilityDay day(R"({"quote": "ND.O.TWF.TXW.202403.C.18000", "end_date": 20240320}
)" + market + "{\"at\": \"08:50:30\", " +
                     kSymbols.substr(1) + product);
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 none 0", "08:50:30.000 200 1", "08:51:00.000 300 1"));
}

TEST(MarketFigures, AnEndDateOfAQuoteMovesTheFigure) {
  CVolatilityDay day(TradeLine("08:50:00", "ND.F.TWF.TX.202403", 18000) +
                     Option("08:50:00", true, 18000, 20) + "{\"command\": \"subscribe\"}\n" +
                     QuoteLine("08:51:00", "ND.O.TWF.TX.202403.C.18000", R"("end_date": 20240320)"));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 none 0", "08:51:00.000 200 1"));
}

TEST(MarketFigures, OnlyFuturesHaveTheirRecords) {
  CPlayedDay day("{\"at\": \"08:50:00\", \"note\": \"\"}\n", R"(, "figures": "market")");
  const auto opens = [&day](const wchar_t* name) { return day.terminal->Events().OpenRecord(name) != 0; };
  EXPECT_TRUE(opens(kRecord));
  EXPECT_TRUE(opens(L"OPT.Volatility.ND.F.TWF.TXW.202403"));
  EXPECT_FALSE(opens(L"OPT.Volatility.ND.O.TWF.TX.202403.C.18000"));
  EXPECT_FALSE(opens(L"OPT.Volatility.ND.S.TWF.2330"));
  EXPECT_FALSE(opens(L"OPT.Volatility."));
}

TEST(MarketFigures, GivenFiguresAreNotTouched) {
  CPlayedDay day("{\"at\": \"08:50:00\", \"note\": \"\"}\n");
  EXPECT_EQ(0, day.terminal->Events().OpenRecord(kRecord));
}

}  // namespace
}  // namespace iorder::testing

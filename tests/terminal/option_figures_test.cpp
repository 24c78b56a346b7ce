#include <gmock/gmock.h>

#include "terminal/market_figures.h"
#include "tests/terminal/figures_day.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kRecord = L"OPT.REAL.ND.O.TWF.TX.202403.C.18000";
const std::string kCall = "ND.O.TWF.TX.202403.C.18000";
const std::string kFuture = "ND.F.TWF.TX.202403";
const std::string kSymbols =
    R"({"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Type": "O", "ExpDate": "20240320"}]}
)";
const std::string kSubscribe = CommandLine("08:50:00", "subscribe");
/// 08:50 on the 4th to the end of the 20th.
constexpr double kYears = 16.0 / 365 + (15.0 + 1.0 / 6) / 24 / 365;

/// Volatility and delta in tenths of a percent, and MCODE.
std::string Shown(IBusObject& shown) {
  const auto tenths = [&shown](std::wstring_view name) {
    const std::optional<int64_t> scaled = ScaledField(shown, name);
    return scaled ? std::to_string(std::lround(FromScaled(*scaled) * 10)) : "none";
  };
  return tenths(L"ImpVol") + " " + tenths(L"Delta") + " " + std::to_string(Mcode(shown));
}

/// What is shown of an option of that volatility.
std::string Figures(bool isCall, double strike, double future, double percent) {
  const double deviation = percent / 100 * std::sqrt(kYears);
  const double call = NormalShare(std::log(future / strike) / deviation + deviation / 2);
  return std::to_string(std::lround(percent * 10)) + " " +
         std::to_string(std::lround((isCall ? call : call - 1) * 1000)) + " 1";
}

std::string CallFigures(double future, double percent) {
  return Figures(true, 18000, future, percent);
}

std::string TradedCall(const std::string& at, double future, double percent) {
  return TradeLine(at, kCall, BlackPrice(true, 18000, future, percent, kYears));
}

std::string TradedFuture(const std::string& at, double price) {
  return TradeLine(at, kFuture, price);
}

/// A day on which the call's record is subscribed; "open" shows records that nobody subscribed, too.
class COptionDay : public CFiguresDay {
 public:
  explicit COptionDay(const std::string& lines, const std::string& head = R"(, "subscriptions": "open")")
      : CFiguresDay(kRecord, kSymbols + lines, head, Shown) {}
};

// ---- Which figures ----

TEST(OptionFigures, ASubscribedRecordShowsWhatTheLastTradeImplies) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe);
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20)));
  for (const OptionFigureField& field : kOptionFigureFields) {
    EXPECT_TRUE(ScaledField(*day.record, field.name).has_value());
  }
}

TEST(OptionFigures, TheVolatilityStaysThatOfTheTradeWhenTheFutureMovesOn) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 TradedFuture("08:51:00", 18400) + TradedFuture("08:52:00", 17700));
  EXPECT_THAT(day.seen,
              ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:51:00.000 " + CallFigures(18400, 20),
                          "08:52:00.000 " + CallFigures(17700, 20)));
}

TEST(OptionFigures, ATradeBeforeTheSubscriptionIsValuedAtTheFutureOfItsTime) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) +
                 TradedFuture("08:51:00", 18400) + CommandLine("08:52:00", "subscribe"));
  EXPECT_THAT(day.seen, ElementsAre("08:52:00.000 " + CallFigures(18400, 20)));
}

TEST(OptionFigures, ATradeAtTheSamePriceImpliesAnewAtTheFutureOfItsTime) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 TradedFuture("08:51:00", 18000) + TradedCall("08:52:00", 18100, 20));
  ASSERT_EQ(3U, day.seen.size());
  EXPECT_EQ("08:51:00.000 " + CallFigures(18000, 20), day.seen[1]);
  EXPECT_NE("08:52:00.000 " + CallFigures(18000, 20), day.seen[2]);
}

TEST(OptionFigures, ATradeBeforeTheFirstOneOfTheFutureIsValuedAtThat) {
  COptionDay day(TradedCall("08:50:00", 18100, 20) + kSubscribe + TradedFuture("08:50:01", 18100));
  EXPECT_THAT(day.seen, ElementsAre("08:50:01.000 " + CallFigures(18100, 20)));
}

TEST(OptionFigures, ThatIsSoWheneverItIsSubscribed) {
  COptionDay day(TradedCall("08:50:00", 18100, 20) + TradedFuture("08:50:01", 18100) +
                 TradedFuture("08:51:00", 18400) + CommandLine("08:52:00", "subscribe"));
  EXPECT_THAT(day.seen, ElementsAre("08:52:00.000 " + CallFigures(18400, 20)));
}

TEST(OptionFigures, AFutureThatHadNoPriceForAWhileBeginsAnew) {
  COptionDay day(TradedFuture("08:50:00", 17000) + QuoteLine("08:50:00", kFuture, R"("price": null)") +
                 TradedCall("08:50:00", 18100, 20) + TradedFuture("08:50:01", 18100) +
                 TradedFuture("08:51:00", 18400) + CommandLine("08:52:00", "subscribe"));
  EXPECT_THAT(day.seen, ElementsAre("08:52:00.000 " + CallFigures(18400, 20)));
}

TEST(OptionFigures, WithoutATradeTheMiddleOfBidAndAskCounts) {
  const double price = BlackPrice(true, 18000, 18100, 25, kYears);
  const std::string both =
      "\"bid\": " + std::to_string(price - 3) + ", \"ask\": " + std::to_string(price + 3);
  COptionDay day(TradedFuture("08:50:00", 18100) + kSubscribe +
                 QuoteLine("08:50:01", kCall, "\"bid\": " + std::to_string(price - 3)) +
                 QuoteLine("08:50:02", kCall, both) + TradedCall("08:50:03", 18100, 20) +
                 QuoteLine("08:50:04", kCall, "\"bid\": 1, \"ask\": 2000"));
  EXPECT_THAT(day.seen, ElementsAre("08:50:02.000 " + CallFigures(18100, 25),
                                    "08:50:03.000 " + CallFigures(18100, 20)));
}

TEST(OptionFigures, ABidOrAskOfNothingHasNoMiddle) {
  const double price = BlackPrice(true, 18000, 18100, 25, kYears);
  for (const std::string& gone : {"\"bid\": 0, \"ask\": " + std::to_string(2 * price),
                                  "\"ask\": 0, \"bid\": " + std::to_string(2 * price)}) {
    COptionDay day(TradedFuture("08:50:00", 18100) + QuoteLine("08:50:00", kCall, gone) + kSubscribe +
                   TradedCall("08:50:03", 18100, 20));
    EXPECT_THAT(day.seen, ElementsAre("08:50:03.000 " + CallFigures(18100, 20)));
  }
}

TEST(OptionFigures, TheVolatilityIsThatOfTheTimeOfTheTrade) {
  const double yearsLater = 1.0 / 365;  // at the end of the 19th
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) +
                     CommandLine("2024-03-20T00:00:00", "subscribe"),
                 R"(, "subscriptions": "open", "end": "2024-03-20T00:00:01")");
  ASSERT_EQ(1U, day.seen.size());
  const double deviation = 0.2 * std::sqrt(yearsLater);
  const double delta = NormalShare(std::log(18100.0 / 18000) / deviation + deviation / 2);
  EXPECT_EQ("00:00:00.000 200 " + std::to_string(std::lround(delta * 1000)) + " 1", day.seen[0]);
}

TEST(OptionFigures, AFutureWithoutATradeIsItsMiddleToo) {
  COptionDay day(QuoteLine("08:50:00", kFuture, R"("bid": 18099, "ask": 18101)") +
                 TradedCall("08:50:00", 18100, 20) + kSubscribe);
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20)));
}

TEST(OptionFigures, WithoutAFutureTheForwardIsWhatPutCallParityImplies) {
  const double put = BlackPrice(false, 18000, 18100, 20, kYears);
  COptionDay day(TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 TradeLine("08:50:01", "ND.O.TWF.TX.202403.P.18000", put) +
                 TradeLine("08:50:02", "ND.O.TWF.TX.202403.P.18000", put - 100));
  EXPECT_THAT(day.seen, ElementsAre("08:50:01.000 " + CallFigures(18100, 20),
                                    "08:50:02.000 " + CallFigures(18200, 20)));
}

std::string ValuedBy(const std::string& at, const std::string& product) {
  return "{\"at\": \"" + at +
         R"(", "settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.TX=)" + product +
         "\\n\"}\n";
}

TEST(OptionFigures, SettingsThatChangeGiveTheChainAnotherFuture) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradeLine("08:50:00", "ND.F.TWF.MX.202403", 18200) +
                 TradedCall("08:50:00", 18100, 20) + kSubscribe + ValuedBy("08:50:30", "ND.F.TWF.MX") +
                 TradeLine("08:51:00", "ND.F.TWF.MX.202403", 18300));
  EXPECT_THAT(day.seen,
              ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:50:30.000 " + CallFigures(18200, 20),
                          "08:51:00.000 " + CallFigures(18300, 20)));
}

TEST(OptionFigures, ATradeThatHadNoFutureIsValuedAtTheOneThatTheSettingsGiveIt) {
  COptionDay day(TradeLine("08:50:00", "ND.F.TWF.MX.202403", 18100) + TradedCall("08:50:00", 18100, 20) +
                 ValuedBy("08:50:30", "ND.F.TWF.MX") + TradeLine("08:51:00", "ND.F.TWF.MX.202403", 18400) +
                 CommandLine("08:52:00", "subscribe"));
  EXPECT_THAT(day.seen, ElementsAre("08:52:00.000 " + CallFigures(18400, 20)));
}

std::string EndsOn(const std::string& at, const std::string& date) {
  return "{\"at\": \"" + at + R"(", "symbols": [{"Symbol": ")" + kCall + R"(", "Type": "O", "ExpDate": ")" +
         date + "\"}]}\n";
}

TEST(OptionFigures, AnotherEndDateGivesAnotherVolatility) {
  const std::string market = TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe;
  for (const std::string& line :
       {QuoteLine("08:50:01", kCall, R"("end_date": 20240417)"), EndsOn("08:50:01", "20240417")}) {
    COptionDay day(market + line);
    ASSERT_EQ(2U, day.seen.size());
    EXPECT_EQ("08:50:01.000 1", day.seen[1].substr(0, 14));  // a longer time, a lower volatility
  }
}

TEST(OptionFigures, SymbolsThatSayNothingNewChangeNothing) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) +
                 QuoteLine("08:50:00", kCall, R"("end_date": 20240320)") + kSubscribe +
                 EndsOn("08:50:01", "20240417") + ValuedBy("08:50:02", "ND.F.TWF.TX"));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20)));
}

TEST(OptionFigures, APutHasItsOwn) {
  const std::string put = "ND.O.TWF.TX.202403.P.17900.5";
  CFiguresDay day(L"OPT.REAL.ND.O.TWF.TX.202403.P.17900.5",
                  kSymbols + TradedFuture("08:50:00", 18100) +
                      TradeLine("08:50:00", put, BlackPrice(false, 17900.5, 18100, 30, kYears)) + kSubscribe,
                  "", Shown);
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + Figures(false, 17900.5, 18100, 30)));
}

// ---- When ----

TEST(OptionFigures, ARecordIsWorkedOutAtMostOnceInItsPeriod) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                     TradedFuture("08:50:00.100", 18200) + TradedFuture("08:50:00.300", 18300) +
                     TradedFuture("08:50:00.600", 18400),
                 R"(, "subscriptions": "open", "figures_ms": 500)");
  EXPECT_THAT(day.seen,
              ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:50:00.500 " + CallFigures(18300, 20),
                          "08:50:01.000 " + CallFigures(18400, 20)));
}

TEST(OptionFigures, WhatIsSubscribedLateIsWorkedOutAtOnce) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) +
                     CommandLine("08:50:00", "also OPT.REAL.ND.O.TWF.TX.202403.P.18000") +
                     CommandLine("08:50:10", "subscribe") + TradedFuture("08:50:20", 18200),
                 R"(, "subscriptions": "open", "figures_ms": 60000)");
  EXPECT_THAT(day.seen, ElementsAre("08:50:10.000 " + CallFigures(18100, 20),
                                    "08:51:10.000 " + CallFigures(18200, 20)));
}

TEST(OptionFigures, ASubscriptionThatComesAgainWaitsForItsPeriod) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                     CommandLine("08:50:01", "unsubscribe") + TradedFuture("08:50:02", 18200) +
                     CommandLine("08:50:03", "subscribe"),
                 R"(, "subscriptions": "open", "figures_ms": 60000)");
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20),
                                    "08:51:00.000 " + CallFigures(18200, 20)));
}

TEST(OptionFigures, WhatIsTheSameFiresNothing) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 TradedFuture("08:51:00", 18100) +
                 QuoteLine("08:51:01", "ND.O.TWF.TX.202403.C.18100", R"("price": 5)"));
  EXPECT_EQ(1U, day.seen.size());
}

TEST(OptionFigures, WhatNobodyWantsIsNotWorkedOut) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) +
                 CommandLine("08:50:01", "look") + CommandLine("08:50:02", "subscribe") +
                 CommandLine("08:50:03", "unsubscribe") + TradedFuture("08:51:00", 18400) +
                 CommandLine("08:52:00", "subscribe"));
  EXPECT_THAT(day.seen, ElementsAre("08:50:01.000 none none 0", "08:50:02.000 " + CallFigures(18100, 20),
                                    "08:52:00.000 " + CallFigures(18400, 20)));
}

TEST(OptionFigures, ARecordShowsNothingBeforeItsFirstDataAreDue) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                     CommandLine("08:50:00.400", "look") + CommandLine("08:50:02", "unsubscribe") +
                     CommandLine("08:50:02", "look"),
                 R"(, "subscription_ms": 500)");
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.400 none none 0", "08:50:00.500 " + CallFigures(18100, 20),
                                    "08:50:02.000 none none 0"));
}

// ---- None ----

TEST(OptionFigures, WithoutAMarketTheRecordIsThereAndEmpty) {
  COptionDay day(kSubscribe + CommandLine("08:51:00", "look"));
  EXPECT_THAT(day.seen, ElementsAre("08:51:00.000 none none 0"));
}

TEST(OptionFigures, FiguresGoWithThePriceThatTheyCameFrom) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 QuoteLine("08:51:00", kCall, R"("price": null)") + TradedFuture("08:52:00", 18200) +
                 TradedCall("08:53:00", 18200, 20));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:51:00.000 none none 0",
                                    "08:53:00.000 " + CallFigures(18200, 20)));
}

TEST(OptionFigures, APriceBelowWhatExerciseBringsHasNone) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradeLine("08:50:00", kCall, 99) + kSubscribe +
                 TradedCall("08:51:00", 18100, 20) + TradeLine("08:52:00", kCall, 100) +
                 CommandLine("08:53:00", "look"));
  // 100 is just what exercise brings, and no time.
  EXPECT_THAT(day.seen, ElementsAre("08:51:00.000 " + CallFigures(18100, 20), "08:52:00.000 none none 0",
                                    "08:53:00.000 none none 0"));
}

TEST(OptionFigures, WithoutAFutureAndParityTheyGo) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 QuoteLine("08:51:00", kFuture, R"("price": null)"));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:51:00.000 none none 0"));
}

TEST(OptionFigures, AnExpiredOptionHasNone) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 R"({"at": "2024-03-20T23:59:00", "quote": "ND.F.TWF.TX.202403", "price": 18050}
{"at": "2024-03-21T00:00:00", "quote": "ND.F.TWF.TX.202403", "price": 18060}
)");
  ASSERT_EQ(3U, day.seen.size());
  EXPECT_EQ("23:59:00.000 200 1000 1", day.seen[1]);
  EXPECT_EQ("00:00:00.000 none none 0", day.seen[2]);
}

TEST(OptionFigures, WithoutAnExpiryTheyWaitForOne) {
  CFiguresDay day(kRecord,
                  TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                      QuoteLine("08:50:01", kCall, R"("end_date": 20241350)") +
                      QuoteLine("08:50:02", kCall, R"("end_date": 20240320)"),
                  R"(, "subscriptions": "open")", Shown);
  EXPECT_THAT(day.seen, ElementsAre("08:50:02.000 " + CallFigures(18100, 20)));
}

// ---- Whose record it is ----

TEST(OptionFigures, WhatALineFillsBelongsToTheLines) {
  COptionDay day(TradedFuture("08:50:00", 18100) + TradedCall("08:50:00", 18100, 20) + kSubscribe +
                 R"({"at": "08:51:00", "record": "OPT.REAL.ND.O.TWF.TX.202403.C.18000", )"
                 R"("fields": {"Delta": {"scaled": 7}}, "fire": true}
)" + TradedFuture("08:52:00", 18200));
  EXPECT_THAT(day.seen, ElementsAre("08:50:00.000 " + CallFigures(18100, 20), "08:51:00.000 200 70 1"));
}

TEST(OptionFigures, OnlyOptionsHaveTheirRecords) {
  CPlayedDay day("{\"at\": \"08:50:00\", \"note\": \"\"}\n", R"(, "figures": "market")");
  const auto opens = [&day](const wchar_t* name) { return day.terminal->Events().OpenRecord(name) != 0; };
  EXPECT_TRUE(opens(kRecord));
  EXPECT_TRUE(opens(L"OPT.REAL.ND.O.TWF.TX.202403.P.18000.5"));
  EXPECT_FALSE(opens(L"OPT.REAL.ND.S.TWF.2330"));
  EXPECT_FALSE(opens(L"OPT.REAL.ND.O.TWF.TX.202403.X.18000"));
  EXPECT_FALSE(opens(L"OPT.REAL.ND.O.TWF.TX.202403.C"));
  EXPECT_FALSE(opens(L"OPT.OTHER.ND.O.TWF.TX.202403.C.18000"));
}

TEST(OptionFigures, GivenFiguresAreNotTouched) {
  CPlayedDay day("{\"at\": \"08:50:00\", \"note\": \"\"}\n");
  EXPECT_EQ(0, day.terminal->Events().OpenRecord(kRecord));
}

}  // namespace
}  // namespace iorder::testing

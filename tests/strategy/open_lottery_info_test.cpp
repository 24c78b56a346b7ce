#include "strategy/open_lottery_info.h"

#include <gtest/gtest.h>

#include "tests/strategy/json_text.h"

namespace iorder::testing {
namespace {

COpenLotteryInfo Read(std::string_view text, COpenLotteryInfo info = {}) {
  info.Read(Json(text));
  return info;
}

constexpr std::string_view kFull = R"({
  "Symbol": {"Security": "ND.O.TWF.TX.HOT", "CP": "P"},
  "Start": {"Time": 845, "Run": 1, "DayOfWeek": [1, 5]},
  "Stop": {"Enable": 1, "Time": 1340, "Cancel": 1, "ClosePos": 1,
           "CloasPosInfo": {"OrderType": "M", "LimitTicks": 3}},
  "CloasPosInfoByProfit": {"OrderType": "L", "LimitTicks": 4},
  "Cash": 10000,
  "Condition": {"OpenPrice": {"Dn": 1.5, "Up": 50},
                "StrikePrice": {"In": 3, "Out": 4, "IsATM": 1, "IsITM": 2, "IsOTM": 3,
                                "ITM_D": 5, "ITM_U": 6, "OTM_D": 7, "OTM_U": 8}},
  "OrderPrice": {"Type": 2, "Price": 2.5, "PriceType": "L", "UnderlyingChange": 100, "UnderlyingChange%": 1.5,
                 "Volatility": 20.5, "AdjustIV": -1, "RF": 1.5, "DY": 2, "EndDate": "C", "TDays": 240,
                 "CDays": 360, "PriceUp": 9.5, "PriceDn": 1}})";

void ExpectEqual(const COpenLotteryInfo& left, const COpenLotteryInfo& right) {
  EXPECT_EQ(left.m_strSecurity, right.m_strSecurity);
  EXPECT_EQ(left.m_strCP, right.m_strCP);
  EXPECT_EQ(left.m_llStartTime, right.m_llStartTime);
  EXPECT_EQ(left.m_llDayOfWeek, right.m_llDayOfWeek);
  EXPECT_EQ(left.m_lStartRun, right.m_lStartRun);
  EXPECT_EQ(left.m_bStopEnable, right.m_bStopEnable);
  EXPECT_EQ(left.m_llStopTime, right.m_llStopTime);
  EXPECT_EQ(left.m_bStopCancel, right.m_bStopCancel);
  EXPECT_EQ(left.m_bStopClosePos, right.m_bStopClosePos);
  EXPECT_EQ(left.m_strCloseOrderType, right.m_strCloseOrderType);
  EXPECT_EQ(left.m_lCloseTicks, right.m_lCloseTicks);
  EXPECT_EQ(left.m_strCloseOrderTypeByProfit, right.m_strCloseOrderTypeByProfit);
  EXPECT_EQ(left.m_lCloseTicksByProfit, right.m_lCloseTicksByProfit);
  EXPECT_EQ(left.m_dbOpenPriceDn, right.m_dbOpenPriceDn);
  EXPECT_EQ(left.m_dbOpenPriceUp, right.m_dbOpenPriceUp);
  EXPECT_EQ(left.m_lStrikeIn, right.m_lStrikeIn);
  EXPECT_EQ(left.m_lStrikeOut, right.m_lStrikeOut);
  EXPECT_EQ(left.m_lIsATM, right.m_lIsATM);
  EXPECT_EQ(left.m_lIsITM, right.m_lIsITM);
  EXPECT_EQ(left.m_lIsOTM, right.m_lIsOTM);
  EXPECT_EQ(left.m_lITM_D, right.m_lITM_D);
  EXPECT_EQ(left.m_lITM_U, right.m_lITM_U);
  EXPECT_EQ(left.m_lOTM_D, right.m_lOTM_D);
  EXPECT_EQ(left.m_lOTM_U, right.m_lOTM_U);
  EXPECT_EQ(left.m_dbOrderPrice, right.m_dbOrderPrice);
  EXPECT_EQ(left.m_lOrderPriceType, right.m_lOrderPriceType);
  EXPECT_EQ(left.m_strPriceType, right.m_strPriceType);
  EXPECT_EQ(left.m_dbUnderlyingChange, right.m_dbUnderlyingChange);
  EXPECT_EQ(left.m_dbUnderlyingChangePct, right.m_dbUnderlyingChangePct);
  EXPECT_EQ(left.m_dbVolatility, right.m_dbVolatility);
  EXPECT_EQ(left.m_dbAdjustIV, right.m_dbAdjustIV);
  EXPECT_EQ(left.m_dbRF, right.m_dbRF);
  EXPECT_EQ(left.m_dbDY, right.m_dbDY);
  EXPECT_EQ(left.m_strEndDate, right.m_strEndDate);
  EXPECT_EQ(left.m_lTDays, right.m_lTDays);
  EXPECT_EQ(left.m_lCDays, right.m_lCDays);
  EXPECT_EQ(left.m_dbPriceUp, right.m_dbPriceUp);
  EXPECT_EQ(left.m_dbPriceDn, right.m_dbPriceDn);
}

TEST(OpenLotteryInfo, EveryKeyIsRead) {
  const COpenLotteryInfo info = Read(kFull);
  EXPECT_EQ(L"ND.O.TWF.TX.HOT", info.m_strSecurity);
  EXPECT_EQ(L"P", info.m_strCP);
  EXPECT_EQ(845, info.m_llStartTime);
  EXPECT_EQ(0b100010, info.m_llDayOfWeek);
  EXPECT_EQ(1, info.m_lStartRun);
  EXPECT_EQ(1, info.m_bStopEnable);
  EXPECT_EQ(1340, info.m_llStopTime);
  EXPECT_EQ(1, info.m_bStopCancel);
  EXPECT_EQ(1, info.m_bStopClosePos);
  EXPECT_EQ(L"M", info.m_strCloseOrderType);
  EXPECT_EQ(3, info.m_lCloseTicks);
  EXPECT_EQ(L"L", info.m_strCloseOrderTypeByProfit);
  EXPECT_EQ(4, info.m_lCloseTicksByProfit);
  EXPECT_EQ(10000, info.m_llCash);
  EXPECT_EQ(1.5, info.m_dbOpenPriceDn);
  EXPECT_EQ(50.0, info.m_dbOpenPriceUp);
  EXPECT_EQ(3, info.m_lStrikeIn);
  EXPECT_EQ(4, info.m_lStrikeOut);
  EXPECT_EQ(1, info.m_lIsATM);
  EXPECT_EQ(2, info.m_lIsITM);
  EXPECT_EQ(3, info.m_lIsOTM);
  EXPECT_EQ(5, info.m_lITM_D);
  EXPECT_EQ(6, info.m_lITM_U);
  EXPECT_EQ(7, info.m_lOTM_D);
  EXPECT_EQ(8, info.m_lOTM_U);
  EXPECT_EQ(2, info.m_lOrderPriceType);
  EXPECT_EQ(2.5, info.m_dbOrderPrice);
  EXPECT_EQ(L"L", info.m_strPriceType);
  EXPECT_EQ(100.0, info.m_dbUnderlyingChange);
  EXPECT_EQ(1.5, info.m_dbUnderlyingChangePct);
  EXPECT_EQ(20.5, info.m_dbVolatility);
  EXPECT_EQ(-1.0, info.m_dbAdjustIV);
  EXPECT_EQ(1.5, info.m_dbRF);
  EXPECT_EQ(2.0, info.m_dbDY);
  EXPECT_EQ(L"C", info.m_strEndDate);
  EXPECT_EQ(240, info.m_lTDays);
  EXPECT_EQ(360, info.m_lCDays);
  EXPECT_EQ(9.5, info.m_dbPriceUp);
  EXPECT_EQ(1.0, info.m_dbPriceDn);
}

TEST(OpenLotteryInfo, AKeyThatIsMissingInABlockThatIsThereHasItsDefault) {
  const COpenLotteryInfo info = Read(R"({"Symbol": {}, "Start": {}, "Stop": {"CloasPosInfo": {}},
      "CloasPosInfoByProfit": {}, "Condition": {"OpenPrice": {}, "StrikePrice": {}}, "OrderPrice": {}})",
                                     Read(kFull));
  COpenLotteryInfo expected;
  expected.m_llDayOfWeek = 0b100010;  // days are never taken away
  expected.m_lStartRun = NoInt;
  expected.m_strCloseOrderType = L"";
  expected.m_strCloseOrderTypeByProfit = L"";
  expected.m_dbOpenPriceDn = 0.0;
  expected.m_dbOpenPriceUp = 0.0;
  expected.m_lIsATM = expected.m_lIsITM = expected.m_lIsOTM = 0;
  expected.m_lITM_D = expected.m_lITM_U = expected.m_lOTM_D = expected.m_lOTM_U = 0;
  expected.m_dbVolatility = expected.m_dbAdjustIV = expected.m_dbRF = expected.m_dbDY = 0.0;
  ExpectEqual(expected, info);
  EXPECT_EQ(250, info.m_lTDays);
  EXPECT_EQ(365, info.m_lCDays);
  EXPECT_EQ(-2, info.m_lStrikeIn);
  EXPECT_EQ(NoPrice, info.m_dbOrderPrice);
  EXPECT_EQ(NoPrice, info.m_dbPriceUp);
  EXPECT_EQ(NoValue, info.m_llStartTime);
}

TEST(OpenLotteryInfo, ABlockThatIsMissingKeepsWhatItsCommandBeforeSaid) {
  ExpectEqual(Read(kFull), Read(R"({"Cash": 7})", Read(kFull)));
}

TEST(OpenLotteryInfo, ABlockThatIsMissingFromTheStartKeepsItsValuesFromConstruction) {
  const COpenLotteryInfo info = Read("{}");
  ExpectEqual(COpenLotteryInfo(), info);
  EXPECT_EQ(L"MWP", info.m_strCloseOrderType);
  EXPECT_EQ(L"MWP", info.m_strCloseOrderTypeByProfit);
  EXPECT_EQ(NoPrice, info.m_dbOpenPriceDn);
  EXPECT_EQ(NoPrice, info.m_dbOpenPriceUp);
  EXPECT_EQ(-2, info.m_lStrikeIn);
  EXPECT_EQ(-2, info.m_lStrikeOut);
  EXPECT_EQ(-1, info.m_lIsATM);
  EXPECT_EQ(-1, info.m_lOTM_U);
  EXPECT_EQ(NoPrice, info.m_dbUnderlyingChange);
  EXPECT_EQ(250, info.m_lTDays);
  EXPECT_EQ(365, info.m_lCDays);
}

TEST(OpenLotteryInfo, ABlockOfAnotherKindIsDroppedAsAWhole) {
  for (const char* kind : {"5", "[]", "null", "\"text\"", "true"}) {
    const std::string value = kind;
    ExpectEqual(Read(kFull), Read(R"({"Symbol": )" + value + R"(, "Start": )" + value + R"(, "Stop": )" +
                                      value + R"(, "CloasPosInfoByProfit": )" + value + R"(, "Condition": )" +
                                      value + R"(, "OrderPrice": )" + value + "}",
                                  Read(kFull)));
    ExpectEqual(
        Read(kFull),
        Read(R"({"Condition": {"OpenPrice": )" + value + R"(, "StrikePrice": )" + value + "}}", Read(kFull)));
  }
}

TEST(OpenLotteryInfo, ACommandWithoutConditionKeepsItAndOneWithoutAnUpperPriceSetsItToZero) {
  const COpenLotteryInfo first = Read(R"({"Condition": {"OpenPrice": {"Dn": 1, "Up": 50}}})");
  EXPECT_EQ(50.0, Read("{}", first).m_dbOpenPriceUp);
  const COpenLotteryInfo second = Read(R"({"Condition": {"OpenPrice": {"Dn": 2}}})", first);
  EXPECT_EQ(2.0, second.m_dbOpenPriceDn);
  EXPECT_EQ(0.0, second.m_dbOpenPriceUp);
}

TEST(OpenLotteryInfo, KeysAreCaseSensitive) {
  ExpectEqual(COpenLotteryInfo(),
              Read(R"({"symbol": {"Security": "X"}, "ORDERPRICE": {"Price": 5}, "ClosePosInfoByProfit":
                       {"OrderType": "M"}})"));
  EXPECT_EQ(NoPrice, Read(R"({"OrderPrice": {"price": 5}})").m_dbOrderPrice);
}

TEST(OpenLotteryInfo, OnlyPInEitherCaseMeansPuts) {
  const auto isPut = [](const std::string& cp) {
    return Read(R"({"Symbol": {"CP": ")" + cp + R"("}})").IsPut();
  };
  EXPECT_TRUE(isPut("P"));
  EXPECT_TRUE(isPut("p"));
  EXPECT_FALSE(isPut("c"));
  EXPECT_FALSE(isPut("C"));
  EXPECT_FALSE(isPut("CP"));
  EXPECT_FALSE(isPut("P "));
  EXPECT_FALSE(isPut(""));
  EXPECT_FALSE(Read(R"({"Symbol": {"CP": 1}})").IsPut());
}

TEST(OpenLotteryInfo, TheOrderTypeOfACloseOutStaysMwpOnlyWithoutItsBlock) {
  EXPECT_EQ(L"MWP", Read(R"({"Stop": {"Enable": 1}})").m_strCloseOrderType);
  EXPECT_EQ(L"", Read(R"({"Stop": {"CloasPosInfo": {"LimitTicks": 2}}})").m_strCloseOrderType);
  EXPECT_EQ(2, Read(R"({"Stop": {"CloasPosInfo": {"LimitTicks": 2}}})").m_lCloseTicks);
}

TEST(OpenLotteryInfo, ACloseOutBlockOfAnotherKindCountsAsEmpty) {
  for (const char* kind : {"5", "[]", "null", "\"M\""}) {
    const std::string text = std::string(R"({"Stop": {"CloasPosInfo": )") + kind + "}}";
    EXPECT_EQ(L"", Read(text).m_strCloseOrderType) << kind;
    EXPECT_EQ(0, Read(text, Read(kFull)).m_lCloseTicks) << kind;
    // The one at the root is a block like any other.
    const std::string byProfit = std::string(R"({"CloasPosInfoByProfit": )") + kind + "}";
    EXPECT_EQ(L"MWP", Read(byProfit).m_strCloseOrderTypeByProfit) << kind;
  }
}

TEST(OpenLotteryInfo, DaysAreOnlyEverAdded) {
  const COpenLotteryInfo first = Read(R"({"Start": {"DayOfWeek": [1, 2]}})");
  const COpenLotteryInfo second = Read(R"({"Start": {"DayOfWeek": [3]}})", first);
  for (const int64_t day : {1, 2, 3}) EXPECT_TRUE(second.RunsOn(day)) << day;
  for (const int64_t day : {0, 4, 5, 6}) EXPECT_FALSE(second.RunsOn(day)) << day;
}

TEST(OpenLotteryInfo, DaysThatAreNo32BitIntegersAreSkipped) {
  EXPECT_EQ(0b1000000,
            Read(R"({"Start": {"DayOfWeek": [1.0, "2", null, true, 3000000000, [4], 6]}})").m_llDayOfWeek);
  EXPECT_EQ(0, Read(R"({"Start": {"DayOfWeek": 3}})").m_llDayOfWeek);
}

TEST(OpenLotteryInfo, ADayCountsModulo32) {
  EXPECT_EQ(0b10, Read(R"({"Start": {"DayOfWeek": [33]}})").m_llDayOfWeek);
  EXPECT_EQ(int64_t{1} << 31, Read(R"({"Start": {"DayOfWeek": [-1]}})").m_llDayOfWeek);
}

TEST(OpenLotteryInfo, TimesAreWholeNumbers) {
  EXPECT_EQ(NoValue, Read(R"({"Start": {"Time": 845.0}})").m_llStartTime);
  EXPECT_EQ(NoValue, Read(R"({"Start": {"Time": "845"}})").m_llStartTime);
  EXPECT_EQ(NoValue, Read(R"({"Stop": {"Enable": 1}})").m_llStopTime);
}

TEST(OpenLotteryInfo, RunIsNoneUnlessItIsAnInteger) {
  EXPECT_EQ(NoInt, Read(R"({"Start": {"Run": 1.0}})").m_lStartRun);
  EXPECT_EQ(NoInt, Read(R"({"Start": {"Run": true}})").m_lStartRun);
  EXPECT_EQ(1, Read(R"({"Start": {"Run": 1}})").m_lStartRun);
}

TEST(OpenLotteryInfo, CashIsANumberWithoutItsFraction) {
  EXPECT_EQ(1000, Read(R"({"Cash": 1000.9})").m_llCash);
  EXPECT_EQ(1000, Read(R"({"Cash": 1000})").m_llCash);
  EXPECT_EQ(-3, Read(R"({"Cash": -3.9})").m_llCash);
  EXPECT_EQ(5000000000, Read(R"({"Cash": 5000000000})").m_llCash);
}

TEST(OpenLotteryInfo, CashIsReadAnewByEveryCommand) {
  EXPECT_EQ(NoValue, Read("{}", Read(kFull)).m_llCash);
  EXPECT_EQ(NoValue, Read(R"({"Cash": "10000"})", Read(kFull)).m_llCash);
}

TEST(OpenLotteryInfo, ARangeOfStrikesMayBeSpelledEitherWayButAFlagDistanceOnlyAsAnInteger) {
  const auto strikes = [](const std::string& members) {
    return Read(R"({"Condition": {"StrikePrice": {)" + members + "}}}");
  };
  EXPECT_EQ(2, strikes(R"("In": 2)").m_lStrikeIn);
  EXPECT_EQ(2, strikes(R"("In": 2.0)").m_lStrikeIn);
  EXPECT_EQ(2, strikes(R"("Out": 2.9)").m_lStrikeOut);
  EXPECT_EQ(-1, strikes(R"("Out": -1)").m_lStrikeOut);
  EXPECT_EQ(1, strikes(R"("In": 4294967297)").m_lStrikeIn) << "cut to 32 bits";
  EXPECT_EQ(0, strikes(R"("ITM_D": 2.0)").m_lITM_D);
  EXPECT_EQ(0, strikes(R"("IsATM": true)").m_lIsATM);
}

TEST(OpenLotteryInfo, ZeroDaysOfAYearStayZero) {
  const COpenLotteryInfo info = Read(R"({"OrderPrice": {"TDays": 0, "CDays": 0.0}})");
  EXPECT_EQ(0, info.m_lTDays);
  EXPECT_EQ(0, info.m_lCDays);
}

TEST(OpenLotteryInfo, APriceThatIsNoNumberIsNoPrice) {
  EXPECT_EQ(NoPrice, Read(R"({"OrderPrice": {"Price": "2.5"}})").m_dbOrderPrice);
  EXPECT_EQ(NoPrice, Read(R"({"OrderPrice": {"Price": null}})").m_dbOrderPrice);
  EXPECT_EQ(0.0, Read(R"({"OrderPrice": {"Price": 0}})").m_dbOrderPrice);
}

TEST(OpenLotteryInfo, AnOrderInfoThatIsNoObjectHasNoMembers) {
  const COpenLotteryInfo info = Read("[1, 2]", Read(kFull));
  ExpectEqual(Read(kFull), info);
  EXPECT_EQ(NoValue, info.m_llCash);
}

TEST(OpenLotteryInfo, TheResetComesAMinuteBeforeTheStart) {
  const auto reset = [](int64_t start) {
    COpenLotteryInfo info;
    info.m_llStartTime = start;
    return info.ResetTime();
  };
  EXPECT_EQ(844, reset(845));
  EXPECT_EQ(859, reset(900));
  EXPECT_EQ(2359, reset(0));
  EXPECT_EQ(0, reset(1));
  EXPECT_EQ(NoValue, reset(NoValue)) << "never comes";
}

}  // namespace
}  // namespace iorder::testing

#include <gmock/gmock.h>

#include "platform/text.h"
#include "tests/terminal/group_order_day.h"

/// Group orders in a day: the strings that the engine sends, and the child orders that come of them.
namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string Quote(const std::string& at, const std::string& symbol, const std::string& words) {
  return "{\"at\": \"" + at + "\", \"quote\": \"" + symbol + "\", " + words + "}\n";
}

Value Text(const wchar_t* text) {
  return std::wstring(text);
}
Value Price(double price) {
  return ToScaled(price);
}

// ---- Children ----

TEST(GroupOrder, AChildIsAnnouncedAndThenUpdatedTillItIsFilled) {
  CGroupOrderDay day(Quote("08:59:00", kCall, "\"price\": 12.5") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 3, "GROUPID={G},GROUPTYPE=1")}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.020 C1 3 3"));
  EXPECT_EQ(Text(L"S1"), day.Child(1, L"Strategy"));
  EXPECT_EQ(Text(L"C1"), day.Child(1, L"LevelKey"));
  EXPECT_EQ(Text(L"{G}"), day.Child(1, L"GroupID"));
  EXPECT_EQ(Value(ToWide(kCall)), day.Child(1, L"Symbol"));
  EXPECT_EQ(Text(L"B"), day.Child(1, L"Side"));
  EXPECT_EQ(Value(3), day.Child(1, L"SendQty"));
  EXPECT_EQ(Value(0), day.Child(1, L"LeavesQty"));
  EXPECT_EQ(Price(12.5), day.Child(1, L"AvgPrice"));
  EXPECT_EQ(Value(0), day.Child(1, L"ClientModify"));
  EXPECT_EQ(Value(), day.Child(1, L"Price"));
  EXPECT_EQ(Value(), day.Child(1, L"Text"));
}

TEST(GroupOrder, AChildHasNoNodeAmongTheReports) {
  CGroupOrderDay day(Quote("08:59:00", kCall, "\"price\": 12.5") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 1)}));
  EXPECT_EQ(Value(0), day.day.Open(L"TRADE.ORDERSET")->GetValue(read_code::kNode, -1));
}

TEST(GroupOrder, WithoutAnyPriceAChildWaitsAndIsFilledInParts) {
  CGroupOrderDay day(SendAt("09:00:00", {GroupOrder(kCall, "S", 3)}) +
                     Quote("09:00:01", kCall, "\"price\": 10, \"qty\": 2") +
                     Quote("09:00:02", kCall, "\"price\": 13, \"qty\": 5"));
  EXPECT_THAT(day.seen,
              ElementsAre("09:00:00.010 C1 announced", "09:00:01.010 C1 6 2", "09:00:02.010 C1 3 3"));
  EXPECT_EQ(Price(11), day.Child(1, L"AvgPrice"));
}

TEST(GroupOrder, APlainOrderBesideItIsReportedAsEver) {
  CGroupOrderDay day(
      Quote("08:59:00", kCall, "\"price\": 12.5") +
      SendAt("09:00:00", {GroupOrder(kCall, "B", 1, "SYNTHETIC=0,ORDERTYPE=1"), GroupOrder(kCall, "B", 1)}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C2 announced", "09:00:00.020 C2 3 1"));
  EXPECT_EQ(Value(1), day.day.Open(L"TRADE.ORDERSET")->GetValue(read_code::kNode, -1));
  EXPECT_EQ(Value(1), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(GroupOrder, ACancelOfAReportDoesNotReachAChild) {
  CPlayedDay day(R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"quote": "ND.O.TWF.TX.202403.C.18000", "mcode": 1}
{"at": "09:00:00", "command": "go"}
)",
                 R"(, "orders": {"latency_ms": 0})");
  day.engine.onMessage = [&](const std::wstring& topic, const std::wstring&, const Value&) {
    if (topic != L"TRADE.IntelligentOrder") return;
    day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, ToWide(GroupOrder(kCall, "B", 1)), {});
    day.runtime->Sleep(Milliseconds(5));
    day.terminal->Events().Command(L"TRADE.CANCELORDER", 1, 1, L"REPORTID=R1", {});
  };
  day.Play();
  EXPECT_THAT(day.trace.Text(), HasSubstr("TRADE.OTO.MANAGER"));
  EXPECT_THAT(day.trace.Text(), Not(HasSubstr("\"record\": \"C1\"")));
}

// ---- Groups ----

TEST(GroupOrder, TheStringsOfAGroupComeInAtOneMoment) {
  // The engine sends the second string while the first is on its way.
  CPlayedDay day(R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"quote": "ND.O.TWF.TX.202403.C.18000", "price": 5}
{"at": "09:00:00", "command": "go"}
)",
                 R"(, "orders": {})");
  std::vector<std::string> announced;
  day.engine.onMessage = [&](const std::wstring& topic, const std::wstring&, const Value&) {
    if (topic == L"TRADE.OTO.MANAGER") {
      announced.push_back(day.Clock());
      return;
    }
    for (const char* const group : {"GROUPID=A", "GROUPID=B", "GROUPID=A", "GROUPID=", "GROUPID=A"}) {
      day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, ToWide(GroupOrder(kCall, "B", 1, group)), {});
      day.runtime->Sleep(Milliseconds(4));
    }
  };
  day.Play();
  // A takes orders 1 and 3 at once; order 5 came behind its group and is one by itself.
  EXPECT_THAT(announced,
              ElementsAre("09:00:00.010", "09:00:00.010", "09:00:00.014", "09:00:00.022", "09:00:00.026"));
}

TEST(GroupOrder, OneRefusedStringIsTheWholeGroups) {
  CGroupOrderDay day(Quote("08:59:00", kCall, "\"price\": 12.5") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 1, "GROUPID=A,GROUPTYPE=1"),
                                         GroupOrder("ND.O.UNKNOWN", "B", 1, "GROUPID=A,GROUPTYPE=1"),
                                         GroupOrder(kCall, "B", 1, "GROUPID=B,GROUPTYPE=1")}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.010 C2 announced",
                                    "09:00:00.010 C3 announced", "09:00:00.011 C1 10 0",
                                    "09:00:00.011 C2 10 0", "09:00:00.020 C3 3 1"));
  EXPECT_EQ(Text(L"order 2 of its group is rejected: unknown symbol ND.O.UNKNOWN"), day.Child(1, L"Text"));
  EXPECT_EQ(Text(L"unknown symbol ND.O.UNKNOWN"), day.Child(2, L"Text"));
  EXPECT_EQ(Value(0), day.Child(1, L"LeavesQty"));
}

TEST(GroupOrder, InAGroupOfType0EachStringIsTakenByItself) {
  CGroupOrderDay day(Quote("08:59:00", kCall, "\"price\": 12.5") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 1, "GROUPID=A"),
                                         GroupOrder(kCall, "B", 1, "GROUPID=A,ACCOUNT=A2")}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.010 C2 announced",
                                    "09:00:00.011 C2 10 0", "09:00:00.020 C1 3 1"));
  EXPECT_EQ(Text(L"account B1/A2 isn't connected"), day.Child(2, L"Text"));
}

TEST(GroupOrder, AGroupIsWholeAlsoWithoutLatencyAndWhateverThreadsRunFirst) {
  for (int seed = 0; seed < 20; ++seed) {
    CGroupOrderDay day(SendAt("09:00:00", {GroupOrder(kCall, "B", 1, "GROUPID=A,GROUPTYPE=1"),
                                           GroupOrder(kPut, "B", 1, "GROUPID=A,GROUPTYPE=1,QTY=0")}),
                       R"({"latency_ms": 0})", ", \"seed\": " + std::to_string(seed));
    EXPECT_THAT(day.seen, ElementsAre("09:00:00.001 C1 announced", "09:00:00.001 C2 announced",
                                      "09:00:00.002 C1 10 0", "09:00:00.002 C2 10 0"));
  }
}

// ---- Following the market ----

const std::string kChased = "CHASEPRICE=0|2|100|C|2";

TEST(GroupOrder, AChasedOrderGivesWayByATickAtATimeAndThenGoesToTheMarket) {
  CGroupOrderDay day(Quote("08:59:00", kCall, R"("price": 14, "bid": 10, "ask": 20)") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 1, kChased)}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.110 C1 0 0", "09:00:00.210 C1 0 0",
                                    "09:00:00.310 C1 0 0", "09:00:00.320 C1 3 1"));
  EXPECT_EQ(Price(14), day.Child(1, L"AvgPrice"));
  EXPECT_EQ(Value(), day.Child(1, L"Price"));
}

TEST(GroupOrder, EachStepIsReckonedFromTheBestPriceOfThen) {
  CGroupOrderDay day(Quote("08:59:00", kCall, R"("bid": 10, "ask": 20)") +
                     SendAt("09:00:00", {GroupOrder(kCall, "S", 2, kChased)}) +
                     Quote("09:00:00.050", kCall, R"("ask": 15)") +
                     Quote("09:00:00.150", kCall, R"("price": 14.5, "qty": 1)"));
  // 20, then 15 less a tick of 0.5: the trade reaches it. Then 15 less two ticks, then the market.
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.110 C1 0 0", "09:00:00.160 C1 6 1",
                                    "09:00:00.210 C1 6 1", "09:00:00.310 C1 6 1", "09:00:00.320 C1 3 2"));
  EXPECT_EQ(Price(14.5), day.Child(1, L"AvgPrice"));
}

TEST(GroupOrder, AChaseEndsWithTheFill) {
  CGroupOrderDay day(Quote("08:59:00", kCall, R"("bid": 10, "ask": 20)") +
                     SendAt("09:00:00", {GroupOrder(kCall, "B", 1, kChased)}) +
                     Quote("09:00:00.050", kCall, R"("price": 10, "qty": 1)"));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.060 C1 3 1"));
  EXPECT_EQ(Price(10), day.Child(1, L"Price"));
}

TEST(GroupOrder, AStepThatChangesNoPriceIsNotTold) {
  CGroupOrderDay day(Quote("08:59:00", kCall, R"("bid": 10, "ask": 10)") +
                         SendAt("09:00:00", {GroupOrder(kCall, "B", 1, kChased)}),
                     R"({"fill": "none"})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.310 C1 0 0"));
}

TEST(GroupOrder, WithoutAChaseTheOrderIsAtTheMarketAndTheTextIsNotRead) {
  CGroupOrderDay day(Quote("08:59:00", kCall, R"("price": 14, "bid": 10, "ask": 20)") +
                         SendAt("09:00:00", {GroupOrder(kCall, "B", 1, kChased),
                                             GroupOrder(kCall, "B", 1, "CHASEPRICE=anything")}),
                     R"({"chase": false})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.010 C2 announced",
                                    "09:00:00.020 C1 3 1", "09:00:00.020 C2 3 1"));
}

TEST(GroupOrder, AChaseTextThatIsNotUnderstoodIsRejected) {
  CGroupOrderDay day(SendAt("09:00:00", {GroupOrder(kCall, "B", 1, "CHASEPRICE=0|x|100|C|2")}));
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:00.011 C1 10 0"));
  EXPECT_EQ(Text(L"chase price '0|x|100|C|2' isn't understood"), day.Child(1, L"Text"));
}

// ---- What goes wrong ----

std::vector<std::string> SeenOfThree(const std::string& orders, const std::string& head = "") {
  CGroupOrderDay day(Quote("08:59:00", kCall, "\"price\": 12.5, \"qty\": 1") +
                         SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}) +
                         Quote("09:00:01", kCall, "\"price\": 12, \"qty\": 1") +
                         Quote("09:00:02", kCall, "\"price\": 12, \"qty\": 1"),
                     orders, head);
  return day.seen;
}

TEST(GroupOrder, AFailedChildEndsFromOutsideWithNothingFilled) {
  std::set<Value> states;
  for (int seed = 0; seed < 10; ++seed) {
    CGroupOrderDay day(
        Quote("08:59:00", kCall, "\"price\": 12.5") + SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}),
        R"({"failed_child": 1})", ", \"seed\": " + std::to_string(seed));
    ASSERT_EQ(2U, day.seen.size());
    EXPECT_THAT(day.seen[1], HasSubstr("09:00:00.020 C1"));
    EXPECT_EQ(Value(0), day.Child(1, L"ClientModify"));
    EXPECT_EQ(Value(0), day.Child(1, L"CumQty"));
    EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"Quantity"));
    states.insert(day.Child(1, L"ExecType"));
  }
  EXPECT_THAT(states, ElementsAre(Value(5), Value(8)));
}

TEST(GroupOrder, ALostChildIsNeverToldAndStillFills) {
  CGroupOrderDay day(
      Quote("08:59:00", kCall, "\"price\": 12.5") + SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}),
      R"({"lost_child": 1})");
  EXPECT_THAT(day.seen, IsEmpty());
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(GroupOrder, ALateChildIsAnnouncedWhenItHasEnded) {
  EXPECT_THAT(SeenOfThree(R"({"late_child": 1, "fill": "touch"})"), ElementsAre("09:00:00.020 C1 announced"));
}

TEST(GroupOrder, ALostEndIsNotTold) {
  EXPECT_THAT(SeenOfThree(R"({"lost_end": 1})"), ElementsAre("09:00:00.010 C1 announced"));
}

TEST(GroupOrder, WhatIsRepeatedIsAnnouncedTwiceAndUpdatedTwice) {
  EXPECT_THAT(SeenOfThree(R"({"repeat": 1})"),
              ElementsAre("09:00:00.010 C1 announced", "09:00:00.011 C1 announced", "09:00:00.020 C1 3 2",
                          "09:00:00.021 C1 3 2"));
}

TEST(GroupOrder, AnnouncementAndUpdatesComeLateButInTheirOrder) {
  bool isLate = false;
  for (int seed = 0; seed < 20; ++seed) {
    const std::vector<std::string> seen =
        SeenOfThree(R"({"late_ms": 100})", ", \"seed\": " + std::to_string(seed));
    ASSERT_EQ(2U, seen.size());
    EXPECT_THAT(seen[0], HasSubstr("announced"));
    EXPECT_LT(seen[0].substr(0, 12), seen[1].substr(0, 12));
    isLate |= seen[0].substr(0, 12) > "09:00:00.010";
  }
  EXPECT_TRUE(isLate);
}

TEST(GroupOrder, AnAnnouncementThatIsOvertakenShowsTheEndThatNobodyHeardOf) {
  bool isOvertaken = false;
  for (int seed = 0; seed < 20; ++seed) {
    CGroupOrderDay day(
        Quote("08:59:00", kCall, "\"price\": 12.5") + SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}),
        R"({"late_ms": 100, "out_of_order": true})", ", \"seed\": " + std::to_string(seed));
    EXPECT_EQ(Value(3), day.Child(1, L"ExecType"));
    isOvertaken |= day.seen.size() == 1;
  }
  EXPECT_TRUE(isOvertaken);
}

// ---- Lines that change a child ----

TEST(GroupOrder, ALineEndsAChildThatWorks) {
  CGroupOrderDay day(
      SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}) +
      Quote("09:00:01", kCall, "\"price\": 12, \"qty\": 1") +
      R"({"at": "09:00:01.005", "child": {"order": 1, "ExecType": 8, "ClientModify": 1, "Text": "by hand"}})"
      "\n" +
      Quote("09:00:02", kCall, "\"price\": 12, \"qty\": 5"));
  // What was filled before it is told first, and nothing is filled behind it.
  EXPECT_THAT(day.seen,
              ElementsAre("09:00:00.010 C1 announced", "09:00:01.010 C1 6 1", "09:00:01.011 C1 8 1"));
  EXPECT_EQ(Value(1), day.Child(1, L"ClientModify"));
  EXPECT_EQ(Value(0), day.Child(1, L"LeavesQty"));
  EXPECT_EQ(Text(L"by hand"), day.Child(1, L"Text"));
  EXPECT_EQ(Value(1), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(GroupOrder, ALineThatTellsNoEndOnlyChangesTheRecord) {
  CGroupOrderDay day(SendAt("09:00:00", {GroupOrder(kCall, "B", 2)}) +
                     R"({"at": "09:00:01", "child": {"order": 1, "ExecType": 1}}
)" + Quote("09:00:02", kCall, "\"price\": 12, \"qty\": 5") +
                     R"({"at": "09:00:03", "child": {"order": 1, "ExecType": 8}}
)");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 C1 announced", "09:00:01.000 C1 1 0", "09:00:02.010 C1 3 2",
                                    "09:00:03.000 C1 8 2"));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(GroupOrder, TheSameDayGivesTheSameTrace) {
  const auto trace = [] {
    CGroupOrderDay day(
        Quote("08:59:00", kCall, R"("price": 14, "bid": 10, "ask": 20)") +
            SendAt("09:00:00", {GroupOrder(kCall, "B", 3, kChased), GroupOrder(kPut, "S", 3)}) +
            Quote("09:00:00.100", kPut, "\"price\": 12, \"qty\": 2"),
        R"({"late_ms": 90, "out_of_order": true, "repeat": 0.5, "partial": 0.5})", ", \"seed\": 5");
    return day.day.trace.Text();
  };
  EXPECT_EQ(trace(), trace());
}

}  // namespace
}  // namespace iorder::testing

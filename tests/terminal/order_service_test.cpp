#include <gmock/gmock.h>

#include "terminal/order_report.h"
#include "tests/terminal/terminal_fixture.h"

/// The order service in a day: what the engine sends, and the reports that come of it.
namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kWorld =
    R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"quote": "ND.O.X", "mcode": 1}
)";

std::string Order(const std::string& rest) {
  return "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.X,SIDE=B,QTY=3," + rest +
         ",POSITIONEFFECT=0,USERKEY2=K@1";
}
const std::string kLimit = Order("PRICE=20000000000,ORDERTYPE=2,TIMEINFORCE=1");

std::string Send(const std::string& at, const std::string& what, const std::string& text) {
  return "{\"at\": \"" + at + "\", \"message\": {\"topic\": \"" + what + "\", \"text\": \"" + text + "\"}}\n";
}
std::string New(const std::string& at, const std::string& text) {
  return Send(at, "TRADE.NEWORDER", text);
}
std::string Cancel(const std::string& at, const std::string& reportId) {
  return Send(at, "TRADE.CANCELORDER", "REPORTID=" + reportId);
}

/// A day whose engine sends on what its messages say, and notes the reports.
class CServiceDay {
 public:
  CServiceDay(const std::string& lines, const std::string& orders)
      : day(kWorld + lines, R"(, "subscriptions": "open", "orders": )" + orders) {
    day.engine.onMessage = [this](const std::wstring& topic, const std::wstring& text, const Value&) {
      day.terminal->Events().Command(topic, 1, 1, text, {});
    };
    auto sink = std::make_shared<CRecordingSink>();
    sink->onUpdate = [this] { Note(); };
    day.Open(kOrderSet)->Advise(sink);
    day.Play();
    EXPECT_THAT(day.problems, IsEmpty());
    EXPECT_EQ(std::nullopt, day.terminal->Error());
  }

  Value Field(int32_t node, const wchar_t* name) {
    const Value handle = day.Open(kOrderSet)->GetValue(read_code::kNode, node);
    return day.terminal->GetWorld().bus.Resolve(Int32Or(handle, 0))->GetValue(read_code::kField, name);
  }

  CPlayedDay day;
  std::vector<std::string> seen;  ///< "TIME EXECTYPE FILLED" of the first node

 private:
  void Note() {
    seen.push_back(day.Clock() + " " + std::to_string(Int32Or(Field(0, L"ExecType"), -1)) + " " +
                   std::to_string(Int32Or(Field(0, L"CumQty"), -1)));
  }
};

TEST(OrderService, AReportHasAllThatTheOrderAndItsFillsSay) {
  CServiceDay day(New("09:00:00", kLimit) + R"({"at": "09:00:01", "quote": "ND.O.X", "price": 1, "qty": 2})"
                                            "\n",
                  R"({})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 0 0", "09:00:01.010 6 2"));
  EXPECT_EQ(Value(std::wstring(L"K@1")), day.Field(0, L"UserKey2"));
  EXPECT_EQ(Value(std::wstring(L"R1")), day.Field(0, L"LevelKey"));
  EXPECT_EQ(Value(std::wstring(L"ND.O.X")), day.Field(0, L"Symbol"));
  EXPECT_EQ(Value(std::wstring(L"B")), day.Field(0, L"Side"));
  EXPECT_EQ(Value(0), day.Field(0, L"PositionEffect"));
  EXPECT_EQ(Value(2), day.Field(0, L"OrderType"));
  EXPECT_EQ(Value(int64_t{20'000'000'000}), day.Field(0, L"Price"));
  EXPECT_EQ(Value(int64_t{20'000'000'000}), day.Field(0, L"AvgPrice"));
  EXPECT_EQ(Value(3), day.Field(0, L"SendQty"));
  EXPECT_EQ(Value(1), day.Field(0, L"LeavesQty"));
  EXPECT_EQ(Value(2), day.Field(0, L"RecFillQty"));
  EXPECT_EQ(Value(), day.Field(0, L"Text"));
}

TEST(OrderService, TheAveragePriceIsThatOfAllFills) {
  CServiceDay day(New("09:00:00", Order("ORDERTYPE=1,TIMEINFORCE=1")) +
                      R"({"at": "09:00:01", "quote": "ND.O.X", "price": 1, "qty": 1}
{"at": "09:00:02", "quote": "ND.O.X", "price": 1.5, "qty": 2}
)",
                  R"({})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 0 0", "09:00:01.010 6 1", "09:00:02.010 3 3"));
  EXPECT_EQ(Value(int64_t{13'333'333'333}), day.Field(0, L"AvgPrice"));
}

TEST(OrderService, ACancelForWhatDoesNotWorkIsNotAnswered) {
  CServiceDay day(New("09:00:00", kLimit) + Cancel("09:00:01", "R2") + Cancel("09:00:01", "R01") +
                      Cancel("09:00:01", "X1") + Cancel("09:00:01", "") + Cancel("09:00:02", "R1") +
                      Cancel("09:00:03", "R1"),
                  R"({})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 0 0", "09:00:02.010 8 0"));
  EXPECT_EQ(6U, day.day.terminal->Cancels().size());
}

TEST(OrderService, ACancelForARejectedOrderIsNotAnswered) {
  CServiceDay day(New("09:00:00", kLimit) + Cancel("09:00:01", "R1"), R"({"reject": 1})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 10 0"));
}

TEST(OrderService, ARejectSaysWhy) {
  const auto reason = [](const std::string& order) {
    CServiceDay day(New("09:00:00", order), "{}");
    EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 10 0"));
    EXPECT_EQ(Value(0), day.Field(0, L"LeavesQty"));
    return std::get<std::wstring>(day.Field(0, L"Text"));
  };
  EXPECT_EQ(L"account B1/A2 isn't connected",
            reason("BROKERID=B1,ACCOUNT=A2,SYMBOL=ND.O.X,SIDE=B,QTY=1,PRICE=1"));
  EXPECT_EQ(L"unknown symbol ND.O.Y", reason("BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.Y,SIDE=B,QTY=1,PRICE=1"));
  EXPECT_EQ(L"no price to reckon from", reason(Order("PRICESTRING=BID-1T,ORDERTYPE=2")));
  EXPECT_EQ(L"a limit order without a price", reason(Order("ORDERTYPE=2")));
}

TEST(OrderService, WithoutLatencyAnswersComeAtOnceOnTheBus) {
  CServiceDay day(New("09:00:00", kLimit) + R"({"at": "09:00:01", "quote": "ND.O.X", "price": 2, "qty": 9})"
                                            "\n",
                  R"({"latency_ms": 0})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.000 0 0", "09:00:01.000 3 3"));
}

TEST(OrderService, WhatIsNotFilledAtOnceOfAnImmediateOrderIsCancelledBehindTheFill) {
  CServiceDay day(R"({"at": "08:59:00", "quote": "ND.O.X", "ask": 2, "ask_qty": 1})"
                  "\n" +
                      New("09:00:00", Order("PRICE=20000000000,ORDERTYPE=2,TIMEINFORCE=2")),
                  R"({})");
  EXPECT_THAT(day.seen, ElementsAre("09:00:00.010 0 0", "09:00:00.020 6 1", "09:00:00.021 8 1"));
  EXPECT_EQ(Value(0), day.Field(0, L"LeavesQty"));
}

TEST(OrderService, TicksOfATableFillOrdersToo) {
  CDayFolder folder;
  folder.Write("t.csv", "at,symbol,price,qty\n09:00:01,ND.O.X,2,1\n09:00:01,ND.O.X,2,1\n");
  folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "orders": {}}}
{"ticks": "t.csv"}
)" + kWorld + New("09:00:00", kLimit));
  CPlayedDay day(std::move(folder), "a.day.jsonl");
  day.engine.onMessage = [&](const std::wstring& topic, const std::wstring& text, const Value&) {
    day.terminal->Events().Command(topic, 1, 1, text, {});
  };
  std::vector<std::string> times;
  auto sink = std::make_shared<CRecordingSink>();
  sink->onUpdate = [&] { times.push_back(day.Clock()); };
  day.Open(kOrderSet)->Advise(sink);
  day.Play();
  EXPECT_THAT(times, ElementsAre("09:00:00.010", "09:00:01.010", "09:00:01.011"));
}

}  // namespace
}  // namespace iorder::testing

#include <gmock/gmock.h>

#include "tests/terminal/terminal_fixture.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kAccounts =
    R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}, {"BrokerID": "B1", "Account": "A2", "ConnectStatus": 1}]})"
    "\n";
constexpr const wchar_t* kOrder =
    L"TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.X,SIDE=B,QTY=3,PRICE=125000000000,ORDERTYPE=2,POSITIONEFFECT="
    L"0,"
    L"TIMEINFORCE=1,STRATEGY=S1,USERKEY2=K@084500000";

/// A sink that also notes when it was called.
std::shared_ptr<CRecordingSink> Watch(CPlayedDay& day, const std::wstring& record,
                                      std::vector<std::string>& times) {
  auto sink = std::make_shared<CRecordingSink>();
  sink->onUpdate = [&day, &times] { times.push_back(day.Clock()); };
  day.Open(record)->Advise(sink);
  return sink;
}

/// What a text field of a record's node holds, "" if there is none.
std::wstring NodeText(CPlayedDay& day, const std::wstring& record, int32_t node, const std::wstring& field) {
  const Value handle = day.Open(record)->GetValue(read_code::kNode, node);
  const std::shared_ptr<IBusObject> object = day.terminal->GetWorld().bus.Resolve(Int32Or(handle, 0));
  const Value value = object != nullptr ? object->GetValue(read_code::kField, field) : Value();
  return std::holds_alternative<std::wstring>(value) ? std::get<std::wstring>(value) : L"";
}

Value NodeField(CPlayedDay& day, const std::wstring& record, int32_t node, const std::wstring& field) {
  const Value handle = day.Open(record)->GetValue(read_code::kNode, node);
  return day.terminal->GetWorld().bus.Resolve(Int32Or(handle, 0))->GetValue(read_code::kField, field);
}

// ---- Phases and time ----

TEST(DayPlayer, AutomaticPhasesStandAroundTheLines) {
  CPlayedDay day(R"({"record": "Holiday", "fields": {"A": "1"}}
{"at": "08:45:00", "command": {"Action": 1, "Price": 1.0}}
{"command": "second"}
)");
  std::vector<std::string> times;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    times.push_back(day.Clock());
    if (phase == 1) {
      EXPECT_EQ(Value(std::wstring(L"1")), day.Open(L"Holiday")->GetValue(read_code::kField, L"A"));
    }
  };
  day.Play();
  EXPECT_THAT(day.problems, IsEmpty());
  EXPECT_THAT(day.engine.calls, ElementsAre(L"phase 1 1", L"phase 1 2",
                                            L"TRADE.IntelligentOrder 0 0 {\"Action\":1,\"Price\":1.0}",
                                            L"TRADE.IntelligentOrder 0 0 second", L"phase 1 4"));
  EXPECT_THAT(times, ElementsAre("08:40:00.000", "08:40:00.000", "08:46:00.000"));
}

TEST(DayPlayer, ManualPhasesComeFromTheLinesAlone) {
  CPlayedDay day(R"({"phase": [1, 1]}
{"at": "09:00:00", "phase": [1, 3]}
)",
                 R"(, "phases": "manual")");
  day.Play();
  EXPECT_THAT(day.engine.calls, ElementsAre(L"phase 1 1", L"phase 1 3"));
  EXPECT_EQ("09:01:00.000", day.Clock());
}

TEST(DayPlayer, NothingIsToldToTheEngineOnceTheDayIsOver) {
  CPlayedDay day(R"({"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000"}]}
{"at": "13:50:00", "quote": "ND.O.TWF.TX.202403.C.18000", "price": 10}
{"command": "go"}
)",
                 R"(, "end": "13:50:01", "orders": {"latency_ms": 2000}, "subscriptions": "open")");
  day.engine.onMessage = [&](const std::wstring& topic, const std::wstring&, const Value&) {
    if (topic != L"TRADE.IntelligentOrder") return;
    day.terminal->Events().Command(
        L"TRADE.NEWORDER", 1, 2,
        L"SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=B,QTY=1,PRICE=0,ORDERTYPE=10,SYNTHETIC=1,STRATEGY=G", {});
  };
  size_t calls = 0;
  day.runtime->Run([&] {
    day.terminal->Play(day.engine);
    calls = day.engine.calls.size();
    // The engine waits for its threads as it goes: time passes, and its child order would be announced.
    day.runtime->Sleep(Milliseconds(5000));
  });
  EXPECT_EQ(L"phase 1 4", day.engine.calls.back());
  EXPECT_EQ(calls, day.engine.calls.size());
}

TEST(DayPlayer, TheClockStopsAtTheEndAndLaterLinesNeverHappen) {
  CPlayedDay day(R"({"at": "13:50:00", "command": "last"}
{"at": "13:50:01", "command": "never"}
)",
                 R"(, "end": "13:50:00")");
  day.Play();
  EXPECT_THAT(day.engine.calls,
              ElementsAre(L"phase 1 1", L"phase 1 2", L"TRADE.IntelligentOrder 0 0 last", L"phase 1 4"));
  EXPECT_EQ("13:50:00.000", day.Clock());
}

TEST(DayPlayer, AMessageCarriesItsNumbersAndItsValue) {
  CPlayedDay day(
      R"({"at": "09:00:00", "message": {"topic": "TRADE.OTO.MANAGER", "first": 1, "second": 2, "text": "t", "value": {"int64": 5}}}
{"message": {"topic": "TRADE.OTO.MANAGER", "value": {"handle": "ACCOUNTS"}}}
{"message": {"topic": "X"}}
)");
  day.Play();
  EXPECT_EQ(L"TRADE.OTO.MANAGER 1 2 t", day.engine.calls[2]);
  EXPECT_THAT(
      day.engine.values,
      ElementsAre(Value(int64_t{5}), Value(*day.terminal->Events().OpenRecord(L"ACCOUNTS")), Value()));
}

// ---- Records, quotes, ticks ----

TEST(DayPlayer, ARecordFiresOnceAllOfTheLineIsIn) {
  CPlayedDay day(
      R"({"at": "09:00:00", "record": "ACCOUNTS", "fields": {"A": 1}, "nodes": [{"name": "B1"}], "fire": true}
{"record": "ACCOUNTS", "fields": {"A": 2}, "fire": {"originator": 7, "payload": "p"}}
{"record": "ACCOUNTS", "fields": {"A": 3}, "replace": true}
{"record": "ACCOUNTS", "fields": {"A": 4}}
)");
  auto sink = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> record = day.Open(L"ACCOUNTS");
  record->Advise(sink);
  sink->onUpdate = [&] {
    EXPECT_EQ(L"bus", day.runtime->CurrentThreadName());
    EXPECT_EQ(Value(1), record->GetValue(read_code::kNode, -1));
  };
  day.Play();
  EXPECT_THAT(sink->events, ElementsAre(L"update 1", L"update 7 p", L"replace 2"));
  EXPECT_EQ(Value(4), record->GetValue(read_code::kField, L"A"));
}

TEST(DayPlayer, TickRowsLieBehindTheLinesOfTheSameTimeAndMergeInTheOrderOfTime) {
  CDayFolder folder;
  folder.Write("t.csv",
               "at,symbol,price\n08:45:00,ND.A,1\n08:45:01,ND.A,2\n08:45:01,ND.A,3\n08:45:03,ND.A,6\n");
  folder.Write("u.csv", "at,symbol,price\n08:45:01,ND.A,4\n08:45:02,ND.A,5\n");
  folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "subscriptions": "open"}}
{"ticks": "t.csv"}
{"ticks": "u.csv"}
{"at": "08:45:00", "quote": "ND.A", "price": 100}
{"at": "08:45:01", "quote": "ND.A", "price": 101}
)");
  CPlayedDay day(std::move(folder), "a.day.jsonl");
  std::vector<std::pair<std::string, int64_t>> seen;
  auto sink = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> quote = day.Open(L"ND.A");
  quote->Advise(sink);
  sink->onUpdate = [&] {
    EXPECT_EQ(L"bus", day.runtime->CurrentThreadName());
    seen.emplace_back(
        day.Clock().substr(6, 2),
        std::get<int64_t>(quote->GetValue(read_code::kNumber, quote_field::kPrice)) / 10'000'000'000);
  };
  day.Play();
  EXPECT_EQ(std::nullopt, day.terminal->Error());
  EXPECT_THAT(seen,
              ElementsAre(std::pair("00", 100), std::pair("00", 1), std::pair("01", 101), std::pair("01", 2),
                          std::pair("01", 3), std::pair("01", 4), std::pair("02", 5), std::pair("03", 6)));
  EXPECT_EQ("08:46:03.000", day.Clock());
  EXPECT_EQ(6U, day.terminal->RowsPlayed());
}

TEST(DayPlayer, WhatTheEngineWaitsForComesBeforeLinesAndRowsOfTheSameTime) {
  CDayFolder folder;
  folder.Write("t.csv", "at,symbol,price\n08:45:00,ND.A,1\n");
  folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "subscriptions": "open"}}
{"ticks": "t.csv"}
{"at": "08:45:00", "quote": "ND.A", "price": 2}
)");
  CPlayedDay day(std::move(folder), "a.day.jsonl");
  std::vector<std::string> order;
  auto sink = std::make_shared<CRecordingSink>();
  day.Open(L"ND.A")->Advise(sink);
  sink->onUpdate = [&] { order.push_back("quote"); };
  std::shared_ptr<IThread> thread;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) {
      thread = day.runtime->CreateThread(L"ProcessMsgLoop", [&] {
        day.runtime->Sleep(std::chrono::minutes(5));
        order.push_back("engine");
      });
      thread->Resume();
    }
  };
  day.Play();
  EXPECT_THAT(order, ElementsAre("engine", "quote", "quote"));
}

TEST(DayPlayer, ARowThatIsWrongEndsTheDayWithItsPlace) {
  CDayFolder folder;
  folder.Write("t.csv", "at,symbol,price\n08:45:00,ND.A,1\n08:46:00,ND.A,x\n");
  folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00"}}
{"ticks": "t.csv"}
{"at": "10:00:00", "command": "never"}
)");
  CPlayedDay day(std::move(folder), "a.day.jsonl");
  day.Play();
  ASSERT_TRUE(day.terminal->Error());
  EXPECT_THAT(*day.terminal->Error(), HasSubstr("t.csv:3: 'price': expected a decimal"));
  EXPECT_THAT(day.engine.calls, ElementsAre(L"phase 1 1", L"phase 1 2", L"phase 1 4"));
}

TEST(DayPlayer, ARowWithoutATimeGetsItFromTheClock) {
  CDayFolder folder;
  folder.Write("t.csv", "at,symbol,price\n08:45:01,ND.A,1\n");
  folder.Write("a.day.jsonl",
               "{\"day\": {\"start\": \"2024-03-04T08:40:00\", \"subscriptions\": \"open\"}}\n{\"ticks\": "
               "\"t.csv\"}\n");
  CPlayedDay day(std::move(folder), "a.day.jsonl");
  day.Play();
  const std::shared_ptr<IBusObject> quote = day.Open(L"ND.A");
  EXPECT_EQ(Value(int64_t{4501}), quote->GetValue(read_code::kNumber, quote_field::kTime));
  EXPECT_EQ(Value(int64_t{20240304}), quote->GetValue(read_code::kNumber, quote_field::kDate));
}

// ---- Subscriptions ----

TEST(DayPlayer, TheFirstDataComeOnTheBusThreadOnceTheDelayHasPassed) {
  CPlayedDay day(R"({"quote": "ND.A", "price": 5}
{"at": "08:50:00", "command": "subscribe"}
{"at": "08:50:01", "quote": "ND.A", "price": 6}
)",
                 R"(, "subscription_ms": 250)");
  std::vector<std::string> times;
  const std::shared_ptr<CRecordingSink> sink = Watch(day, L"ND.A", times);
  day.engine.onMessage = [&](const std::wstring&, const std::wstring&, const Value&) {
    day.terminal->Events().Subscribe(L"ND.A");
    EXPECT_EQ(Value(0), day.Open(L"ND.A")->GetValue(read_code::kField, L"MCODE"));
  };
  day.Play();
  EXPECT_THAT(times, ElementsAre("08:50:00.250", "08:50:01.000"));
  EXPECT_THAT(sink->events, ElementsAre(L"update 1", L"update 2"));
  EXPECT_THAT(day.trace.Text(),
              HasSubstr("\"at\": \"2024-03-04T08:50:00.250\", \"thread\": \"bus\", \"event\": \"update\", "
                        "\"record\": \"ND.A\", \"originator\": 1"));
}

TEST(DayPlayer, WithoutADelayTheFirstDataStillComeBehindTheEvent) {
  CPlayedDay day("{\"quote\": \"ND.A\", \"price\": 5}\n{\"at\": \"08:50:00\", \"command\": \"subscribe\"}\n");
  std::vector<std::string> times;
  Watch(day, L"ND.A", times);
  day.engine.onMessage = [&](const std::wstring&, const std::wstring&, const Value&) {
    day.terminal->Events().Subscribe(L"ND.A");
    EXPECT_THAT(times, IsEmpty());
  };
  day.Play();
  EXPECT_THAT(times, ElementsAre("08:50:00.000"));
}

// ---- Accounts ----

TEST(DayPlayer, AccountsBeforePhaseTwoAreAnnouncedRightAfterIt) {
  CPlayedDay day(std::string(kAccounts) + "{\"at\": \"09:00:00\", \"accounts\": []}\n");
  std::vector<std::string> times;
  const std::shared_ptr<CRecordingSink> sink = Watch(day, L"ACCOUNTS", times);
  day.engine.onPhase = [&](int32_t, int32_t phase) { times.push_back("phase " + std::to_string(phase)); };
  sink->onUpdate = [&] {
    times.push_back("accounts");
    const std::shared_ptr<IBusObject> record = day.Open(L"ACCOUNTS");
    if (times.size() == 3) {
      EXPECT_EQ(Value(std::wstring(L"BNB1")), record->GetValue(read_code::kNames, kNodeNamesSelector));
      const auto node =
          day.terminal->GetWorld().bus.Resolve(Int32Or(record->GetValue(read_code::kNodeByName, L"B1"), 0));
      EXPECT_EQ(Value(2), node->GetValue(read_code::kItem, -1));
      const auto item = day.terminal->GetWorld().bus.Resolve(Int32Or(node->GetValue(read_code::kItem, 1), 0));
      EXPECT_EQ(Value(std::wstring(L"A2")), item->GetValue(read_code::kField, L"Account"));
      EXPECT_EQ(Value(1), item->GetValue(read_code::kField, L"ConnectStatus"));
    } else {
      EXPECT_EQ(Value(0), record->GetValue(read_code::kNode, -1));
    }
  };
  day.Play();
  EXPECT_THAT(times, ElementsAre("phase 1", "phase 2", "accounts", "accounts", "phase 4"));
}

// ---- Orders ----

/// The engine sends one order at each command.
void SendOrders(CPlayedDay& day, const std::wstring& order = kOrder) {
  day.engine.onMessage = [&day, order](const std::wstring& topic, const std::wstring&, const Value&) {
    if (topic == L"TRADE.IntelligentOrder") {
      day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, order, {});
    }
  };
}

TEST(DayPlayer, OrdersAndCancelsAreListedWithWhatIsAgainstThem) {
  CPlayedDay day(std::string(kAccounts) + "{\"quote\": \"ND.O.X\", \"price\": 1}\n");
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 4) {
      IHostEvents& events = day.terminal->Events();
      events.Command(L"TRADE.NEWORDER", 1, 2, kOrder, {});
      events.Command(L"TRADE.NEWORDER", 1, 2, L"BROKERID=B1,ACCOUNT=A2,SYMBOL=ND.O.X", {});
      events.Command(L"TRADE.NEWORDER", 1, 2, L"BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.Y", {});
      events.Command(L"TRADE.CANCELORDER", 1, 1, L"REPORTID=R1", {});
    }
  };
  day.Play();
  const std::vector<SentOrderPtr> orders = day.terminal->Orders();
  ASSERT_EQ(3U, orders.size());
  EXPECT_EQ(1, orders[0]->number);
  EXPECT_EQ(L"3", OrderField(orders[0]->fields, L"QTY"));
  EXPECT_EQ(L"", orders[0]->complaint);
  EXPECT_EQ(L"account B1/A2 isn't connected", orders[1]->complaint);
  EXPECT_EQ(L"unknown symbol ND.O.Y", orders[2]->complaint);
  ASSERT_EQ(1U, day.terminal->Cancels().size());
  EXPECT_EQ(L"R1", day.terminal->Cancels()[0].reportId);
}

TEST(DayPlayer, AReportTakesItsFieldsFromTheOrderAndTheLine) {
  CPlayedDay day(R"({"at": "09:00:00", "command": "go"}
{"at": "09:01:00", "report": {"order": 1, "ExecType": 0}}
{"at": "09:02:00", "report": {"order": 1, "ExecType": 6, "CumQty": 1, "AvgPrice": 12.5}}
{"at": "09:03:00", "report": {"order": 1, "CumQty": 2, "RecFillQty": 0, "payload": "X"}}
)");
  SendOrders(day);
  auto sink = std::make_shared<CRecordingSink>();
  day.Open(L"TRADE.ORDERSET")->Advise(sink);
  std::vector<Value> leaves;
  std::vector<Value> fills;
  std::vector<Value> averages;
  sink->onUpdate = [&] {
    leaves.push_back(NodeField(day, L"TRADE.ORDERSET", 0, L"LeavesQty"));
    fills.push_back(NodeField(day, L"TRADE.ORDERSET", 0, L"RecFillQty"));
    averages.push_back(NodeField(day, L"TRADE.ORDERSET", 0, L"AvgPrice"));
  };
  day.Play();
  EXPECT_THAT(sink->events, ElementsAre(L"update 1 BN0=[]", L"update 2 BN0=[]", L"update 3 X"));
  EXPECT_THAT(leaves, ElementsAre(Value(3), Value(2), Value(1)));
  EXPECT_THAT(fills, ElementsAre(Value(0), Value(1), Value(0)));
  EXPECT_THAT(averages,
              ElementsAre(Value(), Value(int64_t{125'000'000'000}), Value(int64_t{125'000'000'000})));
  EXPECT_EQ(L"K@084500000", NodeText(day, L"TRADE.ORDERSET", 0, L"UserKey2"));
  EXPECT_EQ(L"ND.O.X", NodeText(day, L"TRADE.ORDERSET", 0, L"Symbol"));
  EXPECT_EQ(L"B", NodeText(day, L"TRADE.ORDERSET", 0, L"Side"));
  EXPECT_EQ(L"R1", NodeText(day, L"TRADE.ORDERSET", 0, L"LevelKey"));
  EXPECT_EQ(Value(0), NodeField(day, L"TRADE.ORDERSET", 0, L"PositionEffect"));
  EXPECT_EQ(Value(2), NodeField(day, L"TRADE.ORDERSET", 0, L"OrderType"));
  EXPECT_EQ(Value(int64_t{125'000'000'000}), NodeField(day, L"TRADE.ORDERSET", 0, L"Price"));
  EXPECT_EQ(Value(3), NodeField(day, L"TRADE.ORDERSET", 0, L"SendQty"));
  EXPECT_EQ(Value(6), NodeField(day, L"TRADE.ORDERSET", 0, L"ExecType"));
}

TEST(DayPlayer, AReportMayNameItsNodeAndAPriceStringLeavesThePriceOut) {
  CPlayedDay day(R"({"at": "09:00:00", "command": "go"}
{"at": "09:01:00", "report": {"order": 1, "ExecType": 0, "node": 2, "LevelKey": "X7"}}
)");
  SendOrders(day, L"SYMBOL=ND.O.X,SIDE=S,QTY=1,PRICESTRING=BID-3T,ORDERTYPE=2,POSITIONEFFECT=1,USERKEY2=K@1");
  auto sink = std::make_shared<CRecordingSink>();
  day.Open(L"TRADE.ORDERSET")->Advise(sink);
  day.Play();
  EXPECT_THAT(sink->events, ElementsAre(L"update 1 BN2=[]"));
  EXPECT_EQ(L"X7", NodeText(day, L"TRADE.ORDERSET", 2, L"LevelKey"));
  EXPECT_EQ(Value(), NodeField(day, L"TRADE.ORDERSET", 2, L"Price"));
  EXPECT_EQ(Value(3), day.Open(L"TRADE.ORDERSET")->GetValue(read_code::kNode, -1));
}

TEST(DayPlayer, AReportOnAnOrderThatWasNeverSentEndsTheDayWithItsPlace) {
  CPlayedDay day("{\"at\": \"09:01:00\", \"report\": {\"order\": 1}}\n");
  day.Play();
  ASSERT_TRUE(day.terminal->Error());
  EXPECT_THAT(*day.terminal->Error(),
              HasSubstr("a.day.jsonl:2: there is no order 1 by then; the engine has sent 0"));
}

TEST(DayPlayer, AChildIsAnnouncedOnceAndUpdatedFromThenOn) {
  CPlayedDay day(R"({"at": "09:00:00", "command": "go"}
{"at": "09:01:00", "child": {"order": 1, "ExecType": 0}}
{"at": "09:02:00", "child": {"order": 1, "ExecType": 3}}
{"at": "09:03:00", "child": {"order": 1, "announce": true, "topic": "TRADE.HOT.MONTH"}}
{"at": "09:04:00", "child": {"order": 1, "LevelKey": "other", "Strategy": "S9", "announce": false}}
{"at": "09:05:00", "child": {"order": 1, "LevelKey": "other", "ExecType": 1}}
)");
  std::vector<std::wstring> announced;
  auto sink = std::make_shared<CRecordingSink>();
  std::shared_ptr<IBusObject> child;
  day.engine.onMessage = [&](const std::wstring& topic, const std::wstring&, const Value& value) {
    if (topic == L"TRADE.IntelligentOrder") {
      day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, kOrder, {});
      return;
    }
    announced.push_back(topic);
    const std::shared_ptr<IBusObject> object = day.terminal->GetWorld().bus.Resolve(Int32Or(value, 0));
    EXPECT_TRUE(child == nullptr || child == object);
    if (child == nullptr) {
      child = object;
      child->Advise(sink);
    }
  };
  day.Play();
  EXPECT_EQ(std::nullopt, day.terminal->Error());
  EXPECT_THAT(announced, ElementsAre(L"TRADE.OTO.MANAGER", L"TRADE.HOT.MONTH"));
  EXPECT_THAT(sink->events, ElementsAre(L"update 1"));
  EXPECT_EQ(Value(std::wstring(L"S1")), child->GetValue(read_code::kField, L"Strategy"));
  EXPECT_EQ(Value(std::wstring(L"C1")), child->GetValue(read_code::kField, L"LevelKey"));
  EXPECT_EQ(Value(3), child->GetValue(read_code::kField, L"ExecType"));
}

TEST(DayPlayer, APositionReplacesTheItemsOfItsStrategy) {
  CPlayedDay day(
      R"({"position": {"strategy": "S1", "items": [{"Symbol": "ND.O.X", "Quantity": 3, "Delta": {"scaled": "12.5"}}, {"Symbol": "ND.O.Y"}]}}
{"position": {"strategy": "S2", "items": [{}]}}
{"at": "09:00:00", "position": {"strategy": "S1", "items": [{"Symbol": "ND.O.Z"}]}}
{"at": "09:01:00", "position": {"strategy": "S1", "items": []}}
{"at": "09:02:00", "position": {"strategy": "S1", "items": null}}
)");
  const std::shared_ptr<IBusObject> record = day.Open(L"STRATEGY.POSITION");
  IRecordBus& bus = day.terminal->GetWorld().bus;
  std::vector<std::string> seen;
  const auto look = [&] {
    const auto node = bus.Resolve(Int32Or(record->GetValue(read_code::kNodeByName, L"S1"), 0));
    if (node == nullptr) {
      seen.push_back("none");
      return;
    }
    const int32_t count = Int32Or(node->GetValue(read_code::kItem, -1), -1);
    const auto item = bus.Resolve(Int32Or(node->GetValue(read_code::kItem, 0), 0));
    seen.push_back(std::to_string(count) + (item != nullptr && item->GetValue(read_code::kField, L"Delta") ==
                                                                   Value(int64_t{125'000'000'000})
                                                ? " with Delta"
                                                : ""));
  };
  std::shared_ptr<IThread> thread;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) {
      thread = day.runtime->CreateThread(L"look", [&] {
        look();
        for (const int minutes : {21, 1, 1}) {
          day.runtime->Sleep(std::chrono::minutes(minutes) - Milliseconds(minutes == 21 ? 30000 : 0));
          look();
        }
      });
      thread->Resume();
    }
  };
  day.Play();
  EXPECT_THAT(seen, ElementsAre("2 with Delta", "1", "0", "none"));
  EXPECT_EQ(Value(1), record->GetValue(read_code::kNode, -1));
}

// ---- Requests ----

TEST(DayPlayer, ARequestLoadsFillsInAndReplies) {
  CPlayedDay day(
      R"({"request": {"product": "ND.O.TWF.TX", "document": {"a": [1.5, "x"]}, "reply": "TRUE", "load": {"record": "Loaded", "fields": {"F": 1}, "fire": true}}}
{"request": {"product": "number", "reply": 5}}
)");
  Value replies[4];
  AnswerDocument first;
  AnswerDocument second;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase != 2) {
      return;
    }
    IHostEvents& events = day.terminal->Events();
    const int64_t reference = day.runtime->MakeReference(&first);
    replies[0] = events.Command(L"GLACETTE.REQUEST", 1, 64, L"ND.O.TWF.TX", reference);
    EXPECT_NE(nullptr, day.Open(L"Loaded"));
    const int64_t other = day.runtime->MakeReference(&second);
    replies[1] = events.Command(L"GLACETTE.REQUEST", 1, 0, L"ND.O.TWF.TX", static_cast<int32_t>(other));
    replies[2] = events.Command(L"GLACETTE.REQUEST", 1, 64, L"number", other);
    replies[3] = events.Command(L"GLACETTE.REQUEST", 1, 64, L"unknown", other);
    day.runtime->ReleaseReference(reference);
    day.runtime->ReleaseReference(other);
  };
  day.Play();
  EXPECT_THAT(replies,
              ElementsAre(Value(std::wstring(L"TRUE")), Value(std::wstring(L"TRUE")), Value(5), Value()));
  ASSERT_TRUE(first.IsObject());
  EXPECT_EQ(1.5, first["a"][0].GetDouble());
  EXPECT_TRUE(second.IsNull());
  EXPECT_THAT(day.trace.Text(),
              HasSubstr("\"thread\": \"bus\", \"event\": \"update\", \"record\": \"Loaded\""));
}

// ---- Faults ----

TEST(DayPlayer, ASinkThatFailsStillShowsInTheTrace) {
  CPlayedDay day(R"({"fault": {"sink": "fail"}}
{"at": "09:00:00", "fault": {"sink": "none"}}
{"command": "again"}
)");
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) {
      IHostEvents& events = day.terminal->Events();
      EXPECT_EQ(std::nullopt, events.Advertise(L"T", 1));
      EXPECT_EQ(std::nullopt, events.Subscribe(L"ND.A"));
      EXPECT_EQ(std::nullopt, events.OpenRecord(L"ACCOUNTS"));
      EXPECT_EQ(Value(), events.Command(L"TRADE.NEWORDER", 1, 2, kOrder, {}));
    }
  };
  day.engine.onMessage = [&](const std::wstring&, const std::wstring&, const Value&) {
    EXPECT_NE(std::nullopt, day.terminal->Events().OpenRecord(L"ACCOUNTS"));
  };
  day.Play();
  EXPECT_THAT(day.trace.Text(), HasSubstr("\"event\": \"command\", \"topic\": \"TRADE.NEWORDER\""));
  EXPECT_THAT(day.terminal->Orders(), IsEmpty());
}

TEST(DayPlayer, FaultsOfThreadsAndTimersReachTheRuntime) {
  CPlayedDay day(R"({"fault": {"thread": "fail", "times": 2}}
{"fault": {"timer": 100, "late_ms": 30000}}
{"fault": {"stuck": "OrderWatchThread", "ms": 5000}}
)");
  std::vector<std::string> seen;
  std::unique_ptr<IWaitableTimer> timer;
  std::shared_ptr<IThread> thread;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase != 1) {
      return;
    }
    EXPECT_EQ(nullptr, day.runtime->CreateThread(L"a", [] {}));
    EXPECT_EQ(nullptr, day.runtime->CreateThread(L"b", [] {}));
    timer = day.runtime->CreateWaitableTimer(L"1.100");
    timer->Arm(std::chrono::seconds(1), Milliseconds(0));
    thread = day.runtime->CreateThread(L"OrderWatchThread", [&] {
      day.runtime->Sleep(Milliseconds(200));
      seen.push_back(day.Clock());
      day.runtime->Wait(*timer, std::nullopt);
      seen.push_back(day.Clock());
    });
    thread->Resume();
  };
  day.Play();
  EXPECT_THAT(seen, ElementsAre("08:40:05.000", "08:40:31.000"));
}

TEST(DayPlayer, ADroppedAccountIsShownAsNotConnectedUntilTheFaultEnds) {
  CPlayedDay day(std::string(kAccounts) + R"({"at": "09:00:00", "fault": {"account": "B1_A1", "drop": true}}
{"at": "09:01:00", "fault": {"account": "B1_A1", "drop": "none"}}
)");
  std::vector<Value> statuses;
  auto sink = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> record = day.Open(L"ACCOUNTS");
  IRecordBus& bus = day.terminal->GetWorld().bus;
  record->Advise(sink);
  sink->onUpdate = [&] {
    const auto node = bus.Resolve(Int32Or(record->GetValue(read_code::kNode, 0), 0));
    const auto item = bus.Resolve(Int32Or(node->GetValue(read_code::kItemByName, L"A1"), 0));
    statuses.push_back(item->GetValue(read_code::kField, L"ConnectStatus"));
  };
  day.Play();
  EXPECT_THAT(statuses, ElementsAre(Value(2), Value(0), Value(2)));
}

// ---- The world ----

TEST(DayPlayer, SettingsAreReadThroughTheHostsFolder) {
  CPlayedDay day(R"({"settings": "ComShared/SystemSettings.ini", "text": "[SYSTEM]\nSystemName=X\n"})"
                 "\n");
  std::wstring name;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) {
      const World& world = day.terminal->GetWorld();
      const std::wstring folder = world.hostExecutable.substr(0, world.hostExecutable.rfind(L'\\') + 1);
      name = world.settings.ReadString(folder + L"ComShared\\SystemSettings.ini", L"SYSTEM", L"SystemName",
                                       L"", 256);
    }
  };
  day.Play();
  EXPECT_EQ(L"X", name);
}

TEST(DayPlayer, TheTraceShowsTheEngineAndWithInputsTheTerminalToo) {
  CPlayedDay day(R"({"at": "09:00:00", "command": "x"})"
                 "\n");
  CTraceText withoutInputs;
  day.terminal->AddListener(withoutInputs);
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) {
      day.terminal->Events().WriteLog(L"line");
    }
  };
  day.Play();
  EXPECT_EQ(
      "{\"at\": \"2024-03-04T08:40:00.000\", \"thread\": \"host\", \"event\": \"log\", \"text\": \"line\"}\n",
      withoutInputs.Text());
  EXPECT_THAT(day.trace.Text(), HasSubstr("\"event\": \"phase\", \"phase\": [1, 2]"));
  EXPECT_THAT(day.trace.Text(),
              HasSubstr("\"event\": \"message\", \"topic\": \"TRADE.IntelligentOrder\", \"first\": 0, "
                        "\"second\": 0, \"text\": \"x\", \"value\": null"));
}

TEST(DayPlayer, TheSameDayWithTheSameSeedGivesTheSameTrace) {
  CDayFolder folder;
  std::string rows = "at,symbol,price\n";
  for (int i = 0; i < 200; ++i) {
    rows +=
        "08:45:0" + std::to_string(i / 40) + ",ND." + std::to_string(i % 7) + "," + std::to_string(i) + "\n";
  }
  const std::string csv = folder.Write("t.csv", rows);
  std::string lines = "{\"ticks\": \"" + csv + "\"}\n" + kAccounts;
  for (int i = 0; i < 5; ++i) {
    lines += "{\"at\": \"08:45:0" + std::to_string(i) + "\", \"command\": \"" + std::to_string(i) + "\"}\n";
  }
  for (const char* const seed : {"0", "1", "2"}) {
    std::vector<std::string> traces;
    for (int run = 0; run < 2; ++run) {
      CPlayedDay day(lines, std::string(", \"seed\": ") + seed);
      day.engine.onMessage = [&](const std::wstring&, const std::wstring& text, const Value&) {
        day.terminal->Events().Subscribe(L"ND." + text);
      };
      day.Play();
      EXPECT_THAT(day.problems, IsEmpty());
      traces.push_back(day.trace.Text());
    }
    EXPECT_THAT(traces[0], Not(IsEmpty()));
    EXPECT_EQ(traces[0], traces[1]) << "seed " << seed;
  }
}

}  // namespace
}  // namespace iorder::testing

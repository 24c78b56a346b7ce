#include "terminal/record_bus.h"

#include <gmock/gmock.h>

#include "platform/virtual/virtual_runtime.h"
#include "tests/terminal/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordBus : public ::testing::Test {
 protected:
  explicit RecordBus(bool needsSubscription = false)
      : m_runtime(VirtualRuntimeOptions()), m_bus(m_runtime, needsSubscription) {}

  std::shared_ptr<IBusObject> Open(const std::wstring& name) { return m_bus.Resolve(m_bus.Open(name)); }
  static Value Text(const wchar_t* text) { return std::wstring(text); }
  static FieldValue Is(Value value) { return {{}, std::move(value), {}}; }
  static RecordChange Named(const std::wstring& name) {
    RecordChange change;
    change.name = name;
    return change;
  }
  void SetField(const std::wstring& record, const std::wstring& field, Value value) {
    RecordChange change = Named(record);
    change.fields = {{field, Is(std::move(value))}};
    m_bus.Apply(change);
  }
  static std::shared_ptr<IBusObject> Child(CEmbeddedBus& bus, IBusObject& object, int32_t code,
                                           int32_t index) {
    return bus.Resolve(Int32Or(object.GetValue(code, index), 0));
  }

  CVirtualRuntime m_runtime;
  CEmbeddedBus m_bus;
};

class SubscribedRecordBus : public RecordBus {
 protected:
  SubscribedRecordBus() : RecordBus(true) {}
};

TEST_F(RecordBus, StandingRecordsAndSymbolsAlwaysOpenOthersOnceTheyAreMade) {
  for (const wchar_t* const name :
       {L"PERMISSIONS.General", L"TRADE.EXTENDORDER.SETUP", L"STRATEGY.POSITION", L"TRADE.ORDERSET",
        L"Security.Info", L"NordoSystemTime", L"ACCOUNTS", L"ND.F.TWF.TX.202403"}) {
    EXPECT_NE(0, m_bus.Open(name)) << name;
  }
  EXPECT_EQ(0, m_bus.Open(L"Holiday"));
  SetField(L"Holiday", L"20240101", Text(L"1"));
  EXPECT_EQ(Text(L"1"), Open(L"Holiday")->GetValue(read_code::kField, L"20240101"));
}

TEST_F(RecordBus, AWatchIsCalledBehindEachChangeAndBeforeItIsFired) {
  std::vector<std::string> seen;
  m_bus.Watch(L"R", [&] { seen.push_back("watch " + std::to_string(m_bus.Fields(L"R").size())); });
  m_bus.Watch(L"R", [&] { seen.push_back("second"); });
  SetField(L"Other", L"A", 1);
  SetField(L"R", L"A", 1);
  const auto sink = std::make_shared<CRecordingSink>();
  sink->onUpdate = [&] { seen.push_back("update"); };
  Open(L"R")->Advise(sink);
  RecordChange change = Named(L"R");
  change.fields = {{L"B", Is(2)}};
  m_bus.Change(m_bus.Quote(L"R"), change, {});
  change.fields = {{L"C", Is(3)}};
  m_bus.PlayQuote(m_bus.Quote(L"R"), {}, &change, {}, {});
  EXPECT_THAT(seen, ElementsAre("watch 1", "watch 2", "update", "watch 4", "update"));
}

TEST_F(RecordBus, ARecordThatIsThereMayBeWatchedAndIsNotMadeByIt) {
  int calls = 0;
  m_bus.Watch(L"R", [&] { ++calls; });
  EXPECT_EQ(0, m_bus.Open(L"R"));
  SetField(L"S", L"A", 1);
  m_bus.Watch(L"S", [&] { ++calls; });
  EXPECT_EQ(0, calls);
  SetField(L"S", L"A", 2);
  EXPECT_EQ(1, calls);
}

TEST_F(RecordBus, RecordsKeepTheirHandleWhateverChanges) {
  SetField(L"R", L"A", 1);
  const int32_t handle = m_bus.Open(L"R");
  const std::shared_ptr<IBusObject> held = m_bus.Resolve(handle);
  RecordChange change = Named(L"R");
  change.clear = true;
  change.fields = {{L"B", Is(2)}};
  m_bus.Apply(change);
  EXPECT_EQ(handle, m_bus.Open(L"R"));
  EXPECT_EQ(Value(), held->GetValue(read_code::kField, L"A"));
  EXPECT_EQ(Value(2), held->GetValue(read_code::kField, L"B"));
}

TEST_F(RecordBus, SubRecordsKeepTheirHandleAndComeBackUnderTheirName) {
  RecordChange change = Named(L"R");
  change.items = {Named(L"a"), Named(L"b")};
  m_bus.Apply(change);
  const std::shared_ptr<IBusObject> record = Open(L"R");
  const Value handle = record->GetValue(read_code::kItemByName, L"a");
  change.items[0].fields = {{L"F", Is(1)}};
  change.items[1].remove = true;
  m_bus.Apply(change);
  EXPECT_EQ(handle, record->GetValue(read_code::kItem, 0));
  EXPECT_EQ(Value(1), record->GetValue(read_code::kItem, -1));

  change.clear = true;
  change.items = {Named(L"b"), Named(L"a")};
  m_bus.Apply(change);
  EXPECT_EQ(handle, record->GetValue(read_code::kItem, 1));
  EXPECT_EQ(Value(), Child(m_bus, *record, read_code::kItem, 1)->GetValue(read_code::kField, L"F"));
}

TEST_F(RecordBus, ReadCodesAnswerFieldsItemsAndNodes) {
  RecordChange change = Named(L"R");
  change.fields = {{L"Text", Is(Text(L"x"))}, {L"Int", Is(7)}};
  change.numbers = {{3, Is(int64_t{30})}, {4, Is(5)}, {5, Is(Text(L"t"))}};
  change.items = {Named(L"i"), Named(L"")};
  change.nodes = {Named(L"n1"), Named(L"n2")};
  m_bus.Apply(change);
  const std::shared_ptr<IBusObject> record = Open(L"R");
  EXPECT_EQ(Value(int64_t{30}), record->GetValue(read_code::kNumber, 3));
  EXPECT_EQ(Value(5), record->GetValue(read_code::kNumber, 4));
  EXPECT_EQ(Text(L"t"), record->GetValue(read_code::kNumber, 5));
  EXPECT_EQ(Value(), record->GetValue(read_code::kNumber, 6));
  EXPECT_EQ(Value(2), record->GetValue(read_code::kItem, -1));
  EXPECT_EQ(Value(2), record->GetValue(read_code::kNode, -1));
  EXPECT_EQ(Value(), record->GetValue(read_code::kItem, 2));
  EXPECT_EQ(Value(), record->GetValue(read_code::kNode, -2));
  EXPECT_EQ(record->GetValue(read_code::kNode, 1), record->GetValue(read_code::kNodeByName, L"n2"));
  EXPECT_EQ(Value(), record->GetValue(read_code::kNodeByName, L"n3"));
  EXPECT_EQ(Text(L"BNn1;BNn2"), record->GetValue(read_code::kNames, kNodeNamesSelector));
  EXPECT_EQ(Value(), record->GetValue(99, 1));
}

TEST_F(RecordBus, GetEnumAnswersThe32BitFieldOfThatNameAndLeavesTheRest) {
  SetField(L"R", L"Int", 1);
  SetField(L"R", L"Long", int64_t{2});
  int32_t slot = -5;
  Open(L"R")->GetEnum(L"Long", slot);
  Open(L"R")->GetEnum(L"None", slot);
  EXPECT_EQ(-5, slot);
  Open(L"R")->GetEnum(L"Int", slot);
  EXPECT_EQ(1, slot);
}

TEST_F(RecordBus, ANullRemovesAFieldAndAHandleNamesARecord) {
  SetField(L"R", L"A", 1);
  RecordChange change = Named(L"R");
  change.fields = {{L"A", {FieldValue::Kind::kRemove, {}, {}}},
                   {L"H", {FieldValue::Kind::kHandle, {}, L"ACCOUNTS"}},
                   {L"H64", {FieldValue::Kind::kHandle64, {}, L"ACCOUNTS"}},
                   {L"None", {FieldValue::Kind::kHandle, {}, L"Holiday"}}};
  m_bus.Apply(change);
  const std::shared_ptr<IBusObject> record = Open(L"R");
  EXPECT_EQ(Value(), record->GetValue(read_code::kField, L"A"));
  EXPECT_EQ(Value(m_bus.Open(L"ACCOUNTS")), record->GetValue(read_code::kField, L"H"));
  EXPECT_EQ(Value(int64_t{m_bus.Open(L"ACCOUNTS")}), record->GetValue(read_code::kField, L"H64"));
  EXPECT_EQ(Value(0), record->GetValue(read_code::kField, L"None"));
}

TEST_F(RecordBus, UpdatesCarryTheRunningNumberOrTheOriginatorThatIsNamed) {
  const auto sink = std::make_shared<CRecordingSink>();
  Open(L"ACCOUNTS")->Advise(sink);
  m_bus.Fire(L"ACCOUNTS", {});
  m_bus.Fire(L"ACCOUNTS", {false, 7, L"payload"});
  m_bus.Fire(L"ACCOUNTS", {true, std::nullopt, {}});
  m_bus.Fire(L"NordoSystemTime", {});
  m_bus.Fire(L"ACCOUNTS", {});
  EXPECT_THAT(sink->events, ElementsAre(L"update 1", L"update 7 payload", L"replace 2", L"update 4"));
}

TEST_F(RecordBus, ASinkThatWasDisconnectedHearsNothingMore) {
  const auto first = std::make_shared<CRecordingSink>();
  const auto second = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> record = Open(L"ACCOUNTS");
  const int32_t cookie = record->Advise(first);
  EXPECT_NE(0, cookie);
  record->Advise(second);
  record->Unadvise(cookie);
  m_bus.Fire(L"ACCOUNTS", {});
  EXPECT_THAT(first->events, IsEmpty());
  EXPECT_THAT(second->events, ElementsAre(L"update 1"));
  EXPECT_EQ(1, first.use_count());
}

TEST_F(RecordBus, ASinkMayUseTheBusAndDisconnectItself) {
  const auto sink = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> record = Open(L"ACCOUNTS");
  const int32_t cookie = record->Advise(sink);
  sink->onUpdate = [&] {
    EXPECT_EQ(Value(0), record->GetValue(read_code::kItem, -1));
    record->Unadvise(cookie);
  };
  m_bus.Fire(L"ACCOUNTS", {});
  m_bus.Fire(L"ACCOUNTS", {});
  EXPECT_THAT(sink->events, ElementsAre(L"update 1"));
}

TEST_F(RecordBus, ACopyHoldsAllFieldsOfItsSourceAndNothingElse) {
  RecordChange change = Named(L"R");
  change.fields = {
      {L"A;=:", Is(Text(L"x:1;\"y"))}, {L"B", Is(-7)}, {L"C", Is(int64_t{INT64_MIN})}, {L"D", Is(Text(L""))}};
  change.numbers = {{3, Is(int64_t{-30})}, {4, Is(5)}};
  m_bus.Apply(change);
  const std::shared_ptr<IBusObject> source = Open(L"R");
  const Value text = source->GetValue(read_code::kNames, kCopySelector);
  ASSERT_TRUE(std::holds_alternative<std::wstring>(text));
  const Value content = source->GetValue(read_code::kContent, std::get<std::wstring>(text));

  const std::shared_ptr<IBusObject> target = m_bus.CreateObject();
  const int32_t token = target->BeginWrite();
  target->WriteValue(token, write_code::kContent, {}, content);
  target->WriteValue(token, write_code::kClear, 255, {});
  EXPECT_EQ(Value(), target->GetValue(read_code::kField, L"B"));
  target->WriteValue(token, write_code::kContent, {}, content);
  target->EndWrite(token);
  for (const wchar_t* const name : {L"A;=:", L"B", L"C", L"D"}) {
    EXPECT_EQ(source->GetValue(read_code::kField, name), target->GetValue(read_code::kField, name)) << name;
  }
  EXPECT_EQ(Value(int64_t{-30}), target->GetValue(read_code::kNumber, 3));
  EXPECT_EQ(Value(5), target->GetValue(read_code::kNumber, 4));
}

TEST_F(RecordBus, ABatchFiresWithItsTokenAsOriginator) {
  const auto sink = std::make_shared<CRecordingSink>();
  const std::shared_ptr<IBusObject> record = Open(L"ACCOUNTS");
  record->Advise(sink);
  const int32_t token = record->BeginWrite();
  EXPECT_NE(token, record->BeginWrite());
  record->EndWrite(token);
  EXPECT_THAT(sink->events, ElementsAre(L"update " + std::to_wstring(token)));
}

TEST_F(RecordBus, AQuoteGetsItsCodeAndWhatTheClockSays) {
  const DateTime utc{2024, 3, 1, 4, 0, 45, 1, 250};
  QuoteUpdate update;
  update.Set(quote_field::kPrice, 5);
  CBusObject& quote = m_bus.Quote(L"ND.F");
  m_bus.PlayQuote(quote, update, nullptr, utc, {});
  EXPECT_EQ(Value(1), quote.GetValue(read_code::kField, L"MCODE"));
  EXPECT_EQ(Value(int64_t{4501}), quote.GetValue(read_code::kNumber, quote_field::kTime));
  EXPECT_EQ(Value(int64_t{20240304}), quote.GetValue(read_code::kNumber, quote_field::kDate));

  update.Reset();
  update.timeFormat = 1;
  update.mcode = 0;
  m_bus.PlayQuote(quote, update, nullptr, utc, {});
  EXPECT_EQ(Value(0), quote.GetValue(read_code::kField, L"MCODE"));
  EXPECT_EQ(Value(int64_t{4501250}), quote.GetValue(read_code::kNumber, quote_field::kTime));
  update.timeFormat = 2;
  m_bus.PlayQuote(quote, update, nullptr, utc, {});
  EXPECT_EQ(Value(int64_t{4501250000}), quote.GetValue(read_code::kNumber, quote_field::kTime));

  update.Reset();
  update.clock = false;
  update.Remove(quote_field::kTime);
  m_bus.PlayQuote(quote, update, nullptr, utc, {});
  EXPECT_EQ(Value(), quote.GetValue(read_code::kNumber, quote_field::kTime));
  EXPECT_EQ(Value(int64_t{5}), quote.GetValue(read_code::kNumber, quote_field::kPrice));
}

TEST_F(SubscribedRecordBus, ShowsNothingAndFiresNothingBeforeItIsSubscribed) {
  const auto sink = std::make_shared<CRecordingSink>();
  QuoteUpdate update;
  update.Set(quote_field::kPrice, 5);
  CBusObject& quote = m_bus.Quote(L"ND.F");
  quote.Advise(sink);
  m_bus.PlayQuote(quote, update, nullptr, {}, {});
  EXPECT_EQ(Value(0), quote.GetValue(read_code::kField, L"MCODE"));
  EXPECT_EQ(Value(), quote.GetValue(read_code::kNumber, quote_field::kPrice));
  EXPECT_THAT(sink->events, IsEmpty());

  const std::optional<uint64_t> subscription = m_bus.Subscribe(L"ND.F");
  ASSERT_TRUE(subscription);
  EXPECT_EQ(std::nullopt, m_bus.Subscribe(L"ND.F"));
  EXPECT_EQ(Value(), quote.GetValue(read_code::kNumber, quote_field::kPrice));
  m_bus.Show(L"ND.F", *subscription);
  EXPECT_EQ(Value(int64_t{5}), quote.GetValue(read_code::kNumber, quote_field::kPrice));
  EXPECT_EQ(Value(1), quote.GetValue(read_code::kField, L"MCODE"));
  EXPECT_THAT(sink->events, ElementsAre(L"update 1"));
}

TEST_F(SubscribedRecordBus, AnUnsubscribedRecordShowsNothingAnyMore) {
  SetField(L"OPT.REAL.X", L"Call", Text(L"{}"));
  const std::optional<uint64_t> first = m_bus.Subscribe(L"OPT.REAL.X");
  m_bus.Unsubscribe(L"OPT.REAL.X");
  m_bus.Show(L"OPT.REAL.X", *first);
  EXPECT_EQ(Value(), Open(L"OPT.REAL.X")->GetValue(read_code::kField, L"Call"));
  const std::optional<uint64_t> second = m_bus.Subscribe(L"OPT.REAL.X");
  m_bus.Show(L"OPT.REAL.X", *first);
  EXPECT_EQ(Value(), Open(L"OPT.REAL.X")->GetValue(read_code::kField, L"Call"));
  m_bus.Show(L"OPT.REAL.X", *second);
  EXPECT_EQ(Text(L"{}"), Open(L"OPT.REAL.X")->GetValue(read_code::kField, L"Call"));
}

TEST_F(SubscribedRecordBus, OtherRecordsNeedNoSubscription) {
  EXPECT_EQ(std::nullopt, m_bus.Subscribe(L"TRADE.HOT.MONTH"));
  SetField(L"Holiday", L"A", 1);
  EXPECT_EQ(Value(1), Open(L"Holiday")->GetValue(read_code::kField, L"A"));
}

TEST_F(RecordBus, AFaultKeepsARecordFromOpening) {
  m_bus.FailOpen(L"ACCOUNTS", true);
  EXPECT_EQ(0, m_bus.Open(L"ACCOUNTS"));
  m_bus.FailOpen(L"ACCOUNTS", false);
  EXPECT_NE(0, m_bus.Open(L"ACCOUNTS"));
}

TEST_F(RecordBus, AFaultKeepsAnItemFromResolvingSoManyTimes) {
  RecordChange change = Named(L"R");
  change.items = {Named(L"a")};
  change.nodes = {Named(L"n")};
  change.nodes[0].items = {Named(L"b")};
  m_bus.Apply(change);
  const std::shared_ptr<IBusObject> record = Open(L"R");
  const std::shared_ptr<IBusObject> node = Child(m_bus, *record, read_code::kNode, 0);
  m_bus.FailItem(L"R", L"", 0, 2);
  for (const bool resolves : {false, false, true}) {
    const Value handle = record->GetValue(read_code::kItem, 0);
    ASSERT_TRUE(std::holds_alternative<int32_t>(handle));
    EXPECT_EQ(resolves, m_bus.Resolve(std::get<int32_t>(handle)) != nullptr);
    EXPECT_NE(nullptr, Child(m_bus, *node, read_code::kItem, 0));
  }
  m_bus.FailItem(L"R", L"n", Text(L"b"), std::nullopt);
  EXPECT_EQ(nullptr, Child(m_bus, *node, read_code::kItem, 0));
  EXPECT_EQ(Value(0), node->GetValue(read_code::kItemByName, L"b"));
  EXPECT_NE(nullptr, Child(m_bus, *record, read_code::kItem, 0));
  m_bus.ClearItemFault(L"R", L"n", Text(L"b"));
  EXPECT_NE(nullptr, Child(m_bus, *node, read_code::kItem, 0));
}

TEST_F(RecordBus, ResolvesNothingButHandlesThatItGaveOut) {
  EXPECT_EQ(nullptr, m_bus.Resolve(0));
  EXPECT_EQ(nullptr, m_bus.Resolve(-1));
  EXPECT_EQ(nullptr, m_bus.Resolve(1000));
}

}  // namespace
}  // namespace iorder::testing

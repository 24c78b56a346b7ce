#include "terminal/strategy_positions.h"

#include <gmock/gmock.h>

#include <limits>

#include "platform/text.h"
#include "tests/terminal/group_order_day.h"

namespace iorder::testing {
namespace {

using ::testing::HasSubstr;

std::string Figures(const std::string& at, const std::string& fields) {
  return "{" + (at.empty() ? "" : "\"at\": \"" + at + "\", ") + "\"record\": \"OPT.REAL." + kCall +
         "\", \"fields\": {" + fields + "}}\n";
}
const std::string kPriced = std::string("{\"quote\": \"") + kCall + "\", \"price\": 12.5}\n{\"quote\": \"" +
                            kPut + "\", \"price\": 12.5}\n";

std::string Fill(const std::string& at, const std::string& side, int lots, const std::string& rest = "") {
  return SendAt(at, {GroupOrder(kCall, side, lots, rest)});
}

TEST(StrategyPositions, FillsMakeAnItemPerSymbolAndStrategy) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 3) + Fill("09:00:01", "B", 2) +
                     SendAt("09:00:02", {GroupOrder(kPut, "S", 4)}) +
                     Fill("09:00:03", "B", 7, "STRATEGY=S2"));
  EXPECT_EQ(Value(ToWide(kCall)), day.Position(L"S1", kCall, L"Symbol"));
  EXPECT_EQ(Value(5), day.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(1), day.Position(L"S1", kCall, L"Side"));
  EXPECT_EQ(Value(4), day.Position(L"S1", kPut, L"Quantity"));
  EXPECT_EQ(Value(2), day.Position(L"S1", kPut, L"Side"));
  EXPECT_EQ(Value(7), day.Position(L"S2", kCall, L"Quantity"));
  EXPECT_EQ(Value(), day.Position(L"S2", kPut, L"Quantity"));
}

TEST(StrategyPositions, WithoutAStrategyThereIsNone) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 3, "STRATEGY=") + Fill("09:00:01", "B", 2));
  const auto positions = day.day.Open(L"STRATEGY.POSITION");
  EXPECT_EQ(Value(std::wstring(L"BNS1")), positions->GetValue(read_code::kNames, kNodeNamesSelector));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(StrategyPositions, ASaleReducesAndBeyondThatTurnsTheSide) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 3) + Fill("09:00:01", "S", 5));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Side"));
}

TEST(StrategyPositions, WhatIsFlatStaysWithNoLots) {
  CGroupOrderDay day(Figures("", R"("Delta": {"scaled": 50})") + kPriced + Fill("09:00:00", "S", 3) +
                     Fill("09:00:01", "B", 3));
  EXPECT_EQ(Value(0), day.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Side"));
  EXPECT_EQ(Value(int64_t{0}), day.Position(L"S1", kCall, L"Delta"));
}

TEST(StrategyPositions, FiguresAreMultipliedByTheSignedLotsAndThoseInMoneyByTheWeightToo) {
  CGroupOrderDay day(
      Figures("", R"("Delta": {"scaled": 50}, "1Pct$Vanna": {"scaled": "0.5"}, "ImpVol": 7, "X": 1)") +
      kPriced + Fill("09:00:00", "S", 3));
  EXPECT_EQ(Value(ToScaled(-150)), day.Position(L"S1", kCall, L"Delta"));
  EXPECT_EQ(Value(ToScaled(-75)), day.Position(L"S1", kCall, L"1Pct$Vanna"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"ImpVol"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"Gamma"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"X"));
}

TEST(StrategyPositions, FiguresThatChangeChangeThePosition) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 2) + Figures("09:00:01", R"("Delta": {"scaled": 50})") +
                     Figures("09:00:02", R"("Delta": {"scaled": 40}, "Gamma": {"int64": 9})") +
                     Figures("09:00:03", R"("Gamma": null)"));
  EXPECT_EQ(Value(ToScaled(80)), day.Position(L"S1", kCall, L"Delta"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"Gamma"));
}

TEST(StrategyPositions, FiguresCountBeforeTheEngineHasSubscribedThem) {
  CPlayedDay day(
      kPriced + Figures("", R"("Delta": {"scaled": 50})") + R"({"at": "09:00:00", "note": ""})" + "\n",
      R"(, "orders": {})");
  CStrategyPositions positions(*day.runtime, static_cast<CEmbeddedBus&>(day.terminal->GetWorld().bus));
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase == 1) positions.Fill(L"S9", ToWide(kCall), 2);
  };
  day.Play();
  const auto node = day.terminal->GetWorld().bus.Resolve(
      Int32Or(day.Open(kStrategyPosition)->GetValue(read_code::kNodeByName, L"S9"), 0));
  const auto item = day.terminal->GetWorld().bus.Resolve(Int32Or(node->GetValue(read_code::kItem, 0), 0));
  EXPECT_EQ(Value(ToScaled(100)), item->GetValue(read_code::kField, L"Delta"));
}

TEST(StrategyPositions, AFigureThatDoesNotFitIsAbsent) {
  const std::string most = std::to_string(std::numeric_limits<int64_t>::max() / 4);
  CGroupOrderDay day(Figures("", R"("Delta": {"int64": )" + most + R"(}, "$Delta": {"int64": )" + most +
                                     R"(}, "$Vega": {"int64": -9223372036854775808}, "Vega": {"int64": 1})") +
                     kPriced + Fill("09:00:00", "S", 4));
  EXPECT_EQ(Value(-4 * (std::numeric_limits<int64_t>::max() / 4)), day.Position(L"S1", kCall, L"Delta"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"$Delta"));
  EXPECT_EQ(Value(), day.Position(L"S1", kCall, L"$Vega"));
  EXPECT_EQ(Value(int64_t{-4}), day.Position(L"S1", kCall, L"Vega"));
}

std::string Position(const std::string& at, const std::string& items) {
  return "{" + (at.empty() ? "" : "\"at\": \"" + at + "\", ") +
         "\"position\": {\"strategy\": \"S1\", \"items\": " + items + "}}\n";
}
std::string Held(const std::string& rest) {
  return std::string("{\"Symbol\": \"") + kCall + "\", " + rest + "}";
}

TEST(StrategyPositions, ALineIsWhereFillsGoOnFrom) {
  CGroupOrderDay day(Figures("", R"("Delta": {"scaled": 50})") + kPriced +
                     Position("", "[" + Held(R"("Quantity": 5, "Side": 2)") + "]") +
                     Fill("09:00:00", "B", 1));
  EXPECT_EQ(Value(4), day.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(2), day.Position(L"S1", kCall, L"Side"));
  EXPECT_EQ(Value(ToScaled(-200)), day.Position(L"S1", kCall, L"Delta"));
}

TEST(StrategyPositions, WhatALineNamesStaysUntilItChanges) {
  const std::string line =
      Position("", "[" + Held(R"("Quantity": {"int64": 5}, "Delta": {"scaled": 1})") + "]");
  CGroupOrderDay given(Figures("", R"("Delta": {"scaled": 50}, "Vega": {"scaled": 2})") + line);
  EXPECT_EQ(Value(int64_t{5}), given.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(ToScaled(1)), given.Position(L"S1", kCall, L"Delta"));
  EXPECT_EQ(Value(ToScaled(10)), given.Position(L"S1", kCall, L"Vega"));
  CGroupOrderDay changed(line + Figures("09:00:00", R"("Delta": {"scaled": 50})"));
  EXPECT_EQ(Value(int64_t{5}), changed.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(ToScaled(250)), changed.Position(L"S1", kCall, L"Delta"));
}

TEST(StrategyPositions, ALineReplacesAllThatWasHeld) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 3) + Position("09:00:01", "[]") +
                     Fill("09:00:02", "B", 1));
  EXPECT_EQ(Value(1), day.Position(L"S1", kCall, L"Quantity"));
  CGroupOrderDay gone(kPriced + Fill("09:00:00", "B", 3) + Position("09:00:01", "null"));
  EXPECT_EQ(Value(0), gone.day.Open(kStrategyPosition)->GetValue(read_code::kNode, -1));
}

/// Of the strategy's items, the one at that place; -1: how many there are, whatever the field.
Value ItemField(CGroupOrderDay& day, int32_t index, const wchar_t* name) {
  IRecordBus& bus = day.day.terminal->GetWorld().bus;
  const auto record = day.day.Open(kStrategyPosition);
  const auto node = bus.Resolve(Int32Or(record->GetValue(read_code::kNodeByName, L"S1"), 0));
  const Value item = node->GetValue(read_code::kItem, index);
  return index < 0 ? item : bus.Resolve(Int32Or(item, 0))->GetValue(read_code::kField, name);
}

TEST(StrategyPositions, AnItemThatDoesNotSayWhatIsHeldIsLeftAlone) {
  CGroupOrderDay day(
      kPriced + Position("", "[" + Held(R"("Quantity": 2)") + ", " + Held(R"("Quantity": 9)") + ", {}]") +
      Fill("09:00:00", "B", 1));
  EXPECT_EQ(Value(3), ItemField(day, -1, L""));
  EXPECT_EQ(Value(9), ItemField(day, 1, L"Quantity"));
  EXPECT_EQ(Value(3), day.Position(L"S1", kCall, L"Quantity"));
}

TEST(StrategyPositions, AQuantityBeyond32BitsIsLeftAlone) {
  for (const int64_t quantity : {std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max(),
                                 int64_t{-2147483648}, int64_t{2147483648}}) {
    CGroupOrderDay day(
        Figures("", R"("Delta": {"scaled": 50})") + kPriced +
        Position("",
                 "[" + Held(R"("Side": 2, "Quantity": {"int64": )" + std::to_string(quantity) + "}") + "]") +
        Fill("09:00:00", "B", 3));
    EXPECT_EQ(Value(quantity), ItemField(day, 0, L"Quantity"));
    EXPECT_EQ(Value(), ItemField(day, 0, L"Delta"));
    EXPECT_EQ(Value(3), day.Position(L"S1", kCall, L"Quantity"));
  }
}

TEST(StrategyPositions, NoMoreIsHeldThan32BitsTell) {
  const std::string most = "2147483647";
  CGroupOrderDay bought(kPriced + Position("", "[" + Held("\"Quantity\": " + most) + "]") +
                        Fill("09:00:00", "B", 5) + Fill("09:00:01", "S", 2));
  EXPECT_EQ(Value(2147483645), bought.Position(L"S1", kCall, L"Quantity"));
  CGroupOrderDay sold(kPriced + Position("", "[" + Held("\"Side\": 2, \"Quantity\": " + most) + "]") +
                      Fill("09:00:00", "S", 2147483647) + Fill("09:00:01", "B", 2));
  EXPECT_EQ(Value(2147483645), sold.Position(L"S1", kCall, L"Quantity"));
  EXPECT_EQ(Value(2), sold.Position(L"S1", kCall, L"Side"));
}

TEST(StrategyPositions, AFillIsToldWithItsStrategyAndAFigureIsNot) {
  CGroupOrderDay day(kPriced + Fill("09:00:00", "B", 3) + Figures("09:00:05", R"("Delta": {"scaled": 50})"));
  EXPECT_THAT(
      day.day.trace.Text(),
      HasSubstr(R"(09:00:00.020", "thread": "bus", "event": "update", "record": "STRATEGY.POSITION")"));
  EXPECT_THAT(day.day.trace.Text(), HasSubstr(R"("payload": "S1")"));
  EXPECT_EQ(std::string::npos, day.day.trace.Text().find("09:00:05"));
}

}  // namespace
}  // namespace iorder::testing

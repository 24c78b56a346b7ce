// Happenings from what the engine tells of its group orders.

#include "app/group_order_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "platform/virtual/virtual_runtime.h"

namespace iorder {
namespace {

using testing::SizeIs;

class GroupOrderReaderTest : public testing::Test {
 protected:
  CVirtualRuntime runtime{VirtualRuntimeOptions{}};
  std::vector<Happening> told;
  CGroupOrderReader reader{[this](const Happening& happening) { told.push_back(happening); }};
  stcIntlgntOrd order{runtime};
  CGroupCycle cycle;

  void SetUp() override {
    order.llNumber = 7;
    order.strStrategyID = L"V";
    order.strStopName = L"Vega";
    order.dbStopValue = 50;
    order.dbStopFactor = 2;
    order.lDirection = direction::kRise;
    order.lMultiplier.fill(1);
    order.lSide = {side::kBuy, side::kSell, side::kSell, side::kBuy};
    order.strCallPut[0] = L"Call";
    order.strLegCondition[0] = L"Vega";
    order.llLegTarget[0] = 100;
    order.lQty[0] = 3;
    order.strGroup[0] = L"B";
    order.strLegSymbol[0] = L"X";
  }
  void Candidate(const wchar_t* symbol, ScaledValue value, int64_t distance, size_t leg = 0) {
    cycle.candidates.push_back({leg, symbol, value, distance});
  }
  void String(const wchar_t* text, int32_t lots, bool offsets, size_t leg = 0) {
    cycle.orders.push_back({leg, offsets, L"X", lots, text});
  }
  /// As it is read from an order string.
  static OrderSent Sent(const std::string& text, const std::string& groupId) {
    OrderSent sent;
    sent.text = text;
    sent.group.emplace();
    sent.group->order.id = "V";
    sent.group->groupId = groupId;
    return sent;
  }
  template <typename What>
  const What& Last() {
    return std::get<What>(told.back());
  }
  GroupLegChosen Leg() {
    told.clear();
    reader.OnCycle(order, cycle);
    return Last<GroupLegChosen>();
  }
};

TEST_F(GroupOrderReaderTest, ALookIsTold) {
  reader.OnLook(order, {.bStop = false, .bPosition = true, .dbValue = 12});
  const auto& look = Last<GroupOrderLooked>();
  EXPECT_EQ(look.order.id, "V");
  EXPECT_EQ(look.order.number, 7);
  EXPECT_EQ(look.field, "Vega");
  EXPECT_EQ(look.sum, 12);
  EXPECT_EQ(look.factor, 2);
  EXPECT_EQ(look.target, 50);
  EXPECT_EQ(look.mustRise, true);
  EXPECT_FALSE(look.isDone);
  order.lDirection = direction::kFall;
  reader.OnLook(order, {.bStop = true});
  EXPECT_EQ(Last<GroupOrderLooked>().sum, std::nullopt);
  EXPECT_EQ(Last<GroupOrderLooked>().mustRise, false);
  EXPECT_TRUE(Last<GroupOrderLooked>().isDone);
  order.lDirection = direction::kUndecided;
  reader.OnLook(order, {.bStop = true});
  EXPECT_EQ(Last<GroupOrderLooked>().mustRise, std::nullopt);
}

TEST_F(GroupOrderReaderTest, ASecondOrderOfAnIdIsToldApart) {
  reader.OnLook(order, {});
  EXPECT_FALSE(Last<GroupOrderLooked>().order.isIdShared);
  stcIntlgntOrd second{runtime};
  second.llNumber = 8;
  second.strStrategyID = L"V";
  reader.OnLook(second, {});
  EXPECT_TRUE(Last<GroupOrderLooked>().order.isIdShared);
  reader.OnEnd(order, GroupOrderEnd::kReplaced);
  EXPECT_TRUE(Last<GroupOrderEnded>().order.isIdShared);
  EXPECT_EQ(Last<GroupOrderEnded>().end, GroupOrderEnd::kReplaced);
}

TEST_F(GroupOrderReaderTest, ACycleTellsWhatItSawAndMade) {
  reader.OnLook(order, {.bStop = false, .bPosition = true, .dbValue = 12});
  order.strCheckName2 = L"Gamma";
  order.lMultiplier[2] = 2;
  cycle.checks.second = CBandCheck{.dbValue = 9, .dbCentre = 5, .dbHalfWidth = 2, .bOut = true};
  String(L"one", 2, true);
  String(L"two", 3, false);
  told.clear();
  reader.OnCycle(order, cycle);
  ASSERT_THAT(told, SizeIs(2));
  const auto& made = std::get<GroupCycleMade>(told[0]);
  EXPECT_EQ(made.cycle, 1);
  EXPECT_EQ(made.sum, 12);
  EXPECT_EQ(made.target, 50);
  ASSERT_THAT(made.checks, SizeIs(1));
  EXPECT_EQ(made.checks[0].number, 2);
  EXPECT_EQ(made.checks[0].field, "Gamma");
  EXPECT_EQ(made.checks[0].low, 3);
  EXPECT_EQ(made.checks[0].high, 7);
  EXPECT_TRUE(made.checks[0].isOut);
  EXPECT_EQ(made.doubledLeg, 3u);
  EXPECT_EQ(made.orders, 2u);
  EXPECT_EQ(made.lots, 5);
  reader.OnCycle(order, cycle);
  EXPECT_EQ(std::get<GroupCycleMade>(told[2]).cycle, 2);
}

TEST_F(GroupOrderReaderTest, ALegTellsItsNearestOptions) {
  Candidate(L"A", 130, 30);
  Candidate(L"X", 90, 10);
  Candidate(L"other", 100, 0, 1);
  Candidate(L"B", 110, 10);
  Candidate(L"C", 160, 60);
  order.lMultiplier[0] = 2;
  const GroupLegChosen leg = Leg();
  EXPECT_EQ(leg.leg, 1u);
  EXPECT_EQ(leg.right, "Call");
  EXPECT_EQ(leg.side, "B");
  EXPECT_EQ(leg.lots, 6);
  EXPECT_TRUE(leg.isDoubled);
  EXPECT_EQ(leg.field, "Vega");
  EXPECT_EQ(leg.wanted, 100);
  EXPECT_EQ(leg.symbol, "X");
  ASSERT_TRUE(leg.found);
  EXPECT_EQ(leg.found->symbol, "X");
  EXPECT_EQ(leg.found->figure, 90);
  EXPECT_EQ(leg.found->distance, 10);
  EXPECT_FALSE(leg.found->isWrapped);
  ASSERT_THAT(leg.next, SizeIs(2));
  EXPECT_EQ(leg.next[0].symbol, "B");
  EXPECT_EQ(leg.next[1].symbol, "A");
  EXPECT_EQ(leg.candidates, 4u);
  EXPECT_EQ(leg.withoutFigure, 0u);
}

TEST_F(GroupOrderReaderTest, AMissingFigureHasWrappedUnlessTheTargetIsNegative) {
  // The distance of NoValue to 100 is 2^63 + 100 and wraps to 2^63 - 100.
  constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
  Candidate(L"X", NoValue, kMost - 99);
  GroupLegChosen leg = Leg();
  EXPECT_EQ(leg.withoutFigure, 1u);
  ASSERT_TRUE(leg.found);
  EXPECT_EQ(leg.found->figure, NoValue);
  EXPECT_TRUE(leg.found->isWrapped);
  order.llLegTarget[0] = -100;
  leg = Leg();
  ASSERT_TRUE(leg.found);
  EXPECT_FALSE(leg.found->isWrapped);
}

TEST_F(GroupOrderReaderTest, TheLargestDistanceNeverWinsALeg) {
  // Of NoValue to 1: nothing is below it.
  order.llLegTarget[0] = 1;
  Candidate(L"A", NoValue, std::numeric_limits<int64_t>::max());
  const GroupLegChosen leg = Leg();
  EXPECT_FALSE(leg.found);
  EXPECT_EQ(leg.symbol, "X");
  EXPECT_THAT(leg.next, SizeIs(1));
}

TEST_F(GroupOrderReaderTest, ALegThatTheCommandDoesNotTellIsNotTold) {
  order.strCallPut[0].clear();
  reader.OnCycle(order, cycle);
  EXPECT_THAT(told, SizeIs(1));
}

TEST_F(GroupOrderReaderTest, ALegTellsWhatIsHeldAndOffset) {
  cycle.held[0] = {{L"A", 5, side::kSell}};
  String(L"one", 2, true);
  String(L"two", 1, false);
  String(L"of another leg", 4, false, 1);
  const GroupLegChosen leg = Leg();
  ASSERT_THAT(leg.held, SizeIs(1));
  EXPECT_EQ(leg.held[0].symbol, "A");
  EXPECT_EQ(leg.held[0].lots, 5);
  EXPECT_EQ(leg.held[0].side, "S");
  ASSERT_THAT(leg.offsets, SizeIs(1));
  EXPECT_EQ(leg.offsets[0].symbol, "X");
  EXPECT_EQ(leg.offsets[0].lots, 2);
  EXPECT_EQ(leg.opens, 1);
}

TEST_F(GroupOrderReaderTest, AnOrderStringIsFoundByItsText) {
  String(L"same", 2, true);
  String(L"last", 3, false);
  reader.OnCycle(order, cycle);
  OrderSent sent = Sent("last", "{G}");
  reader.Complete(sent);
  EXPECT_EQ(sent.group->order.number, 7);
  EXPECT_EQ(sent.group->leg, 1u);
  EXPECT_FALSE(sent.group->offsets);
  EXPECT_EQ(sent.group->group, "B");
  sent = Sent("same", "");
  reader.Complete(sent);
  EXPECT_TRUE(sent.group->offsets);
  EXPECT_EQ(sent.group->group, "");  // it names no group
  // Each string is sent once.
  sent = Sent("same", "");
  reader.Complete(sent);
  EXPECT_EQ(sent.group->order.number, 0);
  EXPECT_EQ(sent.group->leg, 0u);
}

TEST_F(GroupOrderReaderTest, AnOrderOfAStrategyStaysAsItIs) {
  String(L"same", 2, true);
  reader.OnCycle(order, cycle);
  OrderSent sent;
  sent.text = "same";
  reader.Complete(sent);
  EXPECT_FALSE(sent.group);
}

TEST_F(GroupOrderReaderTest, ChildrenAreCounted) {
  reader.OnChild(order, L"C1");
  reader.OnChild(order, L"C2");
  EXPECT_EQ(Last<GroupChildAnnounced>().child, "C2");
  EXPECT_EQ(Last<GroupChildAnnounced>().live, 2u);
  reader.OnChildUpdate(order, L"C1", 3, 1);
  EXPECT_EQ(Last<GroupChildChanged>().child, "C1");
  EXPECT_EQ(Last<GroupChildChanged>().state, 3);
  EXPECT_EQ(Last<GroupChildChanged>().live, 1u);
  EXPECT_FALSE(Last<GroupChildChanged>().fails);
  // A key that has ended may come again.
  reader.OnChild(order, L"C1");
  EXPECT_EQ(Last<GroupChildAnnounced>().live, 2u);
}

TEST_F(GroupOrderReaderTest, AnUpdateMayOvertakeItsAnnouncement) {
  reader.OnChildUpdate(order, L"C1", 3, 0);
  reader.OnChild(order, L"C1");
  EXPECT_EQ(Last<GroupChildAnnounced>().live, 0u);
}

TEST_F(GroupOrderReaderTest, TheChildThatFailsAnOrderIsToldOnce) {
  reader.OnChild(order, L"C1");
  order.bFailed = 1;
  reader.OnChildUpdate(order, L"C1", 8, 1);
  EXPECT_TRUE(Last<GroupChildChanged>().fails);
  reader.OnChildUpdate(order, L"C2", 8, 0);
  EXPECT_FALSE(Last<GroupChildChanged>().fails);
}

TEST_F(GroupOrderReaderTest, TheNextLookIsCountedFromNow) {
  reader.SetNow(*ParseLocalTime("2024-03-04T23:59:59.500"));
  reader.OnRecheck(order, 3001, 2000);
  EXPECT_EQ(Last<GroupLookPlanned>().time, "2024-03-05T00:00:01.500");
  EXPECT_EQ(Last<GroupLookPlanned>().timer, 3001);
}

TEST_F(GroupOrderReaderTest, ALookThatPassesIsTold) {
  reader.OnNoLook(order);
  EXPECT_EQ(Last<GroupLookPassed>().order.number, order.llNumber);
  EXPECT_EQ(Last<GroupLookPassed>().live, 0u);
  reader.OnChild(order, L"C1");
  reader.OnNoLook(order);
  EXPECT_EQ(Last<GroupLookPassed>().live, 1u);
}

}  // namespace
}  // namespace iorder

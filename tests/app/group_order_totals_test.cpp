// Where group orders stand at the end of a day.

#include "app/group_order_totals.h"

#include <gtest/gtest.h>

#include "app/day_totals.h"

namespace iorder {
namespace {

const GroupOrderName kOrder{"HEDGE", 1, false};

template <typename What>
What Of(const GroupOrderName& order) {
  What what;
  what.order = order;
  return what;
}

OrderSent SentBy(const GroupOrderName& order) {
  OrderSent sent;
  sent.lots = 2;
  sent.group = Of<GroupString>(order);
  return sent;
}

class GroupOrderTotalsTest : public testing::Test {
 protected:
  CGroupOrderTotals totals;

  void Look(const GroupOrderName& order = kOrder) { totals.Add(Of<GroupOrderLooked>(order)); }
  void Cycle(const GroupOrderName& order = kOrder) {
    Look(order);
    totals.Add(Of<GroupCycleMade>(order));
    totals.Add(SentBy(order));
  }
  void Announce(size_t live, const GroupOrderName& order = kOrder) {
    totals.Add(GroupChildAnnounced{order, "C", live});
  }
  void Change(size_t live, bool fails = false) {
    totals.Add(GroupChildChanged{kOrder, "C", fails ? 8 : 3, live, fails});
  }
  void Plan(const std::string& time) { totals.Add(GroupLookPlanned{kOrder, "2024-03-04T" + time, 3001}); }
  void Pass() { totals.Add(GroupLookPassed{kOrder}); }
  void End(GroupOrderEnd end) { totals.Add(GroupOrderEnded{kOrder, end}); }

  std::string Stands() const { return totals.Rows().at({"HEDGE", 1}).Words(); }
  std::string State() const { return totals.Rows().at({"HEDGE", 1}).State(); }
};

TEST_F(GroupOrderTotalsTest, AnOrderThatIsAtItsTargetIsDone) {
  Look();
  End(GroupOrderEnd::kTarget);
  EXPECT_EQ(Stands(), "done, target reached");
  EXPECT_EQ(State(), "done");
}

TEST_F(GroupOrderTotalsTest, AnOrderWithoutAnOptionIsGone) {
  Look();
  End(GroupOrderEnd::kNoLeg);
  EXPECT_EQ(Stands(), "no option found");
  EXPECT_EQ(State(), "no_option");
}

TEST_F(GroupOrderTotalsTest, AnOrderThatMadeNoOrderIsNeverMoved) {
  Cycle();
  End(GroupOrderEnd::kNothing);
  EXPECT_EQ(Stands(), "no order made, nothing will move it");
  EXPECT_EQ(State(), "no_orders");
}

TEST_F(GroupOrderTotalsTest, OrdersAreSentBeforeThereAreChildren) {
  Cycle();
  EXPECT_EQ(Stands(), "orders sent, no child yet");
  EXPECT_EQ(State(), "sent");
}

TEST_F(GroupOrderTotalsTest, AFailureOfAChildThatCameBeforeTheLookEndsItAll) {
  Cycle();
  Plan("08:47:02");
  Announce(1);
  Pass();
  EXPECT_EQ(Stands(), "waiting for 1 child");
  Change(0, true);
  EXPECT_EQ(Stands(), "failed child, will not go on");
  EXPECT_EQ(State(), "failed");
}

TEST_F(GroupOrderTotalsTest, AFailedOrderWithChildrenLeftIsFailed) {
  Cycle();
  Plan("08:47:02");
  Announce(2);
  Change(1, true);
  EXPECT_EQ(Stands(), "failed child, will not go on; 1 child left");
  EXPECT_EQ(State(), "failed");
}

TEST_F(GroupOrderTotalsTest, ItWaitsForItsChildren) {
  Cycle();
  Announce(1);
  EXPECT_EQ(Stands(), "waiting for 1 child");
  Announce(2);
  EXPECT_EQ(Stands(), "waiting for 2 children");
  EXPECT_EQ(State(), "waiting");
  Change(1);
  EXPECT_EQ(Stands(), "waiting for 1 child");
}

TEST_F(GroupOrderTotalsTest, TheNextLookHasItsTime) {
  Cycle();
  Announce(1);
  Change(0);
  Plan("08:45:04.500");
  EXPECT_EQ(Stands(), "next look at 08:45:04.500");
  EXPECT_EQ(State(), "next_look");
  Plan("08:45:05.000");
  EXPECT_EQ(Stands(), "next look at 08:45:05");
}

TEST_F(GroupOrderTotalsTest, AChildThatComesBeforeTheLookIsWaitedFor) {
  Cycle();
  Announce(1);
  Change(0);
  Plan("08:45:04.500");
  Announce(1);
  EXPECT_EQ(Stands(), "waiting for 1 child");
}

TEST_F(GroupOrderTotalsTest, AFailedChildEndsIt) {
  Cycle();
  Announce(2);
  Change(1, true);
  EXPECT_EQ(Stands(), "failed child, will not go on; 1 child left");
  Change(0);
  EXPECT_EQ(Stands(), "failed child, will not go on");
  EXPECT_EQ(State(), "failed");
}

TEST_F(GroupOrderTotalsTest, AFailureDoesNotStopATimerThatRuns) {
  Cycle();
  Announce(1);
  Change(0);
  Plan("08:45:04.000");
  Change(0, true);
  EXPECT_EQ(Stands(), "failed child, but next look at 08:45:04");
  EXPECT_EQ(State(), "next_look");
  Cycle();
  EXPECT_EQ(Stands(), "failed child, will not go on");
}

TEST_F(GroupOrderTotalsTest, AReplacedOrderIsStillWokenByItsTimer) {
  Cycle();
  End(GroupOrderEnd::kReplaced);
  EXPECT_EQ(Stands(), "replaced by another order of the same id");
  EXPECT_EQ(State(), "replaced");
  Plan("08:45:04.000");
  End(GroupOrderEnd::kReplaced);
  EXPECT_EQ(Stands(), "replaced by another order of the same id, next look at 08:45:04");
  Cycle();
  EXPECT_EQ(Stands(), "orders sent, no child yet");
}

TEST_F(GroupOrderTotalsTest, AnOrderWhoseTimerWasTakenNeverWakes) {
  Cycle();
  Plan("08:45:04.000");
  End(GroupOrderEnd::kAsleep);
  EXPECT_EQ(Stands(), "its timer was taken by another order, will never wake");
  EXPECT_EQ(State(), "asleep");
}

TEST_F(GroupOrderTotalsTest, ACommandWhoseCycleNeverCameIsLooking) {
  Look();
  EXPECT_EQ(Stands(), "looking");
  EXPECT_EQ(State(), "looking");
}

TEST_F(GroupOrderTotalsTest, TheTableHasANumberWhereAnIdIsUsedTwice) {
  Cycle();
  Announce(1);
  Cycle({"HEDGE", 4, true});
  Cycle({"VANNA", 2, false});
  Look({"", 3, false});
  EXPECT_EQ(totals.Table(),
            "group order  cycles  orders  lots  children  stands\n"
            "(no id)           0       0     0         0  looking\n"
            "HEDGE #1          1       1     2         1  waiting for 1 child\n"
            "HEDGE #4          1       1     2         0  orders sent, no child yet\n"
            "VANNA             1       1     2         0  orders sent, no child yet\n");
}

TEST_F(GroupOrderTotalsTest, WithoutAGroupOrderThereIsNoTable) {
  EXPECT_EQ(totals.Table(), "");
  totals.Add(OrderSent{});
  EXPECT_EQ(totals.Table(), "");
}

TEST(DayTotalsOfGroupOrders, OrdersOfGroupOrdersStandInTheirOwnTable) {
  CDayTotals totals;
  totals.Add(SentBy(kOrder));
  EXPECT_EQ(totals.Table(),
            "group order  cycles  orders  lots  children  stands\n"
            "HEDGE             0       1     2         0  looking\n"
            "1 orders, 0 cancels, 0 faults\n");
  EXPECT_EQ(
      totals.Json({}),
      R"({"kind":"end","strategies":[],"positions":[],"tags":[],"group_orders":[{"group_order":"HEDGE",)"
      R"("number":1,"cycles":0,"orders":1,"lots":2,"children":0,"live":0,"state":"looking",)"
      R"("words":"looking"}],"orders":1,"cancels":0,"faults":0,"errors":[]})");
  OrderSent other;
  other.strategy = "OpenLottery_S1_1";
  other.lots = 3;
  totals.Add(other);
  EXPECT_EQ(totals.Table(),
            "strategy          state        accepted  orders    lots          cash  ended by\n"
            "OpenLottery_S1_1  not running         0       1       3             0  -\n"
            "\n"
            "group order  cycles  orders  lots  children  stands\n"
            "HEDGE             0       1     2         0  looking\n"
            "2 orders, 0 cancels, 0 faults\n");
}

}  // namespace
}  // namespace iorder

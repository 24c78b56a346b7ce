// What group orders decide, in words and as JSON.

#include "app/group_order_words.h"

#include <gtest/gtest.h>

#include "app/happening_json.h"
#include "app/happening_text.h"

namespace iorder {
namespace {

const GroupOrderName kOrder{"HEDGE", 3, false};
constexpr const char* kCall17500 = "ND.O.TWF.TX.202403.C.17500";
constexpr const char* kCall17600 = "ND.O.TWF.TX.202403.C.17600";
constexpr const char* kPut17400 = "ND.O.TWF.TX.202403.P.17400";

/// Of a Delta as a condition spells it.
constexpr ScaledValue Delta(double delta) {
  return static_cast<ScaledValue>(delta * 100 * kScale + (delta < 0 ? -0.5 : 0.5));
}

std::string Text(const Happening& happening) {
  return Words(happening);
}

GroupLegChosen Leg() {
  GroupLegChosen leg;
  leg.order = kOrder;
  leg.cycle = 2;
  leg.leg = 1;
  leg.right = "Call";
  leg.side = "B";
  leg.lots = 3;
  leg.field = "Delta";
  leg.wanted = Delta(0.25);
  leg.symbol = kCall17600;
  leg.found = GroupCandidate{kCall17600, Delta(0.26), Delta(0.01), false};
  leg.next = {{kCall17500, Delta(0.45), Delta(0.2), false}};
  leg.candidates = 2;
  leg.opens = 3;
  return leg;
}

TEST(GroupOrderName, AnIdThatIsUsedAgainHasItsNumber) {
  EXPECT_EQ(GroupOrderWords({"HEDGE", 3, false}), "group order HEDGE");
  EXPECT_EQ(GroupOrderWords({"HEDGE", 3, true}), "group order HEDGE #3");
  EXPECT_EQ(GroupOrderWords({"", 1, false}), "group order (no id)");
}

TEST(GroupFigure, DeltaIsToldAsConditionsSpellIt) {
  EXPECT_EQ(FigureText("Delta", Delta(0.25)), "0.25");
  EXPECT_EQ(FigureText("Delta", Delta(-0.5)), "-0.5");
  EXPECT_EQ(FigureText("Delta", 1), "0.000000000001");
  EXPECT_EQ(FigureText("Vega", ToScaled(12.5)), "12.5");
}

TEST(GroupLook, TellsSumTargetAndDirection) {
  GroupOrderLooked look{kOrder, "Delta", -180, 1, 0, true, false};
  EXPECT_EQ(Text(look), "look          group order HEDGE: Delta is -180, must rise to 0");
  look.mustRise = false;
  look.sum = 12.5;
  look.target = 10;
  look.factor = 0.01;
  EXPECT_EQ(Text(look), "look          group order HEDGE: Delta x 0.01 is 12.5, must fall to 10");
  EXPECT_EQ(Json("T", look),
            R"({"at":"T","kind":"look","group_order":"HEDGE","number":3,"field":"Delta","factor":0.01,)"
            R"("sum":12.5,"target":10.0,"must":"fall","done":false})");
}

TEST(GroupLook, TellsThatThereIsNoPosition) {
  GroupOrderLooked look{kOrder, "1Pct$Vanna", {}, 1, 60000, true, false};
  EXPECT_EQ(Text(look), "look          group order HEDGE: no position, 1Pct$Vanna must rise to 60000");
  look.target = 0;
  look.isDone = true;
  look.mustRise.reset();
  EXPECT_EQ(Text(look), "look          group order HEDGE: no position, and the target is 0");
  EXPECT_EQ(Json("T", look),
            R"({"at":"T","kind":"look","group_order":"HEDGE","number":3,"field":"1Pct$Vanna","factor":1.0,)"
            R"("sum":null,"target":0.0,"must":null,"done":true})");
}

TEST(GroupLook, TellsThatTheTargetIsReached) {
  EXPECT_EQ(Text(GroupOrderLooked{kOrder, "Delta", 4, 1, 0, true, true}),
            "look          group order HEDGE: Delta is 4, the target 0 is reached");
}

TEST(GroupLook, AnOrderWithoutAStopConditionSumsNoField) {
  EXPECT_EQ(Text(GroupOrderLooked{{"", 1, false}, "", 0.0, 1, 0, false, true}),
            "look          group order (no id): a sum without a field is 0, the target 0 is reached");
}

TEST(GroupCycle, TellsBandsAndTheDoubledLeg) {
  GroupCycleMade cycle;
  cycle.order = kOrder;
  cycle.cycle = 2;
  cycle.sum = 4.5;
  cycle.target = 1;
  cycle.orders = 1;
  cycle.lots = 2;
  EXPECT_EQ(Text(cycle), "cycle         group order HEDGE: cycle 2, 1 order");
  cycle.checks = {{1, "Vega", 130, 90, 110, true}, {2, "Gamma", 0.5, -1, 1, false}};
  cycle.doubledLeg = 4;
  cycle.orders = 3;
  EXPECT_EQ(Text(cycle),
            "cycle         group order HEDGE: cycle 2, Vega 130 outside 90 to 110, Gamma 0.5 within -1 to 1, "
            "leg 4 is doubled, 3 orders");
  EXPECT_EQ(Json("T", cycle),
            R"({"at":"T","kind":"cycle","group_order":"HEDGE","number":3,"cycle":2,"sum":4.5,"target":1.0,)"
            R"("checks":[{"check":1,"field":"Vega","value":130.0,"low":90.0,"high":110.0,"outside":true},)"
            R"({"check":2,"field":"Gamma","value":0.5,"low":-1.0,"high":1.0,"outside":false}],"doubled":4,)"
            R"("orders":3,"lots":2})");
}

TEST(GroupLeg, TellsTheChosenOptionAndTheNextOnes) {
  EXPECT_EQ(Text(Leg()),
            "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call, Delta 0.26 for 0.25, off by 0.01; "
            "next TX Mar24 17500 call (0.45, off by 0.2)");
  EXPECT_EQ(Json("T", Leg()),
            R"({"at":"T","kind":"leg","group_order":"HEDGE","number":3,"cycle":2,"leg":1,"right":"Call",)"
            R"("side":"buy","lots":3,"doubled":false,"field":"Delta","wanted":0.25,)"
            R"("symbol":"ND.O.TWF.TX.202403.C.17600","found":true,"figure":0.26,"distance":0.01,)"
            R"("next":[{"symbol":"ND.O.TWF.TX.202403.C.17500","figure":0.45,"distance":0.2}],"candidates":2,)"
            R"("without_figure":0,"held":[],"offsets":[],"opens":3})");
}

TEST(GroupLeg, TellsWhatItOffsets) {
  GroupLegChosen leg = Leg();
  leg.side = "S";
  leg.isDoubled = true;
  leg.lots = 6;
  leg.next.clear();
  leg.found->distance = 0;
  leg.held = {{kCall17500, 2, "B"}, {kPut17400, 1, "S"}};
  leg.offsets = {{kCall17500, 2, ""}, {kPut17400, 1, ""}};
  EXPECT_EQ(Text(leg),
            "leg 1         group order HEDGE: sell 6 (doubled) TX Mar24 17600 call, Delta 0.26 for 0.25; "
            "offsets 2 TX Mar24 17500 call, 1 TX Mar24 17400 put");
  EXPECT_NE(Json("T", leg).find(R"("held":[{"symbol":"ND.O.TWF.TX.202403.C.17500","lots":2,"side":"buy"},)"
                                R"({"symbol":"ND.O.TWF.TX.202403.P.17400","lots":1,"side":"sell"}],)"
                                R"("offsets":[{"symbol":"ND.O.TWF.TX.202403.C.17500","lots":2},)"
                                R"({"symbol":"ND.O.TWF.TX.202403.P.17400","lots":1}],"opens":3})"),
            std::string::npos);
}

TEST(GroupLeg, AFigureThatIsNotThereYetIsSaid) {
  GroupLegChosen leg = Leg();
  leg.found = GroupCandidate{kCall17600, NoValue, 5, true};
  leg.next[0] = {kCall17500, NoValue, 5, false};  // to a target below 0
  EXPECT_EQ(Text(leg),
            "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call, no figure yet for Delta 0.25; next "
            "TX Mar24 "
            "17500 call (no figure yet)");
  EXPECT_NE(Json("T", leg).find(R"("found":true,"figure":null,"distance":null,"next":[{"symbol":)"
                                R"("ND.O.TWF.TX.202403.C.17500","figure":null,"distance":null}])"),
            std::string::npos);
}

TEST(GroupLeg, ADistanceThatHasWrappedIsNoNumber) {
  GroupLegChosen leg = Leg();
  leg.found->distance = -5;
  leg.found->isWrapped = true;
  leg.next.clear();
  EXPECT_EQ(Text(leg),
            "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call, Delta 0.26 for 0.25, too far off to "
            "count");
  EXPECT_NE(Json("T", leg).find(R"("figure":0.26,"distance":null)"), std::string::npos);
}

TEST(GroupLeg, AnOptionOfAnEarlierCycleIsKept) {
  GroupLegChosen leg = Leg();
  leg.found.reset();
  leg.next.clear();
  EXPECT_EQ(Text(leg),
            "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call as before, no option for Delta 0.25");
  EXPECT_NE(Json("T", leg).find(R"("found":false,"figure":null,"distance":null)"), std::string::npos);
  leg.symbol.clear();
  leg.field.clear();
  leg.wanted = 0;
  EXPECT_EQ(Text(leg), "leg 1         group order HEDGE: buy 3 no option for no condition");
}

TEST(GroupLeg, ALegWithoutAConditionTakesTheFirst) {
  GroupLegChosen leg = Leg();
  leg.field.clear();
  leg.found->figure = NoValue;
  leg.wanted = 0;
  EXPECT_EQ(Text(leg), "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call by no condition");
}

TEST(GroupLeg, InWordsFiguresHaveSixPlaces) {
  GroupLegChosen leg = Leg();
  leg.found->figure = Delta(0.25) + 1;
  leg.found->distance = 1;
  EXPECT_EQ(
      Text(leg),
      "leg 1         group order HEDGE: buy 3 TX Mar24 17600 call, Delta 0.25 for 0.25, off by 0; next TX "
      "Mar24 17500 call (0.45, off by 0.2)");
  EXPECT_NE(Json("T", leg).find(R"("figure":0.250000000001,"distance":0.000000000001)"), std::string::npos);
}

TEST(GroupLeg, ALegWithoutLotsBuysNothing) {
  GroupLegChosen leg = Leg();
  leg.lots = 0;
  leg.next.clear();
  EXPECT_EQ(Text(leg),
            "leg 1         group order HEDGE: buy none of TX Mar24 17600 call, Delta 0.26 for 0.25, off by "
            "0.01");
}

TEST(GroupChild, ItsStateIsTold) {
  EXPECT_EQ(Text(GroupChildAnnounced{kOrder, "C1", 1}), "child         group order HEDGE: C1 is there");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "C1", 0, 2, false}),
            "child         group order HEDGE: C1 works, 2 left");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "C1", 6, 2, false}),
            "child         group order HEDGE: C1 is filled in part, 2 left");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "C1", 3, 0, false}),
            "child         group order HEDGE: C1 is filled, none left");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "C1", 10, 0, false}),
            "child         group order HEDGE: C1 is rejected, none left");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "C1", 7, 0, false}),
            "child         group order HEDGE: C1 has state 7, none left");
  EXPECT_EQ(Text(GroupChildChanged{kOrder, "", NoInt, 0, false}),
            "child         group order HEDGE: a record without a key names no state, none left");
  const GroupChildChanged failed{kOrder, "C1", 8, 1, true};
  EXPECT_EQ(Text(failed),
            "child         group order HEDGE: C1 is cancelled, which fails the group order, 1 left");
  EXPECT_EQ(Json("T", failed),
            R"({"at":"T","kind":"child","group_order":"HEDGE","number":3,"child":"C1","state":8,)"
            R"("words":"is cancelled","live":1,"fails":true})");
  EXPECT_EQ(Json("T", GroupChildAnnounced{kOrder, "C1", 1}),
            R"({"at":"T","kind":"child","group_order":"HEDGE","number":3,"child":"C1","state":null,)"
            R"("words":"is there","live":1,"fails":false})");
}

TEST(GroupNextLook, ItsMomentIsTold) {
  const GroupLookPlanned look{kOrder, "2024-03-04T08:45:04.500", 3001};
  EXPECT_EQ(Text(look), "next look     group order HEDGE: at 08:45:04.500");
  EXPECT_EQ(Json("T", look), R"({"at":"T","kind":"next_look","group_order":"HEDGE","number":3,)"
                             R"("time":"2024-03-04T08:45:04.500","timer":3001})");
}

TEST(GroupNoLook, AMomentThatPassedIsTold) {
  EXPECT_EQ(Text(GroupLookPassed{kOrder, 2}), "no look       group order HEDGE: children live");
  EXPECT_EQ(Text(GroupLookPassed{kOrder, 0}), "no look       group order HEDGE: a cycle is under way");
  EXPECT_EQ(Json("T", GroupLookPassed{kOrder, 2}),
            R"({"at":"T","kind":"no_look","group_order":"HEDGE","number":3,"live":2})");
}

TEST(GroupEnd, ItsReasonIsTold) {
  EXPECT_EQ(Text(GroupOrderEnded{kOrder, GroupOrderEnd::kTarget}),
            "end           group order HEDGE: done, target reached");
  EXPECT_EQ(Text(GroupOrderEnded{kOrder, GroupOrderEnd::kNoLeg}),
            "end           group order HEDGE: no option found");
  EXPECT_EQ(Text(GroupOrderEnded{kOrder, GroupOrderEnd::kNothing}),
            "end           group order HEDGE: no order made, nothing will move it");
  EXPECT_EQ(Text(GroupOrderEnded{kOrder, GroupOrderEnd::kReplaced}),
            "end           group order HEDGE: replaced by another order of the same id");
  EXPECT_EQ(Text(GroupOrderEnded{kOrder, GroupOrderEnd::kAsleep}),
            "end           group order HEDGE: its timer was taken by another order, will never wake");
  EXPECT_EQ(Json("T", GroupOrderEnded{kOrder, GroupOrderEnd::kNoLeg}),
            R"({"at":"T","kind":"group_end","group_order":"HEDGE","number":3,"words":"no option found"})");
}

TEST(GroupStringOfAnOrder, TellsPriceLegAndGroup) {
  OrderSent order;
  order.account = "B1/A1";
  order.symbol = kCall17600;
  order.side = "B";
  order.lots = 2;
  order.group = GroupString{kOrder, 1, false, "{G}", "A", "0|3|200|C|2"};
  EXPECT_EQ(Text(order),
            "order         buy 2 TX Mar24 17600 call chasing the market 3 times every 200 ms, leg 1 of group "
            "order HEDGE, in group A, account B1/A1");
  EXPECT_EQ(Json("T", order),
            R"({"at":"T","kind":"order","strategy":"","account":"B1/A1",)"
            R"("symbol":"ND.O.TWF.TX.202403.C.17600","side":"buy","lots":2,"price":null,"closes":false,)"
            R"("group_order":"HEDGE","number":3,"leg":1,"offsets":false,"group":"A","group_id":"{G}",)"
            R"("chase":"0|3|200|C|2","text":""})");
  order.group = GroupString{{"HEDGE", 0, false}, 0, false, "", "", ""};
  EXPECT_EQ(Text(order),
            "order         buy 2 TX Mar24 17600 call at the market, group order HEDGE, account B1/A1");
  order.group = GroupString{kOrder, 2, true, "", "", "odd"};
  EXPECT_EQ(Text(order),
            "order         buy 2 TX Mar24 17600 call chasing the market by odd, leg 2 of group order HEDGE, "
            "offsets what is held, account B1/A1");
}

}  // namespace
}  // namespace iorder

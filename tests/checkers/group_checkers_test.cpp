#include <gmock/gmock.h>

#include "tests/checkers/recorded_day.h"

/// The checkers of group orders are shown a real trace with one thing falsified, in what the engine did or in
/// what it was shown, and must see it.
namespace iorder::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

/// G1 rises: its first cycle offsets two of C.18000, which it holds sold, opens four of C.18100, since a
/// check doubles that leg, and sells a put. Its second cycle comes when all children have ended; then one
/// fails. G2 reaches its target.
constexpr const char* kGroups =
    R"({"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Type": "O", "SearchName": "18000", "ExpDate": "20240320", "product": "TX", "setpriadj": ""}, {"Symbol": "ND.O.TWF.TX.202403.C.18100", "Type": "O", "SearchName": "18100", "ExpDate": "20240320", "product": "TX", "setpriadj": ""}]}
{"record": "OPT.REAL.ND.O.TWF.TX.202403.C.18000", "fields": {"Delta": {"scaled": 60}}}
{"record": "OPT.REAL.ND.O.TWF.TX.202403.C.18100", "fields": {"Delta": {"scaled": 52}}}
{"record": "OPT.REAL.ND.O.TWF.TX.202403.P.18000", "fields": {"Delta": {"scaled": -40}}}
{"record": "OPT.REAL.ND.O.TWF.TX.202403.P.18100", "fields": {"Delta": {"scaled": -48}}}
{"record": "TRADE.EXTENDORDER.SETUP", "items": [{"name": "OPTION", "fields": {"1-ALL": "{\"On\": \"1\", \"Times\": \"3\", \"TimeOut\": \"200\"}"}}]}
{"position": {"strategy": "G1", "items": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Quantity": 2, "Side": 2, "Delta": {"scaled": -120}, "Vanna": {"scaled": 5}}]}}
{"at": "10:00:00", "record": "NordoSystemTime", "fields": {"Speed": 1}, "fire": true}
{"at": "10:00:01", "command": {"StrategyType": "Group", "StrategyID": "G1", "StrategyName": "N", "BrokerID": "B1", "Account": "A1", "Security": "ND.O.TWF.TX.202403", "StopCondition": "Delta=100", "CheckCondition1": "Vanna=10", "CheckRange1": 0.1, "GroupAType": 1, "Order": [{"CallPut": "Call", "Condition": "Delta=0.5", "Qty": 3, "Group": "A"}, {"CallPut": "Put", "Condition": "Delta=-0.5", "Qty": 1, "Group": "A"}]}}
{"at": "10:00:02", "child": {"order": 1, "ExecType": 0}}
{"child": {"order": 2, "ExecType": 0}}
{"child": {"order": 3, "ExecType": 0}}
{"at": "10:00:03", "child": {"order": 1, "ExecType": 3}}
{"child": {"order": 2, "ExecType": 3}}
{"at": "10:00:04", "child": {"order": 3, "ExecType": 3}}
{"at": "10:00:07", "child": {"order": 4, "ExecType": 0}}
{"at": "10:00:08", "child": {"order": 4, "ExecType": 8, "ClientModify": 0}}
{"at": "10:00:11", "command": {"StrategyType": "Group", "StrategyID": "G2", "BrokerID": "B1", "Account": "A1", "Security": "ND.O.TWF.TX.202403", "StopCondition": "Delta=100", "Order": [{"CallPut": "Call", "Condition": "Delta=0.5", "Qty": 1}]}}
{"at": "10:00:12", "child": {"order": 7, "ExecType": 0}}
{"at": "10:00:13", "position": {"strategy": "G2", "items": [{"Symbol": "ND.O.TWF.TX.202403.C.18100", "Quantity": 5, "Side": 1, "Delta": {"scaled": 260}}]}}
{"child": {"order": 7, "ExecType": 3}}
{"at": "10:00:20", "note": ""}
)";

const std::string kOffset = "SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=B,QTY=2,";
const std::string kOpened = "SYMBOL=ND.O.TWF.TX.202403.C.18100,SIDE=B,QTY=4,";
const std::string kPut = "SYMBOL=ND.O.TWF.TX.202403.P.18100,SIDE=S,QTY=1,";

/// Each test falsifies a copy of its own.
CRecordedDay Groups() {
  static const CRecordedDay day(kGroups);
  return day;
}

void ExpectBroken(const std::string& rule, const CRecordedDay& day) {
  EXPECT_THAT(day.BrokenRules(), Contains(rule)) << day.Report();
}

Value Scaled(int64_t units) {
  return units * 10'000'000'000;
}

TEST(GroupCheckers, SeeNothingInATraceThatKeepsTheRules) {
  const CRecordedDay day = Groups();
  EXPECT_THAT(day.BrokenRules(), IsEmpty()) << day.Report();
  EXPECT_EQ(2U, day.Texts(kOffset).size());
  EXPECT_EQ(2U, day.Texts(kOpened).size());
  EXPECT_EQ(2U, day.Texts(kPut).size());
  EXPECT_EQ(1U, day.Texts("STRATEGY=G2").size());
  EXPECT_TRUE(day.Has("CHASEPRICE=0|3|200|C|2"));
}

TEST(LegChecker, SeesMoreLotsOrFewerThanTheLegsOwn) {
  ExpectBroken("legs", Groups().Change(kOpened, "QTY=4", "QTY=5"));
  ExpectBroken("legs", Groups().Change(kOpened, "QTY=4", "QTY=3"));
  ExpectBroken("legs", Groups().Repeat(kPut));
  ExpectBroken("legs", Groups().Drop(kOpened));
}

TEST(LegChecker, SeesALegThatWasNotToBeDoubled) {
  ExpectBroken("legs", Groups().ChangeRead("STRATEGY.POSITION/G1", "Vanna", Scaled(10)));
}

TEST(LegChecker, SeesAnOffsetOfMoreThanIsHeldOrOfItsOwnSide) {
  ExpectBroken("legs", Groups().Change(kOffset, "QTY=2", "QTY=3"));
  ExpectBroken("legs", Groups().ChangeRead("STRATEGY.POSITION/G1", "Side", int32_t{1}));
  ExpectBroken("legs", Groups().Change(kOffset, "C.18000", "C.18200"));
}

TEST(LegChecker, SeesASideThatTurns) {
  ExpectBroken("legs", Groups().Change(kPut, "SIDE=S", "SIDE=B"));
  ExpectBroken("legs", Groups().Change(kOffset, "SIDE=B", "SIDE=S"));
}

TEST(LegChecker, SeesAnOptionThatIsNotTheNearest) {
  ExpectBroken("legs", Groups().Change(kOpened, "C.18100", "C.18000"));
  const std::string nearer = "OPT.REAL.ND.O.TWF.TX.202403.C.18000";
  ExpectBroken("legs", Groups().ChangeRead(nearer, "Delta", Scaled(51)));
  // At one distance the first of the list is taken.
  ExpectBroken("legs", Groups().ChangeRead(nearer, "Delta", Scaled(48)));
}

TEST(CycleChecker, SeesThatAnOrderDoesNotLookAgain) {
  ExpectBroken("cycles", Groups().DropThread("timer 3001"));
}

TEST(CycleChecker, SeesALookByAnotherTimerOrAtAnotherTime) {
  ExpectBroken("cycles", Groups().MoveThread("timer 3001", "timer 3002"));
  ExpectBroken("cycles", Groups().ChangeRead("NordoSystemTime", "Speed", int32_t{2}));
}

TEST(CycleChecker, SeesALookWhileAChildLivesOrBehindAFailedOne) {
  CRecordedDay alive = Groups();
  ExpectBroken("cycles", alive.ChangeRead("child ", "ExecType", int32_t{1}));
  CRecordedDay failed = Groups();
  ExpectBroken("cycles", failed.ChangeRead("child ", "ExecType", int32_t{8}));
}

TEST(CycleChecker, SeesAnOrderThatGoesOnAtItsTargetOrStopsBeforeIt) {
  ExpectBroken("cycles", Groups().ChangeRead("STRATEGY.POSITION/G1", "Delta", Scaled(100)));
  ExpectBroken("cycles", Groups().Drop("STRATEGY=G2"));
}

TEST(CycleChecker, SeesAChildThatIsNotLookedAtOrNotFollowed) {
  ExpectBroken("cycles", Groups().DropRead("child ", BusRead::Kind::kField));
  ExpectBroken("cycles", Groups().DropRead("child ", BusRead::Kind::kFollow));
}

TEST(GroupStringChecker, SeesAWrongKeyOrValue) {
  for (const auto& [from, to] :
       std::vector<std::pair<std::string, std::string>>{{"TYPE=O", "TYPE=F"},
                                                        {"BROKERID=B1", "BROKERID=B2"},
                                                        {"PRICE=0", "PRICE=1"},
                                                        {"ORDERTYPE=10", "ORDERTYPE=1"},
                                                        {"TIMEINFORCE=1", "TIMEINFORCE=2"},
                                                        {"SYNTHETIC=1,", ""},
                                                        {"GROUPTYPE=1", "GROUPTYPE=0"},
                                                        {"GROUPID={", "GROUPID="},
                                                        {"CHASEPRICE=0|3|200|C|2", "CHASEPRICE=0|200|3|C|2"},
                                                        {"CHASEPRICE=0|3|200|C|2", "CHASEPRICE="},
                                                        {"STRATEGY=G1", "STRATEGY=G2"},
                                                        {"STRATEGYNAME=N", "STRATEGYNAME="},
                                                        {"PROCESSID=", "PROCESSID=x"}}) {
    SCOPED_TRACE(from + " becomes " + to);
    ExpectBroken("strings", Groups().Change(kOpened, from, to));
  }
}

TEST(GroupStringChecker, SeesAGroupThatIsNotOfItsOwn) {
  const std::vector<std::string> texts = Groups().Texts(kOpened);
  const auto idOf = [](const std::string& text) { return FieldText(text, "GROUPID").value_or(""); };
  // One that was there before, one that the other leg doesn't share, one on a string that isn't the last.
  CRecordedDay again = Groups();
  for (const std::string& where : {kOpened, kPut}) {
    const std::string text = Groups().Texts(where)[1];
    again.Change(text, idOf(text), idOf(texts[0]));
  }
  ExpectBroken("strings", again);
  ExpectBroken("strings", Groups().Change(kPut, idOf(texts[0]), idOf(texts[1])));
  ExpectBroken("strings", Groups().Change(kOffset, "GROUPID=", "GROUPID=" + idOf(texts[0])));
}

}  // namespace
}  // namespace iorder::testing

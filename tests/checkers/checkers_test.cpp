#include <gmock/gmock.h>

#include "terminal/input_error.h"
#include "tests/checkers/recorded_day.h"
#include "tests/checkers/valuation.h"

/// Each checker is shown a real trace with one thing falsified, and must see it. What it sees in the trace as
/// it was is nothing.
namespace iorder::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

constexpr const char* kWorld =
    R"({"settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.TX=ND.F.TWF.TX\n"}
{"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.18000", "Type": "O", "SearchName": "18000", "ExpDate": "20240320", "product": "TX", "setpriadj": ""}, {"Symbol": "ND.O.TWF.TX.202403.C.18100", "Type": "O", "SearchName": "18100", "ExpDate": "20240320", "product": "TX", "setpriadj": ""}, {"Symbol": "ND.O.TWF.TX.202403.C.18200", "Type": "O", "SearchName": "18200", "ExpDate": "20240320", "product": "TX", "setpriadj": ""}]}
{"record": "Security.Info", "items": [{"name": "ND.O.TWF", "fields": {"ND.O.TWF.TX": "{\"TickSize\":\"0:0.1;10:0.5\",\"Weight\":\"50\"}"}}]}
{"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"at": "10:00:00", "quote": "ND.F.TWF.TX.202403", "price": 18050, "open": 18050}
{"quote": "ND.O.TWF.TX.202403.C.18000", "price": 10, "open": 10, "qty": 1, "volume": 1}
{"quote": "ND.O.TWF.TX.202403.C.18100", "price": 60, "open": 60, "qty": 1, "volume": 1}
{"quote": "ND.O.TWF.TX.202403.C.18200", "price": 5, "open": 5, "qty": 1, "volume": 1}
{"at": "10:00:05", "command": {"StrategyType": "OpenLottery", "StrategyID": "S1", "StrategySN": "1", "Action": 1, "BrokerID": "B1", "Account": "A1", "UserKey1": "U", "Symbol": {"Security": "ND.O.TWF.TX.202403", "CP": "C"}, "Start": {"Time": 845, "Run": 1, "DayOfWeek": [1]}, "Stop": {"Enable": 0, "Time": 1002, "Cancel": 1, "ClosePos": 1, "CloasPosInfo": {"OrderType": "L", "LimitTicks": 2}}, "Cash": 65, "Condition": {"OpenPrice": {"Dn": 1, "Up": 50}, "StrikePrice": {"In": -1, "Out": -1}}, "OrderPrice": {"Type": 0, "Price": 10}}}
{"at": "10:00:06.500", "report": {"order": 1, "ExecType": 0}}
{"report": {"order": 2, "ExecType": 0}}
)";

/// Bought, valued, closed out by a loss limit, and sold.
constexpr const char* kLimit =
    R"({"at": "10:00:07", "report": {"order": 1, "ExecType": 6, "CumQty": 2, "AvgPrice": 9.5}}
{"at": "10:00:08", "quote": "ND.O.TWF.TX.202403.C.18200", "price": 6.3, "qty": 1, "volume": 2}
{"at": "10:00:09", "command": {"StrategyType": "OpenLottery", "StrategyID": "L", "StrategyTag": "S1", "Action": 3, "Loss": {"Enable": 1, "Value": 330}}}
{"at": "10:00:10", "quote": "ND.O.TWF.TX.202403.C.18200", "price": 6.1, "qty": 1, "volume": 3}
{"at": "10:00:11", "report": {"order": 1, "ExecType": 8}}
{"report": {"order": 2, "ExecType": 8}}
{"at": "10:00:12", "report": {"order": 3, "ExecType": 6, "CumQty": 1, "AvgPrice": 6}}
{"at": "10:00:13", "report": {"order": 3, "ExecType": 3, "CumQty": 2, "AvgPrice": 6.5}}
)";

/// The stop time comes while nothing is filled.
constexpr const char* kStopTime = R"({"at": "10:02:10", "report": {"order": 1, "ExecType": 8}}
{"report": {"order": 2, "ExecType": 8}}
{"at": "10:02:20", "note": ""}
)";

const CRecordedDay& LimitDay() {
  static const CRecordedDay day(std::string(kWorld) + kLimit);
  return day;
}

const CRecordedDay& StopTimeDay() {
  static const CRecordedDay day(std::string(kWorld) + kStopTime);
  return day;
}

/// An option is accepted while orders work: they are cancelled to make room for it.
const CRecordedDay& RoomDay() {
  static const CRecordedDay day(
      std::string(kWorld) +
      R"({"at": "10:00:20", "quote": "ND.O.TWF.TX.202403.C.18100", "price": 40, "open": 40}
{"at": "10:00:21", "report": {"order": 1, "ExecType": 8}}
{"report": {"order": 2, "ExecType": 8}}
{"at": "10:00:30", "note": ""}
)");
  return day;
}

/// A day whose account goes before the batch.
const CRecordedDay& NoAccountDay() {
  static const CRecordedDay day = [] {
    std::string lines = kWorld;
    lines.replace(lines.find("{\"at\": \"10:00:00\""), 0,
                  "{\"fault\": {\"account\": \"B1_A1\", \"drop\": true}}\n");
    lines.resize(lines.find("{\"at\": \"10:00:06.500\""));
    return CRecordedDay(lines);
  }();
  return day;
}

void ExpectBroken(const std::string& rule, const CRecordedDay& day) {
  EXPECT_THAT(day.BrokenRules(), Contains(rule)) << day.Report();
}

TEST(Checkers, SeeNothingInTracesThatKeepTheRules) {
  for (const CRecordedDay* const day : {&LimitDay(), &StopTimeDay(), &NoAccountDay()}) {
    EXPECT_THAT(day->BrokenRules(), IsEmpty()) << day->Report();
  }
  EXPECT_TRUE(LimitDay().Has("DoClosePos. bByProfit=1"));
  EXPECT_TRUE(StopTimeDay().Has("Wait Reset."));
  EXPECT_TRUE(NoAccountDay().Has("NewOrder Fail. Account not Ready."));
}

TEST(MessageChecker, SeesAWrongFormOfAMessage) {
  const std::string scanner = "\"OpenPriceOK\":1";
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change(scanner, "\"OpenPriceOK\"", "\"OpenPriceOk\""));
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change(scanner, "\"OpenPriceOK\":1", "\"OpenPriceOK\":1.0"));
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change(scanner, "\"OpenPriceOK\":1", "\"OpenPriceOK\":1,\"X\":1"));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change(scanner, "\"OpenPrice\":10.0,", ""));
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change(scanner, "\"OpenPrice\":10.0", "\"OpenPrice\":10"));
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change(scanner, "\"OpenPrice\":10.0", "\"OpenPrice\":10.1234567"));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change(scanner, "\"StrategySN\":\"1\",", ""));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change(scanner, "\"Scanner\"", "\"Scan\""));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change(scanner, "}}", "}"));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Change("\"PnL\":-450.0", "-450.0", "-450.012"));
}

TEST(MessageChecker, SeesAMessageOfAnotherMoment) {
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change("\"OpenPriceOK\":1", "\"Time\":100005", "\"Time\":100006"));
  ExpectBroken("messages",
               CRecordedDay(LimitDay())
                   .Change("\"UpdateTime\"", "\"UpdateDate\":20240304", "\"UpdateDate\":20240305"));
}

TEST(MessageChecker, SeesThatTheTopicsDiffer) {
  ExpectBroken("messages",
               CRecordedDay(LimitDay())
                   .Drop("{\"StrategyType\":\"OpenLottery\",\"StrategyTag\":\"S1\",\"StrategyID\":\"S1\","
                         "\"StrategySN\":\"1\",\"MsgType\":\"ClearReport\"}"));
  ExpectBroken("messages", CRecordedDay(LimitDay()).Drop("UpdateStatus. Status="));
}

TEST(MessageChecker, SeesATotalThatIsToldAgainOrByAStrategy) {
  const std::string total =
      "<CIntelligentOrder>{\"StrategyType\":\"OpenLottery\",\"StrategyTag\":\"S1\",\"MsgType\":"
      "\"TotalProfit\"";
  ExpectBroken("messages", CRecordedDay(LimitDay()).Repeat(total));
  ExpectBroken("messages",
               CRecordedDay(LimitDay()).Change("\"MsgType\":\"Profit\"", "\"Profit\"", "\"TotalProfit\""));
}

TEST(OrderChecker, SeesAWrongOrderString) {
  const std::string buy = "NewOrder. TYPE=O";
  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"TYPE=O", "TYPE=F"},
           {"QTY=3", "QTY=101"},
           {"QTY=3", "QTY=0"},
           {"PRICE=100000000000", "PRICE=100500000000"},
           {"PRICE=100000000000", "PRICE=-9223372036854775808"},
           {"ORDERTYPE=2", "ORDERTYPE=1"},
           {"POSITIONEFFECT=0", "POSITIONEFFECT=1"},
           {"SYNTHETIC=0,", ""},
           {"USERKEY1=U", "USERKEY1=V"},
           {"USERKEY2=OpenLottery_S1_1", "USERKEY2=OpenLottery_S2_1"},
           {"ACCOUNT=A1", "ACCOUNT=A2"}}) {
    CRecordedDay day(LimitDay());
    ExpectBroken("orders", day.Change(buy, from, to));
  }
  ExpectBroken("orders", CRecordedDay(LimitDay()).Drop(buy));
  ExpectBroken("orders", CRecordedDay(LimitDay()).OnThread("TYPE=O,", "timer 200"));
}

TEST(OrderChecker, SeesAWrongSaleOrCancel) {
  const std::string sale = "SIDE=S";
  ExpectBroken("orders", CRecordedDay(LimitDay()).Change(sale, "ORDERTYPE=25", "ORDERTYPE=1"));
  ExpectBroken("orders",
               CRecordedDay(LimitDay()).Change(sale, "PRICE=-9223372036854775808", "PRICESTRING=BID-3T"));
  ExpectBroken("orders", CRecordedDay(LimitDay()).Change(sale, "QTY=2", "QTY=0"));
  ExpectBroken("orders", CRecordedDay(LimitDay()).Change("CancelOrder. ", "REPORTID=R1", "REPORTID=R1,X=1"));
}

TEST(AccountChecker, SeesAnOrderWithoutItsAccountAndARefusalWithIt) {
  ExpectBroken(
      "accounts",
      CRecordedDay(LimitDay()).Change("NewOrder. TYPE", "NewOrder. ", "NewOrder Fail. Account not Ready. "));
  ExpectBroken("accounts", CRecordedDay(NoAccountDay())
                               .Change("NewOrder Fail. Account not Ready. TYPE",
                                       "NewOrder Fail. Account not Ready. ", "NewOrder. "));
}

TEST(BatchChecker, SeesWrongLotsAWrongSumAndAWrongStamp) {
  const std::string buy = "NewOrder. TYPE=O";
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change(buy, "QTY=3", "QTY=4"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change(buy, "QTY=3", "QTY=2"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change("llTotalCashOrder", "=60", "=65"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change(buy, "_1@100005000", "_1@100005001"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change("SIDE=S", "_1@100005000", "_1@100010000"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change(buy, "C.18200", "C.17900"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Change(buy, ".C.18200", ".X.18200"));
  ExpectBroken("cash", CRecordedDay(LimitDay()).Drop(buy));
}

TEST(AcceptedChecker, SeesWhatWasNotAccepted) {
  const std::string accepted = "\"OpenPriceOK\":1";
  ExpectBroken("accepted", CRecordedDay(LimitDay()).Drop(accepted));
  ExpectBroken("accepted", CRecordedDay(LimitDay()).Change("NewOrder. TYPE", "C.18200", "C.18100"));
  ExpectBroken("accepted",
               CRecordedDay(LimitDay()).Change(accepted, "\"OpenPriceOK\":1", "\"OpenPriceOK\":0"));
  ExpectBroken(
      "accepted",
      CRecordedDay(LimitDay()).Change("\"OpenPriceOK\":0", "\"OpenPriceOK\":0", "\"OpenPriceOK\":1"));
  ExpectBroken("accepted",
               CRecordedDay(LimitDay()).Change(accepted, "\"OpenPrice\":10.0", "\"OpenPrice\":10.1"));
}

TEST(CancelChecker, SeesACancelOfWhatDoesNotWork) {
  ExpectBroken("cancels", CRecordedDay(LimitDay()).Change("CancelOrder. ", "REPORTID=R1", "REPORTID=R7"));
  ExpectBroken("cancels",
               CRecordedDay(LimitDay()).Change("strReportID=R2, lExecType=0", "lExecType=0", "lExecType=3"));
  ExpectBroken("cancels", CRecordedDay(LimitDay()).Drop("CancelOrder. REPORTID=R2"));
}

TEST(ReportChecker, SeesAWrongResultAndAWrongAction) {
  ExpectBroken("reports",
               CRecordedDay(LimitDay()).Change("\"Result\":1,\"Action\":1", "\"Result\":1", "\"Result\":2"));
  ExpectBroken("reports",
               CRecordedDay(LimitDay()).Change("\"Result\":2,\"Action\":2", "\"Result\":2", "\"Result\":-2"));
  ExpectBroken("reports", CRecordedDay(LimitDay()).Drop("\"Result\":3,\"Action\":3"));
  ExpectBroken("reports", CRecordedDay(LimitDay()).Drop("CancelOrder. REPORTID=R1"));
  CRecordedDay quiet(LimitDay());
  ExpectBroken("reports", quiet.Change("strReportID=R1, lExecType=8", "lAction=3", "lAction=1")
                              .Change("\"Result\":3,\"Action\":3", "\"Action\":3", "\"Action\":1"));
  ExpectBroken("reports", CRecordedDay(LimitDay()).OnThread("OnReportUpdate. ", "timer 200"));
}

TEST(PositionChecker, SeesAWrongSumOfFills) {
  ExpectBroken("positions", CRecordedDay(LimitDay()).Change("\"CumQty\":2", "\"CumQty\":2", "\"CumQty\":3"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"CumQty\":2", "\"AvgPrice\":9.5", "\"AvgPrice\":9.6"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"CumQty\":2", "\"Position\":2", "\"Position\":1"));
  ExpectBroken("positions", CRecordedDay(LimitDay()).Change("\"CumQty\":2", ",\"Position\":2", ""));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"CloseQty\":1", "\"CloseQty\":1", "\"CloseQty\":2"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"CloseQty\":2", "\"CloseQty\":2", "\"CloseQty\":3"));
  ExpectBroken(
      "positions",
      CRecordedDay(LimitDay()).Change("\"CloseQty\":2", "\"CloseAvgPrice\":6.5", "\"CloseAvgPrice\":6.25"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"CloseQty\":2", "\"Position\":0", "\"Position\":1"));
}

TEST(PositionChecker, SeesAWrongSale) {
  ExpectBroken("positions", CRecordedDay(LimitDay()).Change("SIDE=S", "QTY=2", "QTY=3"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"OrderPrice\":\"MWP\"", "\"Qty\":2", "\"Qty\":1"));
  ExpectBroken("positions",
               CRecordedDay(LimitDay()).Change("\"OrderPrice\":\"MWP\"", "\"Result\":0", "\"Result\":1"));
  ExpectBroken("positions", CRecordedDay(LimitDay()).Drop("\"OrderPrice\":\"MWP\""));
  ExpectBroken(
      "positions",
      CRecordedDay(LimitDay())
          .Repeat("UpdateStatus. "
                  "Status={\"StrategyType\":\"OpenLottery\",\"StrategyTag\":\"S1\",\"StrategyID\":\"S1\","
                  "\"StrategySN\":\"1\",\"MsgType\":\"Order\",\"Data\":{\"Stamp\":\"0\",\"Symbol\":\"ND.O."
                  "TWF.TX.202403.C.18200\",\"Date\":20240304,\"Time\":100010,\"OrderPrice\":\"MWP\""));
}

TEST(PositionChecker, SeesALimitThatClosesOutAgain) {
  CRecordedDay day(LimitDay());
  ExpectBroken("positions", day.Repeat("DoClosePos End.")
                                .Repeat("DoClosePos. bByProfit=1")
                                .Move("DoClosePos End.", "DoClosePos. bByProfit=1"));
}

TEST(PositionChecker, SeesAFillThatIsNotCounted) {
  const std::string close = "\"CloseAvgPrice\":6.5,\"CloseQty\":2,";
  CRecordedDay day(LimitDay());
  day.Change(close, close, "").Change("\"UpdateTime\":100013", "\"Position\":0", "\"Position\":1");
  // By hand a fill may be told before its detail is there, so that it isn't counted yet.
  EXPECT_THAT(day.BrokenRules(), IsEmpty()) << day.Report();
}

TEST(ProfitChecker, SeesAWrongValue) {
  const std::string value = "OnPositionProfit Result. ";
  for (const auto& [from, to] :
       std::vector<std::pair<std::string, std::string>>{{"dbProfit=-450", "dbProfit=-449"},
                                                        {"dbTotalProfit=-450", "dbTotalProfit=-451"},
                                                        {"llPrice=50000000000", "llPrice=51000000000"},
                                                        {"llAvgPrice=95000000000", "llAvgPrice=94000000000"},
                                                        {"lCumQty=2", "lCumQty=3"}}) {
    CRecordedDay day(LimitDay());
    ExpectBroken("profit", day.Change(value, from, to));
  }
}

TEST(ProfitChecker, SeesAWrongMessage) {
  ExpectBroken("profit", CRecordedDay(LimitDay()).Change("\"PnL\":-320.0", "-320.0", "-320.01"));
  ExpectBroken("profit", CRecordedDay(LimitDay()).Change("\"PnL\":-320.0", "\"Last\":6.3", "\"Last\":6.5"));
  const std::string total = "\"Cost\":950,\"PnL\":-320.0}";
  const auto falsified = [&](const std::string& to) {
    CRecordedDay day(LimitDay());
    day.Change(total, total, to).Change(total, total, to);  // the line of the log, and what is sent
    return day;
  };
  ExpectBroken("profit", falsified("\"Cost\":951,\"PnL\":-320.0}"));
  ExpectBroken("profit", falsified("\"Cost\":950,\"PnL\":-320.01}"));
}

TEST(LimitChecker, SeesALimitThatFiresWronglyOrNotAtAll) {
  const std::string fired = "CalPositionProfit.L. ";
  const std::string told = "CalPositionProfit.ClosPos. ";
  ExpectBroken("limits", CRecordedDay(LimitDay()).Drop(fired));
  ExpectBroken("limits", CRecordedDay(LimitDay()).Drop(told));
  ExpectBroken("limits", CRecordedDay(LimitDay()).Change(fired, "=340.0", "=341.0"));
  ExpectBroken("limits", CRecordedDay(LimitDay()).Change(fired, "=330", "=300"));
  ExpectBroken("limits",
               CRecordedDay(LimitDay())
                   .Change("New Intelligent Order : {\"StrategyType\":\"OpenLottery\",\"StrategyID\":\"L\"",
                           "\"Value\":330", "\"Value\":341"));
  ExpectBroken("limits",
               CRecordedDay(LimitDay())
                   .Change("New Intelligent Order : {\"StrategyType\":\"OpenLottery\",\"StrategyID\":\"L\"",
                           "\"Value\":330", "\"Value\":320"));
  ExpectBroken("limits", CRecordedDay(LimitDay()).Move(fired, "\"PnL\":-320.0"));
}

TEST(EndChecker, SeesABuyAfterTheEnd) {
  ExpectBroken("ends", CRecordedDay(StopTimeDay()).Move("NewOrder. TYPE", "strReportID=R2, lExecType=8"));
  CRecordedDay limited(LimitDay());
  limited.Drop("strReportID=R1, lExecType=8")
      .Drop("strReportID=R2, lExecType=8")
      .Drop("strReportID=R3", true);
  ExpectBroken("ends", limited.Move("NewOrder. TYPE", "ProcessCalPositionProfit End."));
  CRecordedDay stopped(StopTimeDay());
  ExpectBroken("ends", stopped.Change("Wait Reset.", "Wait Reset.", "Stop.")
                           .Move("NewOrder. TYPE", "strReportID=R2, lExecType=8"));
}

TEST(EndChecker, SeesAnEndingAgainstItsFlags) {
  ExpectBroken("ends", CRecordedDay(StopTimeDay()).Drop("DoCancelOrderOpen Done."));
  ExpectBroken("ends", CRecordedDay(StopTimeDay()).Drop("DoClosePos. bByProfit=0"));
  ExpectBroken(
      "ends", CRecordedDay(StopTimeDay()).Change("New Intelligent Order : ", "\"Cancel\":1", "\"Cancel\":0"));
  ExpectBroken(
      "ends",
      CRecordedDay(StopTimeDay()).Change("New Intelligent Order : ", "\"ClosePos\":1", "\"ClosePos\":0"));
}

TEST(ReportChecker, SeesAReportOfAnotherBatch) {
  ExpectBroken("reports", CRecordedDay(LimitDay())
                              .Change("strReportID=R2, lExecType=8", "strReportID=R2", "strReportID=R3")
                              .Change("USERKEY2=OpenLottery_S1_1@100005000,USERKEY3=,PROCESSID", "@100005000",
                                      "@100004000")
                              .Change("SIDE=S", "@100005000", "@100004000"));
}

TEST(ProfitChecker, SeesAValueThatIsNotTold) {
  ExpectBroken("profit", CRecordedDay(LimitDay())
                             .Drop("UpdateStatus. "
                                   "Status={\"StrategyType\":\"OpenLottery\",\"StrategyTag\":\"S1\","
                                   "\"StrategyID\":\"S1\",\"StrategySN\":\"1\",\"MsgType\":\"Profit\"",
                                   true));
}

TEST(StateChecker, SeesThatNoBatchFollowsWhenRoomIsMade) {
  CRecordedDay day(RoomDay());
  EXPECT_THAT(day.BrokenRules(), IsEmpty()) << day.Report();
  day.Drop("DoPlaceOrder. m_lStatus=2").Drop("DoPlaceOrder. m_lStatus=2");
  ExpectBroken("states", day);
}

TEST(StateChecker, SeesAStateToWhichNothingLeads) {
  for (const auto& [where, from, to] : std::vector<std::tuple<std::string, std::string, std::string>>{
           {"DoPlaceOrder. m_lStatus=2", "=2", "=6"},
           {"DoPlaceOrder. m_lStatus=2", "=2", "=1"},
           {"DoPlaceOrder Done. m_lStatus=4", "=4", "=2"},
           {"strReportID=R1, lExecType=0", "m_lStatus=4", "m_lStatus=2"},
           {"strReportID=R1, lExecType=6", "m_lStatus=8", "m_lStatus=2"},
           {"DoCancelOrderOpen. m_lStatus=-1", "=-1", "=8"},
           {"DoCancelOrderOpen Done. m_lStatus=6", "=6", "=-1"},
           {"strReportID=R2, lExecType=8", "m_lStatus=6", "m_lStatus=2"}}) {
    CRecordedDay day(LimitDay());
    SCOPED_TRACE(where + " becomes " + to);
    ExpectBroken("states", day.Change(where, from, to));
  }
  ExpectBroken("states", CRecordedDay(LimitDay()).Drop("DoCancelOrderOpen. m_lStatus=-1"));
  ExpectBroken("states", CRecordedDay(StopTimeDay()).Change("DoCancelOrderOpen. m_lStatus=2", "=2", "=4"));
  ExpectBroken(
      "states",
      CRecordedDay(StopTimeDay()).Change("strReportID=R1, lExecType=8", "m_lStatus=-1", "m_lStatus=6"));
}

TEST(Valuation, KnowsTheRoundingsOfMessages) {
  const Money profit = ProfitOf(30'000'000'000, 25'000'000'000, 3, 50.0);
  EXPECT_EQ(75.0L, profit.exact);
  EXPECT_TRUE(IsCutToHundredths(profit, 75.0));
  EXPECT_TRUE(IsCutToHundredths(profit, 74.99));  // the terms of 5e-12 may lead below it
  EXPECT_FALSE(IsCutToHundredths(profit, 75.01));
  EXPECT_TRUE(IsCutToHundredths({.exact = -1.239L}, -1.23));
  EXPECT_FALSE(IsCutToHundredths({.exact = -1.239L}, -1.24));
  EXPECT_TRUE(IsToldAsTotal({.exact = 1.239L}, 1.23));
  EXPECT_TRUE(IsToldAsTotal({.exact = 1.2396L}, 1.24));
  EXPECT_TRUE(IsCutToWhole({.exact = 99.9L}, 99));
  EXPECT_FALSE(IsCutToWhole({.exact = 99.9L}, 100));
  EXPECT_TRUE(IsCutToHundredths({.exact = 1e9L}, -922337203.68));
}

TEST(Checkers, LeaveOutTheRulesThatADaySays) {
  const CDayFolder folder;
  const std::string head = "{\"day\": {\"start\": \"2024-03-04T09:59:50\"}}\n";
  EXPECT_THAT(RulesLeftOut(folder.Write("a", head)), IsEmpty());
  EXPECT_THAT(RulesLeftOut(folder.Write("b", head + "{\"note\": \"checkers: leave out cash: by hand\"}\n")),
              ::testing::ElementsAre("cash"));
  EXPECT_THROW(RulesLeftOut(folder.Write("c", head + "{\"note\": \"checkers: leave out cahs: why\"}\n")),
               InputError);
}

TEST(Checkers, NameEachRuleOnce) {
  const std::vector<std::string> rules = CCheckers::Rules();
  const std::set<std::string> all(rules.begin(), rules.end());
  EXPECT_EQ(rules.size(), all.size());
  const Day day;
  EXPECT_THAT(CCheckers(day, all).Finish(), IsEmpty());
}

}  // namespace
}  // namespace iorder::testing

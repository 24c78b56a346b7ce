#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "app/day_totals.h"
#include "app/happening_json.h"
#include "app/happening_reader.h"
#include "app/happening_text.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kOrder =
    "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=B,QTY=3,PRICE=125000000000,"
    "ORDERTYPE=2,"
    "POSITIONEFFECT=0,TIMEINFORCE=1,SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=,USERKEY2=OpenLottery_S1_1@"
    "084500000,"
    "USERKEY3=,PROCESSID=0";

class HappeningTest : public testing::Test {
 protected:
  std::vector<std::string> words;
  std::vector<std::string> json;
  CDayTotals totals;
  CHappeningReader reader{[this](const Happening& happening) {
    words.push_back(Words(happening));
    json.push_back(Json("T", happening));
    totals.Add(happening);
  }};

  void Log(const std::string& text) { reader.OnLog("<CIntelligentOrder>" + text); }
  void StrategyLog(const std::string& text) { Log("[OpenLottery]<OpenLottery_S1_1.1> " + text); }
};

TEST_F(HappeningTest, AnOrderIsTold) {
  reader.OnCommand("TRADE.NEWORDER", kOrder);
  EXPECT_THAT(words, ElementsAre("order         buy 3 TX Mar24 18000 call at 12.5, account B1/A1"));
  EXPECT_THAT(json, ElementsAre(HasSubstr(
                        R"({"at":"T","kind":"order","strategy":"OpenLottery_S1_1","account":"B1/A1",)"
                        R"("symbol":"ND.O.TWF.TX.202403.C.18000","side":"buy","lots":3,"price":12.5,)"
                        R"("closes":false,"text":"TYPE=O,)")));
}

TEST_F(HappeningTest, AMarketOrderHasNoPrice) {
  reader.OnCommand("TRADE.NEWORDER",
                   "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.P.17000,SIDE=S,QTY=2,"
                   "PRICE=-9223372036854775808,ORDERTYPE=25,POSITIONEFFECT=1");
  reader.OnCommand(
      "TRADE.NEWORDER",
      "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.P.17000,SIDE=S,QTY=2,PRICESTRING=BID-3T,"
      "ORDERTYPE=2,POSITIONEFFECT=1");
  EXPECT_THAT(words,
              ElementsAre("order         sell 2 TX Mar24 17000 put at the market, closes, account B1/A1",
                          "order         sell 2 TX Mar24 17000 put at BID-3T, closes, account B1/A1"));
  EXPECT_THAT(json[0], HasSubstr(R"("price":null)"));
  EXPECT_THAT(json[1], HasSubstr(R"("price":"BID-3T")"));
}

TEST_F(HappeningTest, AnOrderOfAGroupOrderIsOfNoStrategy) {
  reader.OnCommand("TRADE.NEWORDER",
                   "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=S,QTY=2,PRICE=0,"
                   "ORDERTYPE=10,POSITIONEFFECT=4,TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE=1,GROUPID={G},"
                   "CHASEPRICE=0|3|200|C|2,STRATEGY=HEDGE,STRATEGYNAME=h,USERKEY1=,USERKEY2=mine,USERKEY3=,"
                   "PROCESSID=0");
  EXPECT_THAT(words, ElementsAre("order         sell 2 TX Mar24 18000 call chasing the market 3 times every "
                                 "200 ms, group order HEDGE, account B1/A1"));
  EXPECT_THAT(json, ElementsAre(HasSubstr(
                        R"("kind":"order","strategy":"","account":"B1/A1",)"
                        R"("symbol":"ND.O.TWF.TX.202403.C.18000","side":"sell","lots":2,"price":null,)"
                        R"("closes":false,"group_order":"HEDGE","number":0,"leg":null,"offsets":false,)"
                        R"("group":"","group_id":"{G}","chase":"0|3|200|C|2","text":"TYPE=O,)")));
  EXPECT_THAT(totals.Strategies(), IsEmpty());
  EXPECT_EQ(totals.Orders(), 1);
}

TEST_F(HappeningTest, ACancelIsTold) {
  reader.OnCommand("TRADE.CANCELORDER", "REPORTID=R7");
  EXPECT_THAT(words, ElementsAre("cancel        report R7"));
  EXPECT_EQ(totals.Cancels(), 1);
}

TEST_F(HappeningTest, AVerdictIsToldOnce) {
  const char* const message =
      R"({"StrategyType":"OpenLottery","StrategyTag":"S1","StrategyID":"S1","StrategySN":"1","MsgType":"Scanner","Data":)"
      R"({"Stamp":"0","Symbol":"ND.O.TWF.TX.202403.C.18000","Date":20240304,"Time":84500,"OpenPrice":45.0,"OpenPriceOK":1}})";
  reader.OnCommand("MSG.NewStrategyOrder", message);
  reader.OnCommand("API_MSG.NewStrategyOrder", message);
  EXPECT_THAT(words, ElementsAre("accepted      TX Mar24 18000 call opened at 45.0"));
  EXPECT_EQ(totals.Strategies().at("OpenLottery_S1_1").accepted, 1);
}

TEST_F(HappeningTest, AnAnnouncementIsNoAnswer) {
  const std::string begin =
      R"({"StrategyType":"OpenLottery","StrategyTag":"S1","StrategyID":"S1","StrategySN":"1","MsgType":"Order","Data":)";
  reader.OnCommand("MSG.NewStrategyOrder",
                   begin +
                       R"({"Stamp":"0","Symbol":"X","Date":20240304,"Time":84500,"OrderPrice":12.5,"Qty":3,)"
                       R"("Result":0,"Action":1}})");
  EXPECT_THAT(words, IsEmpty());
  reader.OnCommand("MSG.NewStrategyOrder", begin + R"({"Stamp":"0","Symbol":"X","Result":-101,"Action":1}})");
  EXPECT_THAT(words, ElementsAre("refused       order for X: the account isn't connected"));
}

TEST_F(HappeningTest, ACancelIsAnnouncedAndAnswered) {
  const std::string begin =
      R"({"StrategyType":"OpenLottery","StrategyTag":"S1","StrategyID":"S1","StrategySN":"1","MsgType":"Order","Data":)";
  reader.OnCommand(
      "MSG.NewStrategyOrder",
      begin + R"({"Stamp":"0","Symbol":"X","Date":20240304,"Time":84500,"Result":0,"Action":3}})");
  EXPECT_THAT(words, IsEmpty());
  reader.OnCommand("MSG.NewStrategyOrder", begin + R"({"Stamp":"0","Symbol":"X","Result":-101,"Action":3}})");
  reader.OnCommand("MSG.NewStrategyOrder", begin + R"({"Stamp":"0","Symbol":"X","Result":3,"Action":3}})");
  EXPECT_THAT(words, ElementsAre("refused       cancel for X: the account isn't connected",
                                 "cancelled     order for X"));
}

TEST_F(HappeningTest, StatesAreReadFromTheLog) {
  Log("[OpenLottery] Start. strStrategyKey=OpenLottery_S1_1, idx=0, pStrategy=1.");
  StrategyLog("AfterParseOrderInfo. StartRun=NO, hhmm=830.");
  StrategyLog("Reset. strRoot={}.");
  StrategyLog("TimeStamp=0.");
  StrategyLog("Start. m_lStatus=1.");
  StrategyLog("DoPlaceOrder. m_lStatus=2.");
  StrategyLog("DoPlaceOrder Done. m_lStatus=4, llTotalCashOrder=3400.");
  StrategyLog("Wait Reset.");
  StrategyLog("Stop.");
  Log("DelStrategy. StrategyKey=OpenLottery_S1_1.");
  EXPECT_THAT(words, ElementsAre("strategy      OpenLottery_S1_1 is there",
                                 "state         OpenLottery_S1_1: building the chain",
                                 "state         OpenLottery_S1_1: ready to start",
                                 "state         OpenLottery_S1_1: running, no orders out",
                                 "batch         OpenLottery_S1_1: the orders cost 3400",
                                 "state         OpenLottery_S1_1: orders are out",
                                 "end           OpenLottery_S1_1: by stop time",
                                 "state         OpenLottery_S1_1: not running",
                                 "state         OpenLottery_S1_1: stopped by command",
                                 "strategy      OpenLottery_S1_1 is gone"));
}

TEST_F(HappeningTest, ACommandThatIsNoJsonIsTold) {
  Log("JSON Parse Fail! GetParseError=1, GetErrorOffset=0, strOrderInfo=");
  EXPECT_THAT(words, ElementsAre("not readable  the command isn't JSON: GetParseError=1, GetErrorOffset=0"));
}

TEST_F(HappeningTest, OddTextsTellNothing) {
  Log("[OpenLottery]<no end");
  Log("anything else");
  StrategyLog("DoPlaceOrder. m_lStatus=x.");
  reader.OnCommand("MSG.NewStrategyOrder", "{broken");
  reader.OnCommand("MSG.NewStrategyOrder", R"({"MsgType":"ClearReport"})");
  reader.OnCommand("MSG.NewStrategyOrder", R"({"MsgType":"Scanner","Data":5})");
  EXPECT_THAT(words, IsEmpty());
}

TEST_F(HappeningTest, TheTableClosesTheDay) {
  Log("[OpenLottery] Start. strStrategyKey=OpenLottery_S1_1, idx=0, pStrategy=1.");
  reader.OnCommand("TRADE.NEWORDER", kOrder);
  StrategyLog("DoPlaceOrder Done. m_lStatus=4, llTotalCashOrder=1875.");
  reader.OnFault("timer 200", "0x80070057", "index");
  EXPECT_EQ(totals.Table(),
            "strategy          state           accepted  orders    lots          cash  ended by\n"
            "OpenLottery_S1_1  orders are out         0       1       3          1875  -\n"
            "1 orders, 0 cancels, 1 faults\n");
  EXPECT_EQ(
      totals.Json({"deadlock"}),
      R"({"kind":"end","strategies":[{"strategy":"OpenLottery_S1_1","state":4,"words":"orders are out",)"
      R"("accepted":0,"orders":1,"lots":3,"cash":1875,"ended":""}],"positions":[],"tags":[],"group_orders":[],)"
      R"("orders":1,"cancels":0,"faults":1,"errors":["deadlock"]})");
}

/// Reports of two orders, their positions and their profit, as the engine tells them.
class PositionHappeningTest : public HappeningTest {
 protected:
  void Report(const std::string& id, int lots, const std::string& average, int sent, int action) {
    StrategyLog("OnReportUpdate. strSymbol=ND.O.TWF.TX.202403.C.18000, strReportID=" + id +
                ", lExecType=6, llPrice=150000000000, llAvgPrice=" + average +
                ", lOrderType=2, m_lStatus=8, lSendQty=" + std::to_string(sent) +
                ", lCumQty=" + std::to_string(lots) +
                ", lLeavesQty=0, lPositionEffect=0, lAction=" + std::to_string(action) + ", m_strStamp=0.");
  }
  void Message(const std::string& kind, const std::string& members) {
    reader.OnCommand("MSG.NewStrategyOrder",
                     R"({"StrategyType":"OpenLottery","StrategyTag":"T","StrategyID":"S1","StrategySN":"1",)"
                     R"("MsgType":")" +
                         kind + R"(","Data":{"Stamp":"0","Symbol":"ND.O.TWF.TX.202403.C.18000",)" + members +
                         "}}");
  }
  void Total(const std::string& data) {
    reader.OnCommand(
        "API_MSG.NewStrategyOrder",
        R"({"StrategyType":"OpenLottery","StrategyTag":"T","MsgType":"TotalProfit","Data":)" + data + "}");
  }
};

TEST_F(PositionHappeningTest, EachFillHasItsOwnPrice) {
  Report("R1", 1, "150000000000", 3, 1);
  words.clear();  // the state that shows with it
  Report("R1", 3, "145000000000", 3, 1);
  Report("R1", 3, "145000000000", 3, 1);
  Report("R1", 2, "145000000000", 3, 1);
  Report("R2", 2, "160000000000", 2, 2);
  EXPECT_THAT(words, ElementsAre("filled        bought 2 TX Mar24 18000 call at 14.25, 3 of 3",
                                 "filled        sold 2 TX Mar24 18000 call at 16, 2 of 2"));
}

TEST_F(PositionHappeningTest, APositionIsToldWhenItChanges) {
  const char* const bought =
      R"("UpdateDate":20240304,"UpdateTime":84500,"CumQty":3,"AvgPrice":14.5,"LeavesQty":0,"ExecType":3,"Position":3)";
  Message("Report", bought);
  Message("Report", bought);
  Message("Report",
          R"("UpdateDate":20240304,"UpdateTime":84500,"CloseAvgPrice":16.0,"CloseQty":2,"Position":1)");
  Message("Report", R"("UpdateDate":20240304,"UpdateTime":84500,"Qty":3,"LeavesQty":3,"ExecType":0)");
  EXPECT_THAT(words,
              ElementsAre("position      OpenLottery_S1_1: TX Mar24 18000 call holds 3, bought 3 at 14.5",
                          "position      OpenLottery_S1_1: TX Mar24 18000 call holds 1, bought 3 at 14.5, "
                          "sold 2 at 16"));
}

TEST_F(PositionHappeningTest, ALimitIsToldOnceAndEndsTheRun) {
  const auto fire = [this](const std::string& line) {
    Log("[OpenLottery] CalPositionProfit." + line);
    Log("[OpenLottery] CalPositionProfit.ClosPos. strStrategyID=S1, strStrStrategyTag=T, "
        "m_strStrStrategySN=1.");
  };
  fire("P. strStrategyTag=T, dbTotalPnL=1425.000000, llProfitValue=500.");
  fire("P. strStrategyTag=T, dbTotalPnL=1525.000000, llProfitValue=500.");
  EXPECT_THAT(words, ElementsAre("limit         T: the profit limit of 500 is reached with 1425",
                                 "end           OpenLottery_S1_1: by profit limit"));
  words.clear();
  StrategyLog("Reset. strRoot={}.");
  words.clear();
  fire("LP. strStrategyTag=T, dbTotalPnLP=12.500000, dbLossValueP=10.000000.");
  EXPECT_THAT(words,
              ElementsAre("limit         T: the loss limit of 10 is reached with 12.5 percent of the cost",
                          "end           OpenLottery_S1_1: by loss limit"));
}

TEST_F(PositionHappeningTest, ALimitIsToldAnewOnlyAfterAStartInItsTag) {
  const auto begin = [this](const std::string& id, const std::string& tag) {
    Log("[OpenLottery]<OpenLottery_" + id + "_1.1> Reset. strRoot={}.");
    reader.OnCommand("MSG.NewStrategyOrder", R"({"StrategyType":"OpenLottery","StrategyTag":")" + tag +
                                                 R"(","StrategyID":")" + id +
                                                 R"(","StrategySN":"1","MsgType":"ClearReport"})");
    words.clear();
  };
  const auto check = [this](const std::string& tag) {
    Log("[OpenLottery] CalPositionProfit.P. strStrategyTag=" + tag + ", dbTotalPnL=900.000000, " +
        "llProfitValue=500.");
  };
  const std::string told = "limit         T: the profit limit of 500 is reached with 900";
  check("T");
  check("U");
  words.clear();
  begin("S2", "U");
  check("T");
  EXPECT_THAT(words, IsEmpty());
  Log("[OpenLottery] CalPositionProfit.ClosPos. strStrategyID=S1, strStrStrategyTag=T, "
      "m_strStrStrategySN=1.");
  EXPECT_THAT(words, ElementsAre("end           OpenLottery_S1_1: by profit limit"));
  begin("S1", "T");
  // A strategy of the tag that starts between the check and the end.
  Log("[OpenLottery] CalPositionProfit.ClosPos. strStrategyID=S3, strStrStrategyTag=T, "
      "m_strStrStrategySN=1.");
  EXPECT_THAT(words, ElementsAre("end           OpenLottery_S3_1: by profit limit"));
  words.clear();
  check("T");
  check("T");
  EXPECT_THAT(words, ElementsAre(told));
}

TEST_F(PositionHappeningTest, AnEndWhoseLimitWasNotSeenIsByALimit) {
  Log("[OpenLottery] CalPositionProfit.ClosPos. strStrategyID=S1, strStrStrategyTag=T, "
      "m_strStrStrategySN=1.");
  EXPECT_THAT(words, ElementsAre("end           OpenLottery_S1_1: by limit"));
}

TEST_F(PositionHappeningTest, AStrategyThatIsDeletedAndStartedAnewHasALifeOfItsOwn) {
  Log("[OpenLottery] Start. strStrategyKey=OpenLottery_S1_1, idx=0, pStrategy=1.");
  Message("Report", R"("CumQty":3,"AvgPrice":14.5,"Position":3)");
  Message("Report", R"("CloseAvgPrice":16.0,"CloseQty":3,"Position":0)");
  Message("Profit", R"("Last":16.0,"PnL":4.5)");
  StrategyLog("Stop.");
  Log("DelStrategy. StrategyKey=OpenLottery_S1_1.");
  Log("[OpenLottery] Start. strStrategyKey=OpenLottery_S1_1, idx=0, pStrategy=2.");
  words.clear();
  Message("Report", R"("CumQty":2,"AvgPrice":10.0,"Position":2)");
  Message("Profit", R"("Last":12.0,"PnL":4.0)");
  StrategyLog("Stop.");
  EXPECT_THAT(words,
              ElementsAre("position      OpenLottery_S1_1: TX Mar24 18000 call holds 2, bought 2 at 10",
                          "profit        OpenLottery_S1_1: TX Mar24 18000 call at 12, 4.00",
                          "end           OpenLottery_S1_1: by stop command",
                          "state         OpenLottery_S1_1: stopped by command"));
  EXPECT_THAT(
      totals.Table(),
      testing::StartsWith(
          "strategy          life  run  symbol               bought  average  sold  average  held  last  "
          "realised  open   cost\n"
          "OpenLottery_S1_1  1     0    TX Mar24 18000 call       3     14.5     3       16     0    16      "
          "4.50  0.00  43.50\n"
          "OpenLottery_S1_1  2     0    TX Mar24 18000 call       2       10     0        -     2    12      "
          "0.00  4.00  20.00\n"));
}

TEST_F(PositionHappeningTest, TheTablesOfPositionsAndTagsCloseTheDay) {
  Log("GetStringFromSecurity. SymbolID=ND.O.TWF.TX, strMapKey=ND.O.TWF.TX.202403.C.18000:Weight, "
      "strResult=50.");
  Message(
      "Report",
      R"("UpdateDate":20240304,"UpdateTime":84500,"CumQty":3,"AvgPrice":14.5,"LeavesQty":0,"ExecType":3,"Position":3)");
  Message("Report",
          R"("UpdateDate":20240304,"UpdateTime":84500,"CloseAvgPrice":16.0,"CloseQty":2,"Position":1)");
  Message("Profit", R"("Last":12.0,"PnL":-125.0)");
  Total(R"({"Cost":2175,"PnL":-125.0})");
  StrategyLog("Wait Reset.");
  EXPECT_EQ(totals.Table(),
            "strategy          life  run  symbol               bought  average  sold  average  held  last  "
            "realised     "
            "open     cost\n"
            "OpenLottery_S1_1  1     0    TX Mar24 18000 call       3     14.5     2       16     1    12    "
            "150.00  "
            "-125.00  2175.00\n"
            "\n"
            "tag  cost   profit\n"
            "T    2175  -125.00\n"
            "\n"
            "strategy          state        accepted  orders    lots          cash  ended by\n"
            "OpenLottery_S1_1  not running         0       0       0             0  stop time\n"
            "0 orders, 0 cancels, 0 faults\n");
  EXPECT_THAT(totals.Json({}),
              HasSubstr(R"("positions":[{"strategy":"OpenLottery_S1_1","life":1,"run":"0",)"
                        R"("symbol":"ND.O.TWF.TX.202403.C.18000","bought":3,"bought_at":14.5,)"
                        R"("sold":2,"sold_at":16.0,"held":1,"last":12.0,"realised":150.0,)"
                        R"("open":-125.0,"cost":2175.0}],"tags":[{"tag":"T","cost":2175,)"
                        R"("profit":-125.0}])"));
}

}  // namespace
}  // namespace iorder

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "app/day_totals.h"
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
            "strategy          state           accepted  orders    lots          cash\n"
            "OpenLottery_S1_1  orders are out         0       1       3          1875\n"
            "1 orders, 0 cancels, 1 faults\n");
  EXPECT_EQ(
      totals.Json({"deadlock"}),
      R"({"kind":"end","strategies":[{"strategy":"OpenLottery_S1_1","state":4,"words":"orders are out",)"
      R"("accepted":0,"orders":1,"lots":3,"cash":1875}],"orders":1,"cancels":0,"faults":1,"errors":["deadlock"]})");
}

}  // namespace
}  // namespace iorder

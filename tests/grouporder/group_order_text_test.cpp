#include "grouporder/group_order_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/strategy/json_text.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using iorder::testing::Json;

class GroupOrderText : public ::testing::Test {
 protected:
  std::unique_ptr<stcIntlgntOrd> Read(const std::string& json) {
    auto order = std::make_unique<stcIntlgntOrd>(m_world.runtime);
    ReadGroupOrder(Json(json), *order);
    return order;
  }
  ScaledValue TargetOf(const std::string& condition) {
    return Read(R"({"Order":[{"Condition":")" + condition + R"("}]})")->llLegTarget[0];
  }

  CVirtualWorld m_world;
};

TEST_F(GroupOrderText, EveryMemberHasItsField) {
  const auto order =
      Read(R"({"BrokerID":"B1","Account":"A1","StrategyID":"G1","StrategyName":"N","UserKey1":"1",
      "UserKey2":"2","UserKey3":"3","ProcessID":"P","Security":"ND.O.TWF.TX.202403","StopCondition":"Delta=2.5",
      "StopFactor":0.5,"CheckCondition1":"Vega=7","CheckRange1":0.25,"CheckCondition2":"Theta=-8","CheckRange2":3,
      "Cash":1000.5,"GroupAType":4,"GroupBType":-5,
      "Order":[{"CallPut":"Call","Condition":"Gamma=1.5","Qty":6,"Group":"A"},{"CallPut":"Put","Qty":-7,"Group":"B"}]})");
  EXPECT_EQ(L"B1", order->strBrokerID);
  EXPECT_EQ(L"A1", order->strAccount);
  EXPECT_EQ(L"G1", order->strStrategyID);
  EXPECT_EQ(L"N", order->strStrategyName);
  EXPECT_EQ(L"1", order->strUserKey1);
  EXPECT_EQ(L"2", order->strUserKey2);
  EXPECT_EQ(L"3", order->strUserKey3);
  EXPECT_EQ(L"P", order->strProcessID);
  EXPECT_EQ(L"ND.O.TWF.TX.202403", order->strSecurity);
  EXPECT_EQ(L"Delta", order->strStopName);
  EXPECT_EQ(2.5, order->dbStopValue);
  EXPECT_EQ(0.5, order->dbStopFactor);
  EXPECT_EQ(L"Vega", order->strCheckName1);
  EXPECT_EQ(7, order->llCheckValue1);
  EXPECT_EQ(0.25, order->dbCheckRange1);
  EXPECT_EQ(L"Theta", order->strCheckName2);
  EXPECT_EQ(-8, order->llCheckValue2);
  EXPECT_EQ(3.0, order->dbCheckRange2);
  EXPECT_EQ(1000.5, order->dbCash);
  EXPECT_EQ(4, order->lGroupAType);
  EXPECT_EQ(-5, order->lGroupBType);
  EXPECT_EQ((PerLeg<std::wstring>{L"Call", L"Put"}), order->strCallPut);
  EXPECT_EQ((PerLeg<std::wstring>{L"Gamma"}), order->strLegCondition);
  EXPECT_EQ((PerLeg<ScaledValue>{15000000000}), order->llLegTarget);
  EXPECT_EQ((PerLeg<int32_t>{6, -7}), order->lQty);
  EXPECT_EQ((PerLeg<std::wstring>{L"A", L"B"}), order->strGroup);
}

TEST_F(GroupOrderText, WithoutMembersAllIsEmptyOrZeroButTheFactor) {
  for (const char* json : {"{}", "[]", "5", "null", R"({"Order":[]})", R"({"Order":5})"}) {
    const auto order = Read(json);
    EXPECT_EQ(L"", order->strStrategyID) << json;
    EXPECT_EQ(L"", order->strStopName) << json;
    EXPECT_EQ(0.0, order->dbStopValue) << json;
    EXPECT_EQ(1.0, order->dbStopFactor) << json;
    EXPECT_EQ(L"", order->strCheckName1) << json;
    EXPECT_EQ(0.0, order->dbCash) << json;
    EXPECT_EQ(0, order->lGroupAType) << json;
    EXPECT_EQ(PerLeg<std::wstring>{}, order->strCallPut) << json;
    EXPECT_EQ(PerLeg<int32_t>{}, order->lQty) << json;
    EXPECT_EQ(0, order->lDirection) << json;
    EXPECT_EQ(0, order->bFailed) << json;
  }
}

TEST_F(GroupOrderText, AStopConditionIsANameAndAFloatingNumber) {
  struct Case {
    const char* text;
    const wchar_t* name;
    double value;
  };
  for (const auto& [text, name, value] : std::vector<Case>{{"Delta=100", L"Delta", 100.0},
                                                           {"1%$Vanna=5", L"1Pct$Vanna", 5.0},
                                                           {"1%$Vanna =5", L"1%$Vanna ", 5.0},
                                                           {"1pct$Vanna=5", L"1pct$Vanna", 5.0},
                                                           {"Delta=-0.5", L"Delta", -0.5},
                                                           {"Delta= 1.5e2 x", L"Delta", 150.0},
                                                           {"Delta==5", L"Delta", 0.0},
                                                           {"Delta=5=6", L"Delta", 5.0},
                                                           {"Delta=0x10", L"Delta", 0.0},
                                                           {"Delta=inf", L"Delta", 0.0},
                                                           {"Delta=nan", L"Delta", 0.0},
                                                           {"Delta=", L"Delta", 0.0},
                                                           {"=5", L"", 5.0},
                                                           {"Delta 5", L"", 0.0},
                                                           {"", L"", 0.0}}) {
    const auto order = Read(R"({"StopCondition":")" + std::string(text) + R"("})");
    EXPECT_EQ(name, order->strStopName) << text;
    EXPECT_EQ(value, order->dbStopValue) << text;
  }
}

TEST_F(GroupOrderText, ACheckConditionIsANameAndAWholeNumber) {
  struct Case {
    const char* text;
    const wchar_t* name;
    int64_t value;
  };
  for (const auto& [text, name, value] : std::vector<Case>{{"Vega=5", L"Vega", 5},
                                                           {"1%$Vanna=5", L"1%$Vanna", 5},
                                                           {"Vega=1.5", L"Vega", 1},
                                                           {"Vega=-1.9", L"Vega", -1},
                                                           {"Vega=1e3", L"Vega", 1},
                                                           {"Vega=3000000000", L"Vega", 3000000000},
                                                           {"Vega=5=6", L"Vega", 5},
                                                           {"Vega=x", L"Vega", 0},
                                                           {"Vega", L"", 0}}) {
    const auto order =
        Read(R"({"CheckCondition1":")" + std::string(text) + R"(","CheckCondition2":")" + text + R"("})");
    EXPECT_EQ(name, order->strCheckName1) << text;
    EXPECT_EQ(value, order->llCheckValue1) << text;
    EXPECT_EQ(name, order->strCheckName2) << text;
    EXPECT_EQ(value, order->llCheckValue2) << text;
  }
}

TEST_F(GroupOrderText, AWantedFigureHasTenPlacesAndDeltaAHundredfold) {
  EXPECT_EQ(250000000000, TargetOf("Delta=0.25"));
  EXPECT_EQ(2500000000, TargetOf("delta=0.25"));
  EXPECT_EQ(2500000000, TargetOf("Delta1=0.25"));
  EXPECT_EQ(2500000000, TargetOf("Gamma=0.25"));
  EXPECT_EQ(-250000000000, TargetOf("Delta=-0.25"));
  EXPECT_EQ(-1, TargetOf("Gamma=-0.00000000019"));
  EXPECT_EQ(100, TargetOf("Delta=0.00000000019"));
  EXPECT_EQ(429999999, TargetOf("Gamma=0.043")) << "the product of doubles is cut, not rounded";
  EXPECT_EQ(0, TargetOf("Gamma=x"));
  EXPECT_EQ(0, TargetOf("Gamma"));
}

TEST_F(GroupOrderText, AWantedFigureBeyondTheRangeIsStillDefined) {
  EXPECT_EQ(NoValue, TargetOf("Gamma=1e30"));
  EXPECT_EQ(0, TargetOf("Delta=1e30")) << "a hundred times the smallest number goes round to 0";
}

TEST_F(GroupOrderText, NumbersMustBeOfTheirKind) {
  const auto order =
      Read(R"({"StopFactor":"2","CheckRange1":"1","CheckRange2":null,"Cash":[1],"GroupAType":1.0,
      "GroupBType":3000000000,"Order":[{"Qty":"1"},{"Qty":1.0},{"Qty":3000000000},{"Qty":2}]})");
  EXPECT_EQ(1.0, order->dbStopFactor);
  EXPECT_EQ(0.0, order->dbCheckRange1);
  EXPECT_EQ(0.0, order->dbCheckRange2);
  EXPECT_EQ(0.0, order->dbCash);
  EXPECT_EQ(0, order->lGroupAType);
  EXPECT_EQ(0, order->lGroupBType);
  EXPECT_EQ((PerLeg<int32_t>{0, 0, 0, 2}), order->lQty);
}

TEST_F(GroupOrderText, LegsKeepTheirPlacesAndTheFifthIsDropped) {
  const auto order =
      Read(R"({"Order":[{"Qty":1},5,{"Qty":3,"CallPut":"Call"},{"Qty":4},{"Qty":5,"CallPut":"Put"}]})");
  EXPECT_EQ((PerLeg<int32_t>{1, 0, 3, 4}), order->lQty);
  EXPECT_EQ((PerLeg<std::wstring>{L"", L"", L"Call", L""}), order->strCallPut);
}

}  // namespace
}  // namespace iorder::test

#include "strategy/order_string.h"

#include <gtest/gtest.h>

namespace iorder::testing {
namespace {

CStrategyIdentity Sender(const std::wstring& processID = L"4711") {
  CStrategyIdentity identity;
  identity.m_strBrokerID = L"B1";
  identity.m_strAccount = L"A1";
  identity.m_strUserKey1 = L"K1";
  identity.m_strUserKey2 = L"OpenLottery_S1_1";
  identity.m_strUserKey3 = L"K3";
  identity.m_strProcessID = processID;
  return identity;
}

COrder Order(const std::wstring& side, int32_t qty) {
  COrder order;
  order.strSymbol = L"ND.O.TWF.TX.202403.C.18000";
  order.strSide = side;
  order.lQty = qty;
  return order;
}

TEST(OrderString, AnOpenOrderIsALimitOrderWithAScaledPrice) {
  COrder order = Order(L"B", 3);
  order.llPrice = 25000000000;
  EXPECT_EQ(
      L"TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=B,QTY=3,PRICE=25000000000,"
      L"ORDERTYPE=2,POSITIONEFFECT=0,TIMEINFORCE=1,SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=K1,"
      L"USERKEY2=OpenLottery_S1_1@084500123,USERKEY3=K3,PROCESSID=4711",
      FormatOrder(Sender(), L"084500123", order));
}

TEST(OrderString, AMarketOrderHasNoPriceAndSaysSoWithTheLowestNumber) {
  COrder order = Order(L"S", 2);
  order.lOrderType = order_code::kMarketWithProtection;
  order.lPositionEffect = order_code::kClose;
  order.lTimeInForce = 2;
  EXPECT_EQ(
      L"TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=S,QTY=2,"
      L"PRICE=-9223372036854775808,ORDERTYPE=25,POSITIONEFFECT=1,TIMEINFORCE=2,SYNTHETIC=0,"
      L"STRATEGYNAME=OpenLottery,USERKEY1=K1,USERKEY2=OpenLottery_S1_1@,USERKEY3=K3,PROCESSID=4711",
      FormatOrder(Sender(), L"", order));
}

TEST(OrderString, APriceInWordsTakesThePlaceOfThePrice) {
  COrder order = Order(L"S", 1);
  order.strPrice = L"BID-3T";
  order.llPrice = 25000000000;
  order.lPositionEffect = order_code::kClose;
  EXPECT_EQ(
      L"TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=S,QTY=1,PRICESTRING=BID-3T,"
      L"ORDERTYPE=2,POSITIONEFFECT=1,TIMEINFORCE=1,SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=K1,"
      L"USERKEY2=OpenLottery_S1_1@084500123,USERKEY3=K3,PROCESSID=4711",
      FormatOrder(Sender(), L"084500123", order));
}

TEST(OrderString, MissingTextsLeaveTheirKeys) {
  COrder order = Order(L"B", 1);
  order.llPrice = 0;
  EXPECT_EQ(
      L"TYPE=O,BROKERID=,ACCOUNT=,SYMBOL=ND.O.TWF.TX.202403.C.18000,SIDE=B,QTY=1,PRICE=0,ORDERTYPE=2,"
      L"POSITIONEFFECT=0,TIMEINFORCE=1,SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=,USERKEY2=@,USERKEY3=,"
      L"PROCESSID=0",
      FormatOrder({}, L"", order));
}

TEST(OrderString, TheProcessIsTheNumberThatItsTextSpells) {
  const auto process = [](const std::wstring& text) {
    const std::wstring order = FormatOrder(Sender(text), L"", Order(L"B", 1));
    return order.substr(order.find(L"PROCESSID=") + 10);
  };
  EXPECT_EQ(L"4711", process(L"4711"));
  EXPECT_EQ(L"-5", process(L"-5"));
  EXPECT_EQ(L"12", process(L"12 and more"));
  EXPECT_EQ(L"0", process(L""));
  EXPECT_EQ(L"0", process(L"engine"));
}

}  // namespace
}  // namespace iorder::testing

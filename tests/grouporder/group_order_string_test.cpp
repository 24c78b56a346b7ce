#include "grouporder/group_order_string.h"

#include <gtest/gtest.h>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

class GroupOrderString : public ::testing::Test {
 protected:
  CVirtualWorld m_world;
  stcIntlgntOrd m_order{m_world.runtime};
};

TEST_F(GroupOrderString, ValuesGoOutAsTheyAre) {
  m_order.strBrokerID = L"B=1";
  m_order.strAccount = L"A,1";
  m_order.strStrategyID = L"\u7b56\u7565";
  m_order.strStrategyName = L" name ";
  m_order.strProcessID = L"-7x";
  const CGroupOrderString string{.type = L"O",
                                 .symbol = L"S",
                                 .lSide = side::kSell,
                                 .lQty = -2147483647,
                                 .lGroupType = -1,
                                 .groupId = L"{}"};
  EXPECT_EQ(
      L"TYPE=O,BROKERID=B=1,ACCOUNT=A,1,SYMBOL=S,SIDE=S,QTY=-2147483647,PRICE=0,ORDERTYPE=10,POSITIONEFFECT="
      L"4,"
      L"TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE=-1,GROUPID={},CHASEPRICE=0|1|100|C|2,STRATEGY=\u7b56\u7565,"
      L"STRATEGYNAME= name ,USERKEY1=,USERKEY2=,USERKEY3=,PROCESSID=-7",
      FormatGroupOrder(m_order, string, L"0|1|100|C|2"));
}

TEST_F(GroupOrderString, EverySideButSellIsBuy) {
  for (const int32_t side : {0, side::kBuy, 3}) {
    const std::wstring text = FormatGroupOrder(m_order, {.lSide = side}, L"");
    EXPECT_NE(std::wstring::npos, text.find(L",SIDE=B,")) << side;
  }
}

}  // namespace
}  // namespace iorder::test

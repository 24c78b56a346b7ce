#include "grouporder/group_order_string.h"

#include "records/number_text.h"

namespace iorder {

namespace {

/// More than all but strange keys of the user's own need.
constexpr size_t kUsualSize = 768;

}  // namespace

std::wstring FormatGroupOrder(const stcIntlgntOrd& order, const CGroupOrderString& string,
                              std::wstring_view chasePrice) {
  std::wstring text;
  text.reserve(kUsualSize);
  const auto add = [&text](std::wstring_view key, std::wstring_view value) {
    text.append(key).append(value);
  };
  add(L"TYPE=", string.type);
  add(L",BROKERID=", order.strBrokerID);
  add(L",ACCOUNT=", order.strAccount);
  add(L",SYMBOL=", string.symbol);
  add(L",SIDE=", string.lSide == side::kSell ? L"S" : L"B");
  add(L",QTY=", ToDecimal(string.lQty));
  add(L",PRICE=0,ORDERTYPE=10,POSITIONEFFECT=4,TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE=",
      ToDecimal(string.lGroupType));
  add(L",GROUPID=", string.groupId);
  add(L",CHASEPRICE=", chasePrice);
  add(L",STRATEGY=", order.strStrategyID);
  add(L",STRATEGYNAME=", order.strStrategyName);
  add(L",USERKEY1=", order.strUserKey1);
  add(L",USERKEY2=", order.strUserKey2);
  add(L",USERKEY3=", order.strUserKey3);
  add(L",PROCESSID=", ToDecimal(LeadingInt32(order.strProcessID)));
  return text;
}

}  // namespace iorder

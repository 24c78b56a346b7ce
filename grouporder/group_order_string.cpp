#include "grouporder/group_order_string.h"

#include <utility>

#include "records/number_text.h"

namespace iorder {

std::wstring FormatGroupOrder(const stcIntlgntOrd& order, const CGroupOrderString& string,
                              std::wstring_view chasePrice) {
  const std::wstring quantity = ToDecimal(string.lQty);
  const std::wstring groupType = ToDecimal(string.lGroupType);
  const std::wstring processId = ToDecimal(LeadingInt32(order.strProcessID));
  const std::pair<std::wstring_view, std::wstring_view> members[] = {
      {L"TYPE=", string.type},
      {L",BROKERID=", order.strBrokerID},
      {L",ACCOUNT=", order.strAccount},
      {L",SYMBOL=", string.symbol},
      {L",SIDE=", string.lSide == side::kSell ? L"S" : L"B"},
      {L",QTY=", quantity},
      {L",PRICE=0,ORDERTYPE=10,POSITIONEFFECT=4,TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE=", groupType},
      {L",GROUPID=", string.groupId},
      {L",CHASEPRICE=", chasePrice},
      {L",STRATEGY=", order.strStrategyID},
      {L",STRATEGYNAME=", order.strStrategyName},
      {L",USERKEY1=", order.strUserKey1},
      {L",USERKEY2=", order.strUserKey2},
      {L",USERKEY3=", order.strUserKey3},
      {L",PROCESSID=", processId},
  };
  // Keys of the user's own may be long: the text gets its room at once.
  size_t size = 0;
  for (const auto& [key, value] : members) size += key.size() + value.size();
  std::wstring text;
  text.reserve(size);
  for (const auto& [key, value] : members) text.append(key).append(value);
  return text;
}

}  // namespace iorder

#include "strategy/order_string.h"

#include "records/number_text.h"

namespace iorder {

std::wstring FormatOrder(const CStrategyIdentity& identity, const std::wstring& batchStamp,
                         const COrder& order) {
  std::wstring text;
  text.reserve(384);
  const auto add = [&text](const wchar_t* key, const std::wstring& value) { text.append(key).append(value); };
  add(L"TYPE=O,BROKERID=", identity.m_strBrokerID);
  add(L",ACCOUNT=", identity.m_strAccount);
  add(L",SYMBOL=", order.strSymbol);
  add(L",SIDE=", order.strSide);
  add(L",QTY=", ToDecimal(order.lQty));
  if (order.strPrice.empty()) {
    add(L",PRICE=", ToDecimal(order.llPrice));
  } else {
    add(L",PRICESTRING=", order.strPrice);
  }
  add(L",ORDERTYPE=", ToDecimal(order.lOrderType));
  add(L",POSITIONEFFECT=", ToDecimal(order.lPositionEffect));
  add(L",TIMEINFORCE=", ToDecimal(order.lTimeInForce));
  add(L",SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=", identity.m_strUserKey1);
  add(L",USERKEY2=", identity.m_strUserKey2);
  add(L"@", batchStamp);
  add(L",USERKEY3=", identity.m_strUserKey3);
  add(L",PROCESSID=", ToDecimal(LeadingInt32(identity.m_strProcessID)));
  return text;
}

}  // namespace iorder

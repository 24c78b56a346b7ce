#include "strategy/order_report.h"

#include "strategy/order_result.h"
#include "strategy/order_string.h"

namespace iorder {

namespace {

constexpr wchar_t kKeyEnd = L'@';

std::wstring BatchStampOf(const std::wstring& userKey2) {
  const size_t keyEnd = userKey2.find(kKeyEnd);
  if (keyEnd == std::wstring::npos) return {};
  const size_t begin = keyEnd + 1;
  return userKey2.substr(begin, userKey2.find(kKeyEnd, begin) - begin);
}

}  // namespace

std::wstring StrategyKeyOf(const std::wstring& userKey2) {
  return userKey2.substr(0, userKey2.find(kKeyEnd));
}

COrderReport COrderReport::Read(CBaseData& record) {
  const std::wstring userKey2 = record.GetString(L"UserKey2");
  COrderReport report;
  report.strStrategyKey = StrategyKeyOf(userKey2);
  report.strBatchStamp = BatchStampOf(userKey2);
  report.strReportID = record.GetString(L"LevelKey");
  report.strSymbol = record.GetString(L"Symbol");
  report.strSide = record.GetString(L"Side");
  report.lExecType = record.GetInt(L"ExecType", NoInt);
  report.lPositionEffect = record.GetEnum(L"PositionEffect", NoInt);
  report.llPrice = record.GetInt64(L"Price", NoValue);
  report.llAvgPrice = record.GetInt64(L"AvgPrice", NoValue);
  report.lOrderType = record.GetInt(L"OrderType", NoInt);
  report.lSendQty = record.GetInt(L"SendQty", NoInt);
  report.lCumQty = record.GetInt(L"CumQty", NoInt);
  report.lLeavesQty = record.GetInt(L"LeavesQty", NoInt);
  report.lRecFillQty = record.GetInt(L"RecFillQty", NoInt);
  return report;
}

int32_t COrderReport::Action(bool cancelAsked) const {
  if (cancelAsked && lExecType == exec_type::kCancelled) return order_action::kCancel;
  if (lPositionEffect == order_code::kOpen) return order_action::kOpen;
  if (lPositionEffect == order_code::kClose) return order_action::kClose;
  const bool sells = strSide == L"2" || strSide == L"S";
  return sells ? order_action::kClose : order_action::kOpen;
}

bool COrderReport::IsMarketOrder() const {
  return lOrderType == order_code::kMarket || lOrderType == order_code::kMarketWithProtection;
}

int32_t ResultOf(int32_t action, int32_t execType) {
  const bool cancelled = execType == exec_type::kCancelled;
  switch (action) {
    case order_action::kOpen:
      if (exec_type::IsRejection(execType)) return order_result::kRejected;
      return cancelled ? order_result::kCancelled : order_result::kReported;
    case order_action::kClose:
      if (execType == exec_type::kFilled) return order_result::kClosed;
      return exec_type::IsWorking(execType) ? order_result::kReported : order_result::kCloseEnded;
    default:
      return order_result::kCancelled;
  }
}

}  // namespace iorder

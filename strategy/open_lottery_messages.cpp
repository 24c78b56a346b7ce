#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr const wchar_t* kScreenTopic = L"MSG.NewStrategyOrder";

}  // namespace

void CStrategyOpenLottery::UpdateStatus(const std::wstring& text, int32_t bLog) {
  if (bLog != 0) WriteLog(L"UpdateStatus. Status=" + text + L".");
  static const Value sender = std::wstring(L"OpenLottery");
  Owner().SendHostEvent(kScreenTopic, 1, 1, text, sender);
  Owner().SendHostEvent(kClientTopic, 1, 1, text, sender);
}

void CStrategyOpenLottery::PublishOrderResult(const std::wstring& symbol, int32_t lResult, int32_t lAction) {
  CStatusMessage message(*Identity(), "Order");
  message.About(StampText(), symbol).Integer("Result", lResult).Integer("Action", lAction);
  UpdateStatus(message.Finish(), 1);
}

void CStrategyOpenLottery::PublishScanResult(const std::wstring& symbol, ScaledValue openPrice,
                                             int32_t openPriceOK) {
  CStatusMessage message(*Identity(), "Scanner");
  message.About(StampText(), symbol)
      .Moment("Date", "Time", LocalDateTime14())
      .Number("OpenPrice", FromScaled(openPrice))
      .Integer("OpenPriceOK", openPriceOK);
  UpdateStatus(message.Finish(), 1);
}

void CStrategyOpenLottery::PublishClearReport() {
  CStatusMessage message(*Identity(), "ClearReport");
  UpdateStatus(message.Finish(), 1);
}

}  // namespace iorder

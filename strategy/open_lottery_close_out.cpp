#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "strategy/order_report.h"
#include "strategy/order_result.h"
#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr const wchar_t* kCancelTopic = L"TRADE.CANCELORDER";

/// How a position is sold: the order type's word and what it means in an order string. A word other than the
/// market types sells relative to the bid, a positive tick count below it.
COrder CloseOrder(const std::wstring& symbol, int32_t lots, const std::wstring& type, int32_t ticks) {
  COrder order{.strSymbol = symbol,
               .strPrice = {},
               .lQty = lots,
               .lPositionEffect = order_code::kClose,
               .strSide = L"S"};
  if (type == L"MWP" || type == L"M") {
    order.lOrderType = type == L"M" ? order_code::kMarket : order_code::kMarketWithProtection;
    order.lTimeInForce = order_code::kImmediate;
  } else {
    const int64_t away = ticks;  // negating the smallest 32-bit number must not overflow
    order.strPrice = away > 0 ? fmt::sprintf(L"BID-%dT", away) : fmt::sprintf(L"BID+%dT", -away);
  }
  return order;
}

}  // namespace

int32_t CStrategyOpenLottery::DoCancelOrderOpen(int32_t bStop) {
  WriteLog(fmt::sprintf(L"DoCancelOrderOpen. m_lStatus=%d.", Status()));
  {
    CLockGuard guard(m_csStatus);
    if (bStop == 0 && m_lStatus != lottery_state::kFilled) {
      if (m_lStatus != lottery_state::kRunning) return 0;
      m_lStatus = lottery_state::kCancelling;
    }
  }
  const std::vector<std::wstring> working = WorkingReports();
  for (const std::wstring& reportID : working) CancelOpenOrder(reportID, bStop);
  SetStatus(lottery_state::kCancelsOut);
  if (bStop == 0 && HasNoReports()) {
    const int32_t status = Status();
    // No cancel confirmation will come to drive the cycle.
    if (status != lottery_state::kFilled && status != lottery_state::kRejected) DoPlaceOrder();
  }
  WriteLog(fmt::sprintf(L"DoCancelOrderOpen Done. m_lStatus=%d.", Status()));
  return working.empty() ? 0 : 1;
}

std::vector<std::wstring> CStrategyOpenLottery::WorkingReports() {
  CLockGuard guard(m_csReportExec);
  std::vector<std::wstring> working;
  for (const auto& [reportID, execType] : m_mapReportExec) {
    if (exec_type::IsWorking(execType)) working.push_back(reportID);
  }
  return working;
}

bool CStrategyOpenLottery::HasNoReports() {
  CLockGuard guard(m_csReportExec);
  return m_mapReportExec.empty();
}

void CStrategyOpenLottery::CancelOpenOrder(const std::wstring& reportID, int32_t bStop) {
  const std::wstring symbol = SymbolOfReport(reportID);
  if (bStop == 1) {
    CStatusMessage message(*Identity(), "Order");
    message.About(StampText(), symbol)
        .Moment("Date", "Time", LocalDateTime14())
        .Integer("Result", order_result::kAnnounced)
        .Integer("Action", order_action::kCancel);
    UpdateStatus(message.Finish(), 1);
    CLockGuard guard(m_csCancelAsked);
    m_mapCancelAsked.insert(reportID);
  }
  const IdentityPtr identity = Identity();
  if (Owner().IsAccountReady(identity->m_strBrokerID, identity->m_strAccount)) {
    CancelOrder(reportID);
  } else {
    PublishOrderResult(symbol, order_result::kAccountNotReady, order_action::kCancel);
    WriteLog(L"CancelOrder Fail. Account not Ready. " + reportID + L".");
  }
}

std::wstring CStrategyOpenLottery::SymbolOfReport(const std::wstring& reportID) {
  CLockGuard guard(m_csReportRecord);
  const auto found = m_mapReportRecord.find(reportID);
  const bool isKept = found != m_mapReportRecord.end() && found->second != nullptr;
  return isKept ? found->second->GetString(L"Symbol") : std::wstring();
}

void CStrategyOpenLottery::CancelOrder(const std::wstring& reportID) {
  const std::wstring text = L"REPORTID=" + reportID;
  WriteLog(L"CancelOrder. " + text + L".");
  Owner().SendHostEvent(kCancelTopic, 1, 1, text, {});
}

int32_t CStrategyOpenLottery::DoClosePos(int32_t bByProfit) {
  WriteLog(fmt::sprintf(L"DoClosePos. bByProfit=%d, m_bDoClosePosByProfit=%d.", bByProfit,
                        m_bDoClosePosByProfit.load()));
  // A limit closes out once in a strategy's life.
  if (bByProfit != 0 && m_bDoClosePosByProfit.exchange(1) != 0) return 0;
  const InfoPtr info = Info();
  const std::wstring& type = bByProfit != 0 ? info->m_strCloseOrderTypeByProfit : info->m_strCloseOrderType;
  const int32_t ticks = bByProfit != 0 ? info->m_lCloseTicksByProfit : info->m_lCloseTicks;
  // The orders leave under the lock, so that nobody sees a position half sold.
  const int32_t result = m_positions.WithLock([&](const auto& positions) {
    int32_t handled = 0;
    for (const auto& [symbol, position] : positions) {
      const int32_t lots = position.NetPosition();
      if (lots <= 0) continue;
      AnnounceClose(symbol, type, lots, handled);
      NewOrder(CloseOrder(symbol, lots, type, ticks));
      handled = 1;
    }
    return handled;
  });
  WriteLog(L"DoClosePos End.");
  return result;
}

void CStrategyOpenLottery::AnnounceClose(const std::wstring& symbol, const std::wstring& type, int32_t lots,
                                         int32_t result) {
  CStatusMessage message(*Identity(), "Order");
  message.About(StampText(), symbol)
      .Moment("Date", "Time", LocalDateTime14())
      .Text("OrderPrice", type)
      .Integer("Qty", lots)
      .Integer("Result", result)
      .Integer("Action", order_action::kClose);
  UpdateStatus(message.Finish(), 1);
}

}  // namespace iorder

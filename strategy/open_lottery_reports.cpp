#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <algorithm>

#include "records/record_copy.h"
#include "strategy/order_report.h"
#include "strategy/order_result.h"
#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

void CStrategyOpenLottery::OnReportUpdate(CBaseData* record) {
  if (record == nullptr) return;
  const COrderReport report = COrderReport::Read(*record);
  bool isOfBatch = false;
  {
    CLockGuard guard(m_csBatch);
    if (report.strStrategyKey != Key()) return;
    isOfBatch = report.strBatchStamp == m_strBatchStamp;
  }
  const int32_t action = report.Action(IsCancelAsked(report.strReportID));
  PublishOrderResult(report.strSymbol, ResultOf(action, report.lExecType), action);
  if (!isOfBatch) return;  // a report of an older batch changes nothing else

  const int64_t now = LocalDateTime14();
  NoteExecution(report.lExecType);
  WriteLog(fmt::sprintf(
      L"OnReportUpdate. strSymbol=%s, strReportID=%s, lExecType=%d, llPrice=%lld, llAvgPrice=%lld, "
      L"lOrderType=%d, m_lStatus=%d, lSendQty=%d, lCumQty=%d, lLeavesQty=%d, lPositionEffect=%d, lAction=%d, "
      L"m_strStamp=%s.",
      report.strSymbol, report.strReportID, report.lExecType, report.llPrice, report.llAvgPrice,
      report.lOrderType, Status(), report.lSendQty, report.lCumQty, report.lLeavesQty, report.lPositionEffect,
      action, StampText()));
  KeepReport(report, *record);

  const int32_t status = Status();
  if (action == order_action::kOpen) FollowOpenOrder(report, status);
  UpdatePosition(report, action, now);
  if (action == order_action::kClose && status == lottery_state::kStopped) LeaveIfEmpty();
}

bool CStrategyOpenLottery::IsCancelAsked(const std::wstring& reportID) {
  CLockGuard guard(m_csCancelAsked);
  return m_mapCancelAsked.contains(reportID);
}

void CStrategyOpenLottery::NoteExecution(int32_t execType) {
  CLockGuard guard(m_csStatus);
  if (exec_type::IsFill(execType)) {
    if (m_lStatus != lottery_state::kRejected) m_lStatus = lottery_state::kFilled;
  } else if (exec_type::IsRejection(execType)) {
    m_lStatus = lottery_state::kRejected;
  }
}

void CStrategyOpenLottery::KeepReport(const COrderReport& report, CBaseData& record) {
  {
    CLockGuard guard(m_csReportExec);
    m_mapReportExec[report.strReportID] = report.lExecType;
  }
  CLockGuard guard(m_csReportRecord);
  std::unique_ptr<CBaseData>& copy = m_mapReportRecord[report.strReportID];
  copy = CopyRecord(Owner().GetWorld(), record, std::move(copy));
}

void CStrategyOpenLottery::FollowOpenOrder(const COrderReport& report, int32_t status) {
  switch (status) {
    case lottery_state::kIdle:
      // An order that is acknowledged after the stop is cancelled at once.
      if (report.lExecType == exec_type::kWorking && Info()->m_bStopCancel == 1)
        CancelOrder(report.strReportID);
      break;
    case lottery_state::kFilled:
    case lottery_state::kRejected:
      UnsubAll();
      break;
    default:
      CheckBatchComplete(status);
      break;
  }
}

void CStrategyOpenLottery::CheckBatchComplete(int32_t status) {
  const bool hasHits = !m_mapScanHit.IsEmpty();
  int32_t awaited = NoInt;
  if (status == lottery_state::kOrdersOut) awaited = exec_type::kWorking;
  if (status == lottery_state::kCancelsOut) awaited = exec_type::kCancelled;
  if (awaited == NoInt) return;
  // Reports are counted, not symbols: a symbol with two of them counts twice.
  const size_t count = CountReports(awaited);
  if (count != m_mapOrdered.WithLock([](const auto& symbols) { return symbols.size(); })) return;
  SetStatus(lottery_state::kRunning);
  if (status == lottery_state::kCancelsOut) {
    PostEvent(lottery_event::kPlaceBatch);
  } else if (hasHits) {
    PostEvent(lottery_event::kMakeRoom);
  }
}

size_t CStrategyOpenLottery::CountReports(int32_t execType) {
  CLockGuard guard(m_csReportExec);
  return static_cast<size_t>(
      std::count_if(m_mapReportExec.begin(), m_mapReportExec.end(),
                    [execType](const auto& entry) { return entry.second == execType; }));
}

void CStrategyOpenLottery::UpdatePosition(const COrderReport& report, int32_t action, int64_t now) {
  const bool hasFill = report.lCumQty > 0;
  CPosInfo::CClosed closed;
  const bool folds = action == order_action::kClose && hasFill && report.IsFillComplete();
  const CPosInfo position = m_positions.WithPosition(*KeyOfSymbol(report.strSymbol), [&](CPosInfo& kept) {
    if (action == order_action::kOpen) kept.TakeOpenReport(report);
    if (action == order_action::kCancel) kept.lLeavesQty = report.lLeavesQty;
    if (folds) closed = kept.FoldClose(report);
    return kept;
  });
  if (action == order_action::kOpen && hasFill) {
    WriteLog(fmt::sprintf(L"UpdatePosition. strSymbol=%s, lCumQty=%d, llAvgPrice=%lld.", report.strSymbol,
                          position.lCumQty, position.llAvgPrice));
    if (report.IsFillComplete())
      EnqueueSnapshot(report.strSymbol, GetQuote(report.strSymbol).get(), kNoUpdate);
  }

  CStatusMessage message(*Identity(), "Report");
  message.About(StampText(), report.strSymbol).Moment("UpdateDate", "UpdateTime", now);
  if (action == order_action::kOpen) TellOpenOrder(report, message);
  if (folds) TellClosed(closed, message);
  if (action == order_action::kCancel) message.Integer("LeavesQty", report.lLeavesQty);
  if (position.lCumQty > 0) message.Integer("Position", position.NetPosition());
  UpdateStatus(message.Finish(), 1);
}

void CStrategyOpenLottery::TellOpenOrder(const COrderReport& report, CStatusMessage& message) {
  if (report.IsMarketOrder()) {
    message.Text("OrderPrice", L"M");
  } else {
    message.Number("OrderPrice", FromScaled(report.llPrice));
  }
  message.Integer("Qty", report.lSendQty);
  if (report.lCumQty > 0) {
    message.Integer("CumQty", report.lCumQty);
    if (report.llAvgPrice != NoValue) message.Number("AvgPrice", FromScaled(report.llAvgPrice));
  }
  message.Integer("LeavesQty", report.lLeavesQty).Integer("ExecType", report.lExecType);
}

void CStrategyOpenLottery::TellClosed(const CPosInfo::CClosed& closed, CStatusMessage& message) {
  if (closed.llAvgPrice != NoValue) message.Number("CloseAvgPrice", FromScaled(closed.llAvgPrice));
  if (closed.llQty > 0) message.Integer("CloseQty", closed.llQty);
}

void CStrategyOpenLottery::LeaveIfEmpty() {
  const bool isEmpty = m_positions.WithLock([](const auto& positions) {
    int64_t positionTotal = 0;
    int64_t leavesQtyTotal = 0;
    for (const auto& [symbol, position] : positions) {
      positionTotal += position.NetPosition();
      leavesQtyTotal += position.lLeavesQty;
    }
    return positionTotal == 0 && leavesQtyTotal == 0;
  });
  if (!isEmpty) return;
  WriteLog(L"Check DelStrategy. LeavesQtyTotal == 0, PositionTotal == 0.");
  DelStrategy();
}

}  // namespace iorder

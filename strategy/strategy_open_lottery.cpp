#include "strategy/strategy_open_lottery.h"

#include <utility>

#include "records/number_text.h"

namespace iorder {

CStrategyOpenLottery::CStrategyOpenLottery(IStrategyHost& owner, std::wstring installPath)
    : CStrategy(owner),
      m_strInstallPath(std::move(installPath)),
      m_csInfo(Runtime(), "parameter lock"),
      m_info(std::make_shared<const COpenLotteryInfo>()),
      m_csStatus(Runtime(), "status lock"),
      m_csRun(Runtime(), "run lock"),
      m_chain(Runtime()),
      m_mapSymbols(Runtime(), "symbol lock"),
      m_mapScanHit(Runtime(), "scan lock"),
      m_mapScanPassed(Runtime(), "passed lock"),
      m_mapScanFailed(Runtime(), "failed lock"),
      m_mapOpenLogged(Runtime(), "open log lock"),
      m_mapOrdered(Runtime(), "ordered lock"),
      m_csScanned(Runtime(), "scanned lock"),
      m_csReportRecord(Runtime(), "report record lock"),
      m_csReportExec(Runtime(), "report exec lock"),
      m_csBatch(Runtime(), "batch lock"),
      m_csCash(Runtime(), "cash lock"),
      m_positions(Runtime()),
      m_csProfit(Runtime(), "profit lock"),
      m_csCancelAsked(Runtime(), "cancel lock") {}

// No event may find the strategy half destroyed, so the quotes go first.
CStrategyOpenLottery::~CStrategyOpenLottery() {
  CutOffShield shield(Runtime());
  CloseAllQuotes();
}

CStrategyOpenLottery::InfoPtr CStrategyOpenLottery::Info() const {
  CLockGuard guard(m_csInfo);
  return m_info;
}

void CStrategyOpenLottery::SetInfo(COpenLotteryInfo info) {
  auto next = std::make_shared<const COpenLotteryInfo>(std::move(info));
  CLockGuard guard(m_csInfo);
  m_info = std::move(next);
}

int32_t CStrategyOpenLottery::Status() const {
  CLockGuard guard(m_csStatus);
  return m_lStatus;
}

void CStrategyOpenLottery::SetStatus(int32_t status) {
  CLockGuard guard(m_csStatus);
  m_lStatus = status;
}

std::wstring CStrategyOpenLottery::StampText() const {
  const int64_t runs = m_llStamp;
  return runs == 0 ? std::wstring() : ToDecimal(runs - 1);
}

void CStrategyOpenLottery::ParseOrderInfo() {
  COpenLotteryInfo info = *Info();
  info.Read(OrderInfo());
  SetInfo(std::move(info));
}

int64_t CStrategyOpenLottery::GetLongValue(const std::wstring& name, int64_t fallback) {
  if (name != L"TotalCashOrder") return fallback;
  CLockGuard guard(m_csCash);
  return m_llTotalCashOrder;
}

}  // namespace iorder

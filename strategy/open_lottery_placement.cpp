#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <algorithm>

#include "records/wrapping.h"
#include "reference/symbol.h"
#include "strategy/order_result.h"
#include "strategy/status_message.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr const wchar_t* kOrderTopic = L"TRADE.NEWORDER";

void SortByStrike(std::vector<std::wstring>& symbols) {
  std::stable_sort(symbols.begin(), symbols.end(), [](const std::wstring& left, const std::wstring& right) {
    return StrikeOf(left) < StrikeOf(right);
  });
}

}  // namespace

void CStrategyOpenLottery::DoPlaceOrder() {
  {
    const int32_t status = Status();
    WriteLog(fmt::sprintf(L"DoPlaceOrder. m_lStatus=%d.", status));
    if (status != lottery_state::kRunning && status != lottery_state::kCancelsOut) return;
  }
  const std::vector<std::wstring> newSymbols = DrainHits();
  WriteLog(fmt::sprintf(L"DoPlaceOrder. arSymbol.GetCount()=%d.", newSymbols.size()));
  if (newSymbols.empty()) return;
  StampBatch();
  if (ClearReports()) PublishClearReport();
  SetStatus(lottery_state::kPlacing);

  const InfoPtr info = Info();
  std::vector<CBatchSymbol> symbols = SymbolsInOrder(newSymbols);
  const int64_t cashLeft = AllocateLots(
      symbols, info->m_llCash, ChainWeight(),
      [&](const std::wstring& symbol) { return OrderPriceOf(*info, symbol); },
      [this](const std::wstring& line) { WriteLog(line); });
  const int64_t totalCashOrder = WrappedDifference(info->m_llCash, cashLeft);
  {
    CLockGuard guard(m_csCash);
    m_llTotalCashOrder = totalCashOrder;
  }
  const int32_t status = PlaceLots(symbols) > 0 ? lottery_state::kOrdersOut : lottery_state::kRunning;
  SetStatus(status);
  WriteLog(fmt::sprintf(L"DoPlaceOrder Done. m_lStatus=%d, llTotalCashOrder=%lld.", status, totalCashOrder));
}

std::vector<std::wstring> CStrategyOpenLottery::DrainHits() {
  return m_mapScanHit.WithLock([this](auto& hits) {
    std::vector<std::wstring> taken;
    for (const std::wstring& symbol : hits) {
      if (m_mapOrdered.Add(symbol)) taken.push_back(symbol);
    }
    hits.clear();
    return taken;
  });
}

void CStrategyOpenLottery::StampBatch() {
  const DateTime now = Runtime().LocalTime();
  CLockGuard guard(m_csBatch);
  m_strBatchStamp = fmt::sprintf(L"%02d%02d%02d%03d", now.hour, now.minute, now.second, now.millisecond);
}

bool CStrategyOpenLottery::ClearReports() {
  {
    CLockGuard guard(m_csReportExec);
    m_mapReportExec.clear();
  }
  std::map<std::wstring, std::unique_ptr<CBaseData>> records;  // destroyed outside the lock
  {
    CLockGuard guard(m_csReportRecord);
    records.swap(m_mapReportRecord);
  }
  return !records.empty();
}

std::vector<CBatchSymbol> CStrategyOpenLottery::SymbolsInOrder(const std::vector<std::wstring>& newSymbols) {
  std::vector<std::wstring> calls;
  std::vector<std::wstring> puts;
  {
    CLockGuard guard(m_csScanned);
    for (const std::wstring& symbol : newSymbols) {
      if (IsCall(symbol)) {
        m_arScannedSymbolCall.push_back(symbol);
      } else if (IsPut(symbol)) {
        m_arScannedSymbolPut.push_back(symbol);
      }
    }
    calls = m_arScannedSymbolCall;
    puts = m_arScannedSymbolPut;
    WriteLog(fmt::sprintf(
        L"DoPlaceOrder. m_arScannedSymbolCall.GetCount()=%d, m_arScannedSymbolPut.GetCount()=%d.",
        calls.size(), puts.size()));
  }
  SortByStrike(calls);
  SortByStrike(puts);
  // The symbols furthest out of the money are served first.
  std::vector<CBatchSymbol> symbols;
  for (auto call = calls.rbegin(); call != calls.rend(); ++call)
    symbols.push_back({.strSymbol = *call, .dbPrice = {}});
  for (const std::wstring& put : puts) symbols.push_back({.strSymbol = put, .dbPrice = {}});
  return symbols;
}

double CStrategyOpenLottery::OrderPriceOf(const COpenLotteryInfo& info, const std::wstring& symbol) {
  return info.CalculatesPrice() ? GetCalOrderPrice(info, symbol) : info.m_dbOrderPrice;
}

double CStrategyOpenLottery::ChainWeight() {
  std::wstring chainSymbol;
  {
    CLockGuard guard(m_csRun);
    chainSymbol = m_strChainSymbol;
  }
  return GetContractWeight(chainSymbol);
}

int32_t CStrategyOpenLottery::PlaceLots(const std::vector<CBatchSymbol>& symbols) {
  int32_t placed = 0;
  for (const CBatchSymbol& symbol : symbols) {
    const double price = symbol.dbPrice.value_or(NoPrice);
    if (symbol.lQty < 1 || price == NoPrice) {
      m_mapOrdered.Remove(symbol.strSymbol);  // a later batch may take it
      WriteLog(fmt::sprintf(L"NewOrderOpen Fail. Symbol=%s, lQty=%d, dbPrice=%f.", symbol.strSymbol,
                            symbol.lQty, price));
    } else if (NewOrderOpen(symbol.strSymbol, ToScaled(price), symbol.lQty)) {
      ++placed;
    }
  }
  return placed;
}

bool CStrategyOpenLottery::NewOrderOpen(const std::wstring& symbol, ScaledValue price, int32_t lots) {
  const int64_t now = LocalDateTime14();
  const auto describe = [&](CStatusMessage& message) -> CStatusMessage& {
    return message.About(StampText(), symbol)
        .Moment("Date", "Time", now)
        .Number("OrderPrice", FromScaled(price))
        .Integer("Qty", lots);
  };
  CStatusMessage announced(*Identity(), "Order");
  describe(announced).Integer("Result", order_result::kAnnounced).Integer("Action", order_action::kOpen);
  UpdateStatus(announced.Finish(), 1);
  CStatusMessage report(*Identity(), "Report");
  UpdateStatus(describe(report).Finish(), 1);
  return NewOrder({.strSymbol = symbol, .llPrice = price, .strPrice = {}, .lQty = lots, .strSide = L"B"});
}

bool CStrategyOpenLottery::NewOrder(const COrder& order) {
  const IdentityPtr identity = Identity();
  std::wstring batchStamp;
  {
    CLockGuard guard(m_csBatch);
    batchStamp = m_strBatchStamp;
  }
  const std::wstring text = FormatOrder(*identity, batchStamp, order);
  if (!Owner().IsAccountReady(identity->m_strBrokerID, identity->m_strAccount)) {
    const int32_t action =
        order.lPositionEffect == order_code::kOpen ? order_action::kOpen : order_action::kClose;
    PublishOrderResult(order.strSymbol, order_result::kAccountNotReady, action);
    WriteLog(L"NewOrder Fail. Account not Ready. " + text + L".");
    return false;
  }
  WriteLog(L"NewOrder. " + text + L".");
  Owner().SendHostEvent(kOrderTopic, 1, 2, text, {});
  return true;
}

}  // namespace iorder

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr std::wstring_view kOptionPrefix = L"ND.O.";

}  // namespace

int32_t CStrategyOpenLottery::ScanQuote() {
  if (m_bSymbolListReady == 0) {
    WriteLog(L"ScanQuote. SymbolList not Ready.");
    return 0;
  }
  WriteLog(L"ScanQuote.");
  const int32_t result = m_mapSymbols.WithLock([this](const auto& symbols) {
    int32_t accepted = 0;
    for (const std::wstring& symbol : symbols) {
      if (!symbol.starts_with(kOptionPrefix)) continue;
      FillUtcTime();
      ScaledValue openPrice = NoValue;
      if (Judge(symbol, GetQuote(symbol).get(), openPrice) != Verdict::kNewPass) continue;
      m_mapScanHit.Add(symbol);
      PublishScanResult(symbol, openPrice, 1);
      accepted = 1;
    }
    return accepted;
  });
  WriteLog(fmt::sprintf(L"ScanQuote End.(%d)", result));
  return result;
}

CStrategyOpenLottery::Verdict CStrategyOpenLottery::Judge(const std::wstring& symbol, CBaseData* handle,
                                                          ScaledValue& openPrice) {
  if (!IsInTradingHours(handle, symbol) || handle == nullptr) return Verdict::kUnjudged;
  openPrice = handle->GetFieldById(quote_field::kOpen);
  // An open of 0 stands only if something was traded.
  const int64_t present = openPrice == 0 ? handle->GetFieldById(quote_field::kVolume) : openPrice;
  if (present == NoValue) return Verdict::kUnjudged;
  LogOpenPrice(symbol, handle, openPrice);

  const InfoPtr info = Info();
  // NoValue is below every price: a missing lower bound accepts everything, a missing upper one rejects
  // everything.
  if (openPrice < ToScaled(info->m_dbOpenPriceDn) || openPrice > ToScaled(info->m_dbOpenPriceUp)) {
    if (m_mapScanFailed.Add(symbol)) PublishScanResult(symbol, openPrice, 0);
    return Verdict::kKnown;
  }
  return m_mapScanPassed.Add(symbol) ? Verdict::kNewPass : Verdict::kKnownPass;
}

void CStrategyOpenLottery::JudgeUpdate(const std::wstring& symbol, CBaseData* handle) {
  ScaledValue openPrice = NoValue;
  // A held symbol that had passed before goes to the profit monitor here, once positions are kept.
  if (Judge(symbol, handle, openPrice) != Verdict::kNewPass) return;
  m_mapScanHit.Add(symbol);
  {
    CLockGuard guard(m_csStatus);
    if (m_lStatus > lottery_state::kWaiting) PostEvent(lottery_event::kMakeRoom);
  }
  PublishScanResult(symbol, openPrice, 1);
}

void CStrategyOpenLottery::LogOpenPrice(const std::wstring& symbol, CBaseData* handle,
                                        ScaledValue openPrice) {
  if (!m_mapOpenLogged.Add(symbol)) return;
  const auto field = [handle](int32_t id) { return handle->GetFieldById(id); };
  WriteLog(fmt::sprintf(
      L"LogOpenPrice. Symbol=%s, Date=%lld, Time=%lld, Open=%lld, Qty=%lld, Vol=%lld, Price=%lld.", symbol,
      field(quote_field::kDate), field(quote_field::kTime), openPrice, field(quote_field::kQuantity),
      field(quote_field::kVolume), field(quote_field::kPrice)));
}

}  // namespace iorder

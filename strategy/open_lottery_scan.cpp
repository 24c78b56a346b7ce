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
      const CQuote quote = FindQuote(symbol);
      if (quote.handle == nullptr) {
        IsInTradingHours(nullptr, symbol);  // says so in the log
        continue;
      }
      ScaledValue openPrice = NoValue;
      if (Judge(*quote.key, *quote.handle, openPrice) != Verdict::kNewPass) continue;
      m_mapScanHit.Add(symbol);
      PublishScanResult(symbol, openPrice, 1);
      accepted = 1;
    }
    return accepted;
  });
  WriteLog(fmt::sprintf(L"ScanQuote End.(%d)", result));
  return result;
}

CStrategyOpenLottery::Verdict CStrategyOpenLottery::Judge(const CQuoteKey& option, CBaseData& handle,
                                                          ScaledValue& openPrice) {
  if (!IsInTradingHours(&handle, option.strSymbol)) return Verdict::kUnjudged;
  openPrice = handle.GetFieldById(quote_field::kOpen);
  // An open of 0 stands only if something was traded.
  const int64_t present = openPrice == 0 ? handle.GetFieldById(quote_field::kVolume) : openPrice;
  if (present == NoValue) return Verdict::kUnjudged;
  LogOpenPrice(option, handle, openPrice);

  const InfoPtr info = Info();
  // NoValue is below every price: a missing lower bound accepts everything, a missing upper one rejects
  // everything.
  if (openPrice < ToScaled(info->m_dbOpenPriceDn) || openPrice > ToScaled(info->m_dbOpenPriceUp)) {
    if (m_mapScanFailed.Add(option)) PublishScanResult(option.strSymbol, openPrice, 0);
    return Verdict::kKnown;
  }
  return m_mapScanPassed.Add(option) ? Verdict::kNewPass : Verdict::kKnownPass;
}

void CStrategyOpenLottery::JudgeUpdate(const CQuoteKey& option, CBaseData& handle, int32_t updateId) {
  ScaledValue openPrice = NoValue;
  const Verdict verdict = Judge(option, handle, openPrice);
  if (verdict == Verdict::kKnownPass && m_positions.NetPosition(option) > 0) {
    EnqueueSnapshot(option.strSymbol, &handle, updateId);
  }
  if (verdict != Verdict::kNewPass) return;
  m_mapScanHit.Add(option.strSymbol);
  {
    CLockGuard guard(m_csStatus);
    if (m_lStatus > lottery_state::kWaiting) PostEvent(lottery_event::kMakeRoom);
  }
  PublishScanResult(option.strSymbol, openPrice, 1);
}

void CStrategyOpenLottery::LogOpenPrice(const CQuoteKey& option, CBaseData& handle, ScaledValue openPrice) {
  if (!m_mapOpenLogged.Add(option)) return;
  const auto field = [&handle](int32_t id) { return handle.GetFieldById(id); };
  WriteLog(fmt::sprintf(
      L"LogOpenPrice. Symbol=%s, Date=%lld, Time=%lld, Open=%lld, Qty=%lld, Vol=%lld, Price=%lld.",
      option.strSymbol, field(quote_field::kDate), field(quote_field::kTime), openPrice,
      field(quote_field::kQuantity), field(quote_field::kVolume), field(quote_field::kPrice)));
}

}  // namespace iorder

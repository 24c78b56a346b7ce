#include <utility>

#include "platform/settings_file.h"
#include "reference/symbol.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr std::wstring_view kFuturePrefix = L"ND.F.";
constexpr std::wstring_view kUnderlyingFuturePrefix = L"ND.F.U_";
constexpr size_t kUnderlyingLimit = 256;

}  // namespace

void CStrategyOpenLottery::Reset() {
  SetStatus(lottery_state::kResetting);
  WriteLog(L"Reset. strRoot=" + OrderInfoText() + L".");
  PublishClearReport();
  ClearRun();

  const InfoPtr info = Info();
  const std::wstring chainSymbol = ResolveChain(*info);
  BuildChain(*info, chainSymbol);
  const std::wstring underlying = ComposeUnderlying(*info, chainSymbol);
  const std::wstring greeks = AnalyticsRecordName(underlying);
  {
    CLockGuard guard(m_csRun);
    m_strSymbolUnderlying = underlying;
    m_strSymbolUnderlyingGreeks = greeks;
  }
  WriteLog(L"SymbolUnderlying=" + underlying + L", SymbolUnderlyingGreeks=" + greeks + L".");
  SubscribeUnderlying(*info, underlying, greeks);
  GetSymbolList();

  SetStatus(lottery_state::kWaiting);
  ++m_llStamp;
  WriteLog(L"TimeStamp=" + StampText() + L".");
}

void CStrategyOpenLottery::ClearRun() {
  {
    CLockGuard guard(m_csCash);
    m_llTotalCashOrder = 0;
  }
  {
    CLockGuard guard(m_csProfit);
    m_dbTotalPnL = 0.0;
    m_dbTotalCost = 0.0;
  }
  NoteTotalsChanged();
  for (const std::wstring& symbol : m_chain.TakeSymbols()) UnsubscribeQuote(symbol);
  ReleaseUnderlying();
  m_mapSymbols.Clear();
  m_mapScanPassed.Clear();
  m_mapScanFailed.Clear();
  m_mapScanHit.Clear();
  {
    CLockGuard guard(m_csScanned);
    m_arScannedSymbolCall.clear();
    m_arScannedSymbolPut.clear();
  }
  ClearReports();
  m_mapOrdered.Clear();
  m_positions.Clear();
  m_chain.ClearStrikes();
  m_mapOpenLogged.Clear();
}

void CStrategyOpenLottery::ReleaseUnderlying() {
  std::wstring underlying;
  std::wstring greeks;
  {
    CLockGuard guard(m_csRun);
    underlying = std::exchange(m_strSymbolUnderlying, {});
    greeks = std::exchange(m_strSymbolUnderlyingGreeks, {});
  }
  m_pQuoteUnderlying = nullptr;
  UnsubscribeQuote(underlying);
  m_pQuoteGreeks = nullptr;
  UnsubscribeQuote(greeks);
  m_bSymbolListReady = 0;
  m_bGreeksReady = 0;
}

std::wstring CStrategyOpenLottery::ResolveChain(const COpenLotteryInfo& info) {
  const std::wstring& security = info.m_strSecurity;
  if (security == kNearestChain || GetSymbolMonth(security) != kHotMonth) return security;
  const std::wstring month = GetSymbolMonth(Owner().GetHotMonth(security));
  std::wstring resolved = ReplaceAll(security, L".HOT", L"." + month);
  CLockGuard guard(m_csRun);
  m_strChainSymbol = resolved;
  return resolved;
}

void CStrategyOpenLottery::BuildChain(const COpenLotteryInfo& info, const std::wstring& chainSymbol) {
  for (const std::wstring& call : Owner().QueryOptionList(chainSymbol)) {
    const std::wstring symbol = info.IsPut() ? PutOf(call) : call;
    if (info.IsPut()) {
      m_chain.AddPut(symbol);
    } else {
      m_chain.AddCall(symbol);
    }
    m_mapSymbols.Add(symbol);
    m_chain.AddStrike(symbol);
  }
  m_chain.SortStrikes();
}

std::wstring CStrategyOpenLottery::ComposeUnderlying(const COpenLotteryInfo& info,
                                                     const std::wstring& chainSymbol) {
  const bool nearest = info.m_strSecurity == kNearestChain;
  const std::wstring option = nearest ? m_chain.FirstSymbol() : info.m_strSecurity;
  if (nearest) {
    CLockGuard guard(m_csRun);
    m_strChainSymbol = GetSymbolMonthKey(option);
  }
  const std::wstring base = nearest && option.empty() ? std::wstring() : GetUnderlyingBase(option);
  // An underlying series goes by the month of the options, the future of a HOT chain by its own hot month.
  if (base.starts_with(kUnderlyingFuturePrefix))
    return base + L"." + GetSymbolMonth(nearest ? option : chainSymbol);
  std::wstring month = GetSymbolMonth(info.m_strSecurity);
  if (month == kHotMonth) month = GetSymbolMonth(Owner().GetHotMonth(base + L".HOT"));
  return base.starts_with(kFuturePrefix) ? base + L"." + month : base;
}

std::wstring CStrategyOpenLottery::GetUnderlyingBase(const std::wstring& symbol) {
  const std::wstring key = GetSymbolProductKey(symbol);
  std::wstring base = Owner().GetWorld().settings.ReadString(m_strInstallPath + L"ComShared\\OpenLottery.ini",
                                                             L"UnderlyingF", key, L"", kUnderlyingLimit);
  if (!base.empty()) return base;
  const std::shared_ptr<CBaseData> list = UnderlyingList();
  return list != nullptr ? list->GetString(key) : std::wstring();
}

std::shared_ptr<CBaseData> CStrategyOpenLottery::UnderlyingList() {
  {
    CLockGuard guard(m_csRun);
    if (m_pUnderlyingList != nullptr) return m_pUnderlyingList;
  }
  std::shared_ptr<CBaseData> opened = Owner().OpenRecord(L"Underlying.F.List", nullptr);
  CLockGuard guard(m_csRun);
  if (m_pUnderlyingList == nullptr) m_pUnderlyingList = std::move(opened);
  return m_pUnderlyingList;
}

void CStrategyOpenLottery::SubscribeUnderlying(const COpenLotteryInfo& info, const std::wstring& underlying,
                                               const std::wstring& greeks) {
  m_pQuoteUnderlying = SubscribeQuote(underlying).get();
  m_mapSymbols.Add(underlying);
  if (info.TakesMarketVolatility() && info.CalculatesPrice()) {
    m_pQuoteGreeks = SubscribeQuote(greeks).get();
    m_mapSymbols.Add(greeks);
  }
}

}  // namespace iorder

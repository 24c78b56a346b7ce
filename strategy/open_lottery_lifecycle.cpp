#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <algorithm>
#include <array>

#include "records/json_reader.h"
#include "reference/symbol.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr int kReadyTries = 10;
constexpr Milliseconds kReadyRetry{50};
constexpr int64_t kNextDay = 2400;
/// Up to this minute the night session still belongs to the evening before.
constexpr int64_t kNightEnd = 500;

bool IsIn(int64_t value, int64_t low, int64_t high) {
  return value >= low && value <= high;
}

int32_t MarketKindOf(const std::wstring& exchange, int32_t present) {
  static constexpr std::array<std::wstring_view, 5> untested{L"SHFE", L"DCE", L"CZCE", L"CFFEX", L"INE"};
  if (exchange == L"TWF") return 3;
  return std::find(untested.begin(), untested.end(), exchange) != untested.end() ? 1 : present;
}

}  // namespace

void CStrategyOpenLottery::AfterParseOrderInfo() {
  COpenLotteryInfo info = *Info();
  m_llResetTime = info.ResetTime();
  SetUserKey2(Key());
  const DateTime now = Runtime().LocalTime();
  m_lMarketKind = MarketKindOf(GetSymbolExchange(info.m_strSecurity), m_lMarketKind);
  if (info.m_lStartRun == 1 && m_lMarketKind == 3) {
    info.m_lStartRun = IsStartAllowed(info, now) ? 1 : 0;
    SetInfo(info);
  }
  if (info.m_lStartRun == 1) {
    StartAtOnce();
    return;
  }
  const DateTime later = Runtime().LocalTime();
  if (ToTime4(later) == m_llResetTime && info.RunsOn(later.dayOfWeek)) {
    Reset();
    ScanQuote();
  } else {
    PublishClearReport();
  }
}

bool CStrategyOpenLottery::IsStartAllowed(const COpenLotteryInfo& info, const DateTime& now) {
  int64_t start = info.m_llStartTime;
  int64_t stop = info.m_llStopTime;
  int64_t minute = ToTime4(now);
  int64_t weekday = now.dayOfWeek;
  if (minute <= kNightEnd) {
    if (IsIn(start, 1500, 2359)) --weekday;  // -1 on a Sunday: no weekday's bit
    minute += kNextDay;
  }
  if (start <= kNightEnd) start += kNextDay;
  if (stop <= kNightEnd) stop += kNextDay;
  const bool sameSession = (IsIn(minute, 845, 1345) && IsIn(start, 845, 1345)) ||
                           (IsIn(minute, 1500, 2900) && IsIn(start, 1500, 2900));
  bool allowed = info.RunsOn(weekday) && start <= minute && sameSession;
  if (allowed && info.m_bStopEnable != 0) allowed = minute < stop;
  WriteLog(fmt::sprintf(L"AfterParseOrderInfo. StartRun=%s, hhmm=%lld.", allowed ? L"RUN" : L"NO", minute));
  return allowed;
}

void CStrategyOpenLottery::StartAtOnce() {
  Reset();
  // Without a list the selection finishes when the underlying has a price; each update then judges its own
  // option.
  const bool scan = WaitForSymbolList() && WaitForValidQuotes();
  if (scan) ScanQuote();
  SetStatus(lottery_state::kRunning);
  if (scan) PostEvent(lottery_event::kPlaceBatch);
}

bool CStrategyOpenLottery::WaitForSymbolList() {
  for (int i = 0; i < kReadyTries && m_bSymbolListReady == 0; ++i) Runtime().Sleep(kReadyRetry);
  return m_bSymbolListReady != 0;
}

bool CStrategyOpenLottery::WaitForValidQuotes() {
  return m_mapSymbols.WithLock([this](const auto& symbols) {
    for (int i = 0; i < kReadyTries; ++i) {
      const bool valid =
          !symbols.empty() && std::all_of(symbols.begin(), symbols.end(),
                                          [this](const auto& symbol) { return IsQuoteValid(symbol); });
      if (valid) return true;
      Runtime().Sleep(kReadyRetry);
    }
    return false;
  });
}

void CStrategyOpenLottery::Start(int64_t) {
  const int32_t status = Status();
  const DateTime now = Runtime().LocalTime();
  m_stLocalTime.Store(now);
  m_stUTCTime.Store(Runtime().UtcTime());
  if (status == lottery_state::kStopped) return;

  const InfoPtr info = Info();
  const int64_t minute = ToTime4(now);
  const bool runsToday = info->RunsOn(now.dayOfWeek);
  if (minute == info->m_llStartTime) {
    if (runsToday) StartRun(status);
  } else if (minute == info->m_llStopTime) {
    StopByTime(*info);
  } else if (minute == m_llResetTime && runsToday) {
    Reset();
  }
  const bool sessionEnds = minute == 1345 || minute == kNightEnd;
  if (sessionEnds && info->m_strSecurity.find(L".TWF.") != std::wstring::npos) UnsubAll();
}

void CStrategyOpenLottery::StartRun(int32_t status) {
  WriteLog(fmt::sprintf(L"Start. m_lStatus=%d.", status));
  if (status != lottery_state::kWaiting) return;
  const int32_t accepted = ScanQuote();
  SetStatus(lottery_state::kRunning);
  if (accepted == 1) PostEvent(lottery_event::kPlaceBatch);
}

void CStrategyOpenLottery::StopByTime(const COpenLotteryInfo& info) {
  WriteLog(L"Wait Reset.");
  if (info.m_bStopCancel == 1) DoCancelOrderOpen(1);
  if (info.m_bStopClosePos == 1) DoClosePos(0);
  SetStatus(lottery_state::kIdle);
  UnsubAll();
}

void CStrategyOpenLottery::OnUpdate(CBaseData* source, int32_t originator, const std::wstring&) {
  const int32_t status = Status();
  if (source == nullptr) return;
  if (source == m_pQuoteUnderlying) {
    if (m_bSymbolListReady == 0 && source->GetFieldById(quote_field::kPrice) != NoValue) {
      PostEvent(lottery_event::kUnderlyingPriced);
    }
    return;
  }
  if (source == m_pQuoteGreeks) {
    m_bGreeksReady = 1;
    return;
  }
  if (status < lottery_state::kRunning) return;
  if (const QuoteKey option = KeyOf(source)) JudgeUpdate(*option, *source, originator);
}

void CStrategyOpenLottery::OnStrategyEvent(uint32_t number, uintptr_t) {
  switch (number) {
    case lottery_event::kPlaceBatch:
      DoPlaceOrder();
      break;
    case lottery_event::kMakeRoom:
      DoCancelOrderOpen(0);
      break;
    case lottery_event::kUnderlyingPriced:
      RetrySelection();
      break;
    case lottery_event::kStop:
      StopByCommand();
      break;
    case lottery_event::kLimitReached:
      StopByLimit();
      break;
    default:
      break;
  }
}

void CStrategyOpenLottery::RetrySelection() {
  if (m_bSymbolListReady != 0) return;
  GetSymbolList();
  if (m_bSymbolListReady == 0) return;
  if (WaitForValidQuotes() && ScanQuote() == 1) PostEvent(lottery_event::kPlaceBatch);
}

void CStrategyOpenLottery::OnStopCommand(const rapidjson::Document& document) {
  if (const auto* stop = FindObject(document, "ManuStop")) {
    m_bManuStopCancel = ReadJsonInt(*stop, "Cancel", 0);
    m_bManuStopClosePos = ReadJsonInt(*stop, "ClosePos", 0);
  }
  PostEvent(lottery_event::kStop);
  if (m_bManuStopCancel == 0 && m_bManuStopClosePos == 0) DelStrategy();
}

void CStrategyOpenLottery::StopByCommand() {
  WriteLog(L"Stop.");
  if (m_bManuStopCancel == 1) DoCancelOrderOpen(1);
  if (m_bManuStopClosePos == 1) DoClosePos(0);
  SetStatus(lottery_state::kStopped);
  for (const std::wstring& symbol : m_chain.TakeSymbols()) UnsubscribeQuote(symbol);
  std::wstring underlying;
  std::wstring greeks;
  {
    CLockGuard guard(m_csRun);
    underlying = m_strSymbolUnderlying;
    greeks = m_strSymbolUnderlyingGreeks;
  }
  m_pQuoteUnderlying = nullptr;
  m_pQuoteGreeks = nullptr;
  UnsubscribeQuote(underlying);
  UnsubscribeQuote(greeks);
  m_mapSymbols.Clear();
}

void CStrategyOpenLottery::StopByLimit() {
  {
    CLockGuard guard(m_csStatus);
    if (m_lStatus == lottery_state::kIdle) return;
    m_lStatus = lottery_state::kIdle;
  }
  DoCancelOrderOpen(1);
  DoClosePos(1);
}

/// With symbols in the run it does nothing at all: the subscriptions of a normal run stay until the next
/// Reset.
void CStrategyOpenLottery::UnsubAll() {
  if (!m_mapSymbols.IsEmpty()) return;
  WriteLog(L"UnsubAll.");
  for (const std::wstring& symbol : m_chain.TakeSymbols()) UnsubscribeQuote(symbol);
  ReleaseUnderlying();
  m_mapSymbols.Clear();
  m_mapScanHit.Clear();
  m_chain.ClearStrikes();
}

}  // namespace iorder

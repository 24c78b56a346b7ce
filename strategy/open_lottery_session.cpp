#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr int32_t kTestedMarket = 3;
/// A stored time of an earlier year is none: it was never stored.
constexpr int64_t kFirstYear = 2023;

/// Both sessions in UTC, hhmmss.
bool IsDaySession(int64_t time) {
  return time >= 4500 && time <= 54500;
}
bool IsNightSession(int64_t time) {
  return time >= 70000 && time <= 210000;
}

/// The time of a quote without the digits behind its seconds.
int64_t WholeSeconds(int64_t time, int64_t timeFormat) {
  if (timeFormat == 2) return time / 1000000;
  return timeFormat == 1 ? time / 1000 : time;
}

}  // namespace

void CStrategyOpenLottery::FillUtcTime() {
  if (m_lMarketKind == kTestedMarket && m_stUTCTime.Year() < kFirstYear)
    m_stUTCTime.Store(Runtime().UtcTime());
}

bool CStrategyOpenLottery::IsInTradingHours(CBaseData* handle, const std::wstring& symbol) {
  return m_lMarketKind != kTestedMarket || IsTWFTradingHour(handle, symbol);
}

bool CStrategyOpenLottery::IsTWFTradingHour(CBaseData* handle, const std::wstring& symbol) {
  if (handle == nullptr) {
    WriteLog(L"IsTWFTradingHour.(2) strSymbol=" + symbol + L", pQuote=NULL.");
    return false;
  }
  const int64_t timeFormat = handle->GetInt64(L"TradeTimeFormat", NoValue);
  const int64_t date = handle->GetFieldById(quote_field::kDate);
  const int64_t time = WholeSeconds(handle->GetFieldById(quote_field::kTime), timeFormat);
  const int64_t utcDate = m_stUTCTime.Date();
  const int64_t utcTime = m_stUTCTime.Time();
  const bool sameSession =
      (IsDaySession(time) && IsDaySession(utcTime)) || (IsNightSession(time) && IsNightSession(utcTime));
  if (date == utcDate && sameSession) return true;
  WriteLog(fmt::sprintf(L"IsTWFTradingHour.(1) strSymbol=%s, llDateTime=%lld %lld, llUTCDateTime=%lld %lld.",
                        symbol, date, time, utcDate, utcTime));
  return false;
}

}  // namespace iorder

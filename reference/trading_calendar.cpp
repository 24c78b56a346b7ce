#include "reference/trading_calendar.h"

#include <fmt/format.h>
#include <fmt/xchar.h>

#include <chrono>
#include <string_view>

#include "platform/platform_error.h"
#include "platform/runtime.h"
#include "records/number_text.h"
#include "records/scaled_value.h"
#include "reference/symbol.h"

namespace iorder {

namespace {

constexpr const wchar_t* kHolidayRecord = L"Holiday";
constexpr int32_t kNoCountUpTo = 20200101;
constexpr int64_t kFirstKnownDate = 19990101;
constexpr std::wstring_view kUnderlyingPrefix = L"U_";
constexpr std::chrono::hours kDay{24};
constexpr int kSunday = 0;
constexpr int kSaturday = 6;

struct TimeOfDay {
  uint16_t hour = 0;
  uint16_t minute = 0;
  uint16_t second = 0;
};
/// Where the moments of a count lie in their days: late enough for every session.
constexpr TimeOfDay kCountTime{.hour = 23};
constexpr TimeOfDay kEndOfDay{.hour = 23, .minute = 59, .second = 59};

/// The local moment of a date; raises for a date that can't be.
TimePoint MomentOf(IRuntime& runtime, int64_t date8, const TimeOfDay& time) {
  const int64_t year = date8 / 10000;
  const int64_t month = date8 / 100 % 100;
  const int64_t day = date8 % 100;
  if (year < 1900 || month < 1 || month > 12 || day < 1 || day > 31) {
    throw CPlatformError(error_code::kFailure, fmt::format("{} is no date", date8));
  }
  if (year < 1970 || year > 3000) {
    throw CPlatformError(error_code::kInvalidArgument, fmt::format("the calendar doesn't hold {}", date8));
  }
  return runtime.FromLocal({.year = static_cast<uint16_t>(year),
                            .month = static_cast<uint16_t>(month),
                            .day = static_cast<uint16_t>(day),
                            .hour = time.hour,
                            .minute = time.minute,
                            .second = time.second});
}

std::chrono::seconds WholeSecondsBetween(TimePoint from, TimePoint to) {
  using std::chrono::floor;
  using std::chrono::seconds;
  return floor<seconds>(to) - floor<seconds>(from);
}

bool IsWeekend(IRuntime& runtime, int64_t date8) {
  const int weekday = runtime.ToLocal(MomentOf(runtime, date8, {})).dayOfWeek;
  return weekday == kSaturday || weekday == kSunday;
}

/// What a special date says: a sign, and the markets that it is about.
struct SpecialDate {
  std::wstring_view sign;
  std::wstring_view markets;

  explicit SpecialDate(std::wstring_view text) : sign(text.substr(0, text.find(L','))) {
    if (sign.size() == text.size()) return;
    markets = text.substr(sign.size() + 1);
    markets = markets.substr(0, markets.find(L','));
  }

  bool Mentions(std::wstring_view exchange) const {
    return markets.find(exchange) != std::wstring_view::npos;
  }
  /// True if an entry is the whole exchange, or this product of it.
  bool Lists(std::wstring_view exchange, std::wstring_view product) const {
    const std::wstring wholeExchange = fmt::format(L"GLC.{}", exchange);
    const std::wstring oneProduct = fmt::format(L"{}.{}", wholeExchange, product);
    CTokenizer entries(markets);
    for (auto entry = entries.Next(L'|'); !entry.empty(); entry = entries.Next(L'|')) {
      if (entry == wholeExchange || entry == oneProduct) return true;
    }
    return false;
  }
};

}  // namespace

CTradingCalendar::CTradingCalendar(IHostGateway& host)
    : m_host(host), m_mapHolidayCache(host.GetWorld().runtime, "m_mapHolidayCache") {}

int32_t CTradingCalendar::GetTradingDays(const std::wstring& symbol, int32_t endDate, int32_t startDate) {
  if (endDate <= kNoCountUpTo) return 0;
  IRuntime& runtime = m_host.GetWorld().runtime;
  const std::wstring symbolKey = SymbolKey(symbol);
  const TimePoint start = startDate > 0 ? MomentOf(runtime, startDate, kCountTime) : runtime.Now();
  const TimePoint end = MomentOf(runtime, endDate, kCountTime);
  const std::wstring key =
      fmt::format(L"{}-{}-{}", symbolKey, ToDate8(runtime.ToLocal(start)), ToDate8(runtime.ToLocal(end)));
  if (const auto count = m_mapHolidayCache.Lookup(key)) return *count;

  int32_t count = 0;
  if (const auto holiday = m_host.OpenRecord(kHolidayRecord, nullptr)) {
    count = CountTradingDays(symbol, start, endDate, *holiday);
  } else {
    m_host.WriteLog(L"Holiday is null:" + symbol + L"," + symbolKey);
    count = static_cast<int32_t>(WholeSecondsBetween(start, end) / kDay) + 1;
  }
  m_mapHolidayCache.Set(key, count);
  return count;
}

int32_t CTradingCalendar::CountTradingDays(const std::wstring& symbol, TimePoint start, int32_t endDate,
                                           CBaseData& holiday) const {
  IRuntime& runtime = m_host.GetWorld().runtime;
  int32_t count = 0;
  for (TimePoint time = start;; time += kDay) {
    const int64_t date = ToDate8(runtime.ToLocal(time));
    if (date > endDate) return count;
    if (!IsHoliday(ToDecimal(date), symbol, &holiday)) ++count;
  }
}

bool CTradingCalendar::IsHoliday(const std::wstring& date, const std::wstring& symbol,
                                 CBaseData* holiday) const {
  const int64_t date8 = LeadingInt64(date);
  if (date8 < kFirstKnownDate || holiday == nullptr) return false;
  const bool weekend = IsWeekend(m_host.GetWorld().runtime, date8);
  const std::wstring text = holiday->GetString(date);
  if (text.empty()) return weekend;

  std::wstring_view exchange = SymbolToken(symbol, 3);
  if (exchange.starts_with(kUnderlyingPrefix)) exchange.remove_prefix(kUnderlyingPrefix.size());
  const SpecialDate special(text);
  const bool opens = special.sign == L"+";
  // That the list mentions the exchange and that it lists the market are two tests: a day that opens another
  // product of the exchange stays an ordinary one.
  if (!special.Mentions(exchange)) return opens || weekend;
  if (!opens && special.sign != L"-") return weekend;
  return special.Lists(exchange, SymbolToken(symbol, 4)) ? !opens : weekend;
}

int64_t GetCalendarDays(IRuntime& runtime, int64_t endDate) {
  const auto left = WholeSecondsBetween(runtime.Now(), MomentOf(runtime, endDate, kEndOfDay));
  return Truncate(static_cast<double>(left.count()) / 60.0 / 60.0 / 24.0);
}

}  // namespace iorder

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "records/base_data.h"
#include "records/host_gateway.h"
#include "records/locked_string_map.h"

namespace iorder {

/// Counts trading days between two dates, by the host's record "Holiday", which knows for each special date
/// which markets are closed, or which alone are open. Counts are kept for good: an order price asks for one
/// each time.
///
/// Dates are decimal numbers yyyymmdd of the local calendar. A date whose year lies below 1900, whose month
/// or day can't be, or which the platform's calendar doesn't hold (it goes from 1970 to 3000), raises
/// CPlatformError; a day behind the end of its month counts on into the next. Any thread may call; the cache
/// guards itself, and no other lock is taken. Two threads may do the same count at once.
class CTradingCalendar {
 public:
  explicit CTradingCalendar(IHostGateway& host);

  /// The trading days of the symbol's market from `startDate` (0: today) to `endDate`, both included. Today
  /// counts whenever it trades, whatever the time of day. An end not above 20200101 gives 0. Without the
  /// record it is a plain count of days, weekends included.
  int32_t GetTradingDays(const std::wstring& symbol, int32_t endDate, int32_t startDate);

  /// True if the market of the symbol doesn't trade on that date, by `holiday`, the record, or none. Without
  /// the record, and before 1999, every day trades.
  bool IsHoliday(const std::wstring& date, const std::wstring& symbol, CBaseData* holiday) const;

 private:
  int32_t CountTradingDays(const std::wstring& symbol, TimePoint start, int32_t endDate,
                           CBaseData& holiday) const;

  IHostGateway& m_host;
  CGlcMapStringToVal m_mapHolidayCache;
};

/// The whole days from now to the end of `endDate`, cut towards 0; a calendar day is 24 hours. Raises as
/// CTradingCalendar does.
int64_t GetCalendarDays(IRuntime& runtime, int64_t endDate);

}  // namespace iorder

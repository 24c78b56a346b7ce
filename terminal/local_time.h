#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace iorder {

/// A moment as the local clock of the day shows it.
using LocalTime = std::chrono::local_time<Milliseconds>;

/// "HH:MM:SS[.mmm]" as the time since midnight; none for any other text.
std::optional<Milliseconds> ParseTimeOfDay(std::string_view text);
/// "YYYY-MM-DDTHH:MM:SS[.mmm]"; none for any other text.
std::optional<LocalTime> ParseLocalTime(std::string_view text);
/// The midnight with which the day `date` = yyyymmdd begins; none for what is no day.
std::optional<LocalTime> MidnightOf(int64_t date);
/// Midnight before `time`.
LocalTime DateOf(LocalTime time);

/// "YYYY-MM-DDTHH:MM:SS.mmm".
std::string ToText(LocalTime time);
void AppendDateTime(const DateTime& time, std::string& output);

DateTime ToDateTime(LocalTime time);
LocalTime ToLocalTime(const DateTime& time);

}  // namespace iorder

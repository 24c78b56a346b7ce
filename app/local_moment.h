#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace iorder {

/// A moment of a local clock, without its time zone.
using LocalMoment = std::chrono::local_time<Milliseconds>;

/// Reads "YYYY-MM-DDTHH:MM" with ":SS" and ".mmm" as they are there. None for any other text and for what no
/// calendar has.
std::optional<LocalMoment> ParseLocalMoment(std::string_view text);

/// "YYYY-MM-DDTHH:MM:SS", with ".mmm" if there are milliseconds.
std::string ToText(LocalMoment moment);

/// The time of day of the same form, without the date.
std::string TimeOfDayText(LocalMoment moment);

}  // namespace iorder

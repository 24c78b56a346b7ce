#pragma once

#include <chrono>
#include <optional>

#include "terminal/local_time.h"

namespace iorder {

/// The two sessions: day 08:45 to 13:45, night 15:00 to 05:00 of the next date.
enum class TaifexSession { kDay, kNight };

/// One session of one date. A night session has the date that it begins on.
struct TaifexSessionDate {
  TaifexSession session = TaifexSession::kDay;
  std::chrono::local_days date;

  bool operator==(const TaifexSessionDate&) const = default;

  LocalTime Opens() const;
  LocalTime Closes() const;

  /// The session that a trade of this time belongs to, both ends included; none between the sessions.
  static std::optional<TaifexSessionDate> Of(LocalTime time);
};

}  // namespace iorder

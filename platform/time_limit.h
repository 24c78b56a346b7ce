#pragma once

#include <optional>

#include "platform/date_time.h"

namespace iorder {

/// The moment at which a wait of this limit ends, if it does. A limit of 0 only looks: it is over before it
/// begins.
inline std::optional<TimePoint> EndOfLimit(TimePoint now, std::optional<Milliseconds> limit) {
  if (!limit) return std::nullopt;
  if (*limit <= Milliseconds::zero()) return TimePoint::min();
  return *limit < TimePoint::max() - now ? now + *limit : TimePoint::max();
}

}  // namespace iorder

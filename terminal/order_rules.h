#pragma once

#include <cstdint>

#include "platform/date_time.h"
#include "records/scaled_value.h"

namespace iorder {

/// A share from 0 to 1 as a scaled value, so that what is worked out with it is exact.
using Share = ScaledValue;
inline constexpr Share kWholeShare = static_cast<Share>(kScale);

/// How the order service answers by itself.
struct OrderRules {
  enum class Fill {
    kTouch,      ///< when the market reaches the order's price
    kThrough,    ///< when it passes it
    kImmediate,  ///< as the order comes in
    kNone,
  };

  Milliseconds latency{10};  ///< of each answer
  Fill fill = Fill::kTouch;
  Share partial = kWholeShare;  ///< of a trade's quantity that may fill orders
  Share reject = 0;             ///< of orders that are rejected
  bool chase = true;
  Milliseconds late{0};        ///< a report comes later by up to so much
  bool outOfOrder = false;     ///< late reports of one order may overtake one another
  Share repeat = 0;            ///< of reports that are delivered twice
  Share lostAck = 0;           ///< of orders whose acknowledge never comes
  Milliseconds recFillLag{0};  ///< "RecFillQty" is complete so much after the report of a fill
};

}  // namespace iorder

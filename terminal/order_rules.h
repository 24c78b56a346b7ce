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
  bool chase = true;            ///< an order with a chase price follows the market
  Milliseconds late{0};         ///< a report comes later by up to so much
  bool outOfOrder = false;      ///< late reports of one order may overtake one another
  Share repeat = 0;             ///< of reports that are delivered twice
  Share lostAck = 0;            ///< of orders whose acknowledge never comes
  Milliseconds recFillLag{0};   ///< "RecFillQty" is complete so much after the report of a fill
  Share failedChild = 0;        ///< of child orders that end from outside, with nothing filled
  Share lostChild = 0;          ///< of child orders that the engine is never told of
  Share lateChild = 0;          ///< of child orders that it is told of when they have ended
  Share lostEnd = 0;            ///< of child orders whose end it isn't told of
};

}  // namespace iorder

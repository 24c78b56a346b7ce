#pragma once

#include <cstdint>

/// The codes of "Action" and "Result" in an "Order" message.
namespace iorder {

namespace order_action {
inline constexpr int32_t kOpen = 1;
inline constexpr int32_t kClose = 2;
inline constexpr int32_t kCancel = 3;
}  // namespace order_action

namespace order_result {
inline constexpr int32_t kAnnounced = 0;
inline constexpr int32_t kReported = 1;  ///< an open order, or a close order that works
inline constexpr int32_t kClosed = 2;    ///< a close order that was filled
inline constexpr int32_t kCancelled = 3;
inline constexpr int32_t kRejected = -1;    ///< an open order
inline constexpr int32_t kCloseEnded = -2;  ///< a close order, in any other way
inline constexpr int32_t kAccountNotReady = -101;
}  // namespace order_result

}  // namespace iorder

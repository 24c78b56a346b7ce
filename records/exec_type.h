#pragma once

#include <cstdint>

/// The execution states that a report tells in "ExecType". The engine goes by the numbers alone: their names
/// are the order service's.
namespace iorder::exec_type {

inline constexpr int32_t kWorking = 0;
inline constexpr int32_t kDone = 2;  ///< of a child order: it works no more
inline constexpr int32_t kFilled = 3;
inline constexpr int32_t kStopped = 5;  ///< of a child order: ended from outside
inline constexpr int32_t kPartlyFilled = 6;
inline constexpr int32_t kFilledAtLast = 7;  ///< the rest of an order that was filled in parts
inline constexpr int32_t kCancelled = 8;
inline constexpr int32_t kRejected = 10;
inline constexpr int32_t kRefused = 21;

constexpr bool IsWorking(int32_t type) {
  return type == kWorking || type == kPartlyFilled;
}
/// A fill, or an end that counts as one.
constexpr bool IsFill(int32_t type) {
  return type >= kFilled && type <= kFilledAtLast;
}
constexpr bool IsRejection(int32_t type) {
  return type == kRejected || type == kRefused;
}
/// A child order lives until it is in one of these.
constexpr bool EndsChild(int32_t type) {
  return type == kDone || type == kFilled || type == kStopped || type == kFilledAtLast ||
         type == kCancelled || type == kRejected;
}
/// The ends of a child order that nobody wished, unless the client did.
constexpr bool FailsChild(int32_t type) {
  return type == kStopped || type == kCancelled;
}

}  // namespace iorder::exec_type

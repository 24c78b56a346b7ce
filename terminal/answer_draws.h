#pragma once

#include <cstdint>

#include "platform/date_time.h"
#include "terminal/order_rules.h"

namespace iorder {

/// What the order service leaves to chance. Each answer depends on the day's seed and on what it is asked for
/// alone, not on what was asked before: one further way to answer doesn't change what the others do.
class CAnswerDraws {
 public:
  explicit CAnswerDraws(uint64_t seed) : m_seed(seed) {}

  bool Rejects(int32_t order, Share share) const { return Hits(Kind::kReject, order, 0, share); }
  bool LosesAck(int32_t order, Share share) const { return Hits(Kind::kLostAck, order, 0, share); }
  /// `report` counts the reports of the order.
  bool Repeats(int32_t order, int32_t report, Share share) const {
    return Hits(Kind::kRepeat, order, report, share);
  }
  bool FailsChild(int32_t order, Share share) const { return Hits(Kind::kFailedChild, order, 0, share); }
  bool LosesChild(int32_t order, Share share) const { return Hits(Kind::kLostChild, order, 0, share); }
  bool IsLateChild(int32_t order, Share share) const { return Hits(Kind::kLateChild, order, 0, share); }
  bool LosesEnd(int32_t order, Share share) const { return Hits(Kind::kLostEnd, order, 0, share); }
  /// In which of the two states that tell a failure a failed child ends.
  bool IsStopped(int32_t order) const { return Draw(Kind::kFailure, order, 0, 2) == 0; }
  /// From 0 to `most`, both included.
  Milliseconds Lateness(int32_t order, int32_t report, Milliseconds most) const;

 private:
  enum class Kind : uint64_t {
    kReject = 1,
    kLostAck,
    kRepeat,
    kLateness,
    kFailedChild,
    kFailure,
    kLostChild,
    kLateChild,
    kLostEnd
  };

  bool Hits(Kind kind, int32_t order, int32_t report, Share share) const;
  /// A number from 0 to `bound` - 1.
  uint64_t Draw(Kind kind, int32_t order, int32_t report, uint64_t bound) const;

  const uint64_t m_seed;
};

}  // namespace iorder

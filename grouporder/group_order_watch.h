#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "grouporder/group_order.h"
#include "grouporder/leg_orders.h"
#include "grouporder/leg_scan.h"
#include "grouporder/trigger_evaluation.h"

namespace iorder {

/// What one cycle saw and did, before its strings go out.
struct CGroupCycle {
  CBandChecks checks;               ///< what set the multipliers
  CLegScan::Candidates candidates;  ///< every option that a leg looked at, in the order of the scan
  PerLeg<std::vector<stcPosition>> held;
  std::vector<CLegOrder> orders;
};

/// What became of an order beside its cycles.
enum class GroupOrderEnd {
  kTarget,    ///< gone: its stop condition is met
  kNoLeg,     ///< gone: no leg found an option
  kNothing,   ///< stays: the cycle made no string, so no child will ever move it
  kReplaced,  ///< lost its place among those that have sent to one of the same strategy id
  kAsleep,    ///< stays: another order has got its timer, and no other will wake it
};

/// Is told what the group orders decide, so that a user can see it. The engine acts the same whether anybody
/// watches or not. Operations come on the thread at work, several at a time, under no lock of the engine.
/// OnLook and OnCycle show an order that no other thread works on; the others may read its number, its ids
/// and its failure mark alone.
class IGroupOrderWatch {
 public:
  virtual ~IGroupOrderWatch() = default;

  /// The stop condition was looked at: at acceptance, and by each re-check.
  virtual void OnLook(const stcIntlgntOrd& order, const CStopCheck& check) = 0;
  virtual void OnCycle(const stcIntlgntOrd& order, const CGroupCycle& cycle) = 0;
  virtual void OnEnd(const stcIntlgntOrd& order, GroupOrderEnd end) = 0;
  virtual void OnChild(const stcIntlgntOrd& order, const std::wstring& levelKey) = 0;
  /// `live`: children that have not ended, after this update. A child that can't be followed is told as gone,
  /// with NoInt for its state.
  virtual void OnChildUpdate(const stcIntlgntOrd& order, const std::wstring& levelKey, int32_t execType,
                             size_t live) = 0;
  /// The timer has fired, but nothing is looked at now: children live, or a cycle of the order runs.
  virtual void OnNoLook(const stcIntlgntOrd& order) = 0;
  /// The next look comes after the delay; an earlier one is put off.
  virtual void OnRecheck(const stcIntlgntOrd& order, int32_t timerId, int32_t delayMs) = 0;
};

}  // namespace iorder

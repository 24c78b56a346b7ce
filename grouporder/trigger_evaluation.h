#pragma once

#include <cstdint>
#include <optional>

#include "grouporder/group_order.h"
#include "records/base_data.h"

/// The decisions of a group order: whether to go on and which way, and which leg is doubled. They read the
/// strategy's node of the record "STRATEGY.POSITION" (none: no position yet), whose fields are scaled values.
/// The order is in no shared table meanwhile; no lock is taken.
namespace iorder {

/// What the stop condition saw.
struct CStopCheck {
  bool bStop = false;
  bool bPosition = false;  ///< there is a node for the strategy
  double dbValue = 0.0;    ///< the sum, times the factor
};

/// Stops an order whose sum has reached or crossed its target from the side on which it started. The first
/// call decides the direction; without a position the sign of the target does, and a target of 0 stops. Once
/// it is decided, an order without a position goes on, whatever the target.
CStopCheck CheckStopCondition(stcIntlgntOrd& order, CBaseData* strategyPosition);

/// One check band: centre and half width in units of the field.
struct CBandCheck {
  double dbValue = 0.0;
  double dbCentre = 0.0;
  double dbHalfWidth = 0.0;
  bool bOut = false;  ///< beyond an edge; the edges are inside
  int32_t lSign = 1;  ///< -1 at or above the centre, 1 below it
};

/// What the check conditions saw; none for one that isn't told or wasn't looked at.
struct CBandChecks {
  std::optional<CBandCheck> first;
  std::optional<CBandCheck> second;
};

/// Sets all multipliers to 1, and that of one leg to 2 if a check band was left.
CBandChecks ApplyCheckConditions(stcIntlgntOrd& order, CBaseData* strategyPosition);

}  // namespace iorder

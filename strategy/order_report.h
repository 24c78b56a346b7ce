#pragma once

#include <cstdint>
#include <string>

#include "records/base_data.h"
#include "records/exec_type.h"

namespace iorder {

/// What one report of the order service says. A missing integer is NoInt, a missing price NoValue.
struct COrderReport {
  std::wstring strStrategyKey;  ///< "UserKey2" up to its first "@"
  std::wstring strBatchStamp;   ///< from there to its next "@", "" without one
  std::wstring strReportID;     ///< "LevelKey"
  std::wstring strSymbol;
  std::wstring strSide;
  int32_t lExecType = 0;
  int32_t lPositionEffect = 0;
  ScaledValue llPrice = NoValue;
  ScaledValue llAvgPrice = NoValue;
  int32_t lOrderType = 0;
  int32_t lSendQty = 0;
  int32_t lCumQty = 0;
  int32_t lLeavesQty = 0;
  int32_t lRecFillQty = 0;

  static COrderReport Read(CBaseData& record);

  /// order_action: by the position effect, or by the side where that says neither open nor close; a
  /// cancellation that was asked for aloud (`cancelAsked`) is a cancel.
  int32_t Action(bool cancelAsked) const;
  bool IsMarketOrder() const;
  /// Nothing of the fill detail is still on its way.
  bool IsFillComplete() const { return lRecFillQty == lCumQty; }
};

/// The strategy key in a "UserKey2".
std::wstring StrategyKeyOf(const std::wstring& userKey2);

/// order_result of a report with this action and execution state.
int32_t ResultOf(int32_t action, int32_t execType);

}  // namespace iorder

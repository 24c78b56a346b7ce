#pragma once

#include <cstdint>
#include <string>

#include "records/scaled_value.h"
#include "strategy/order_report.h"

namespace iorder {

/// The position of one symbol in one strategy, as the reports of its orders tell it. Quantities are lots.
struct CPosInfo {
  int32_t lCloseQty = 0;                  ///< closed so far
  int32_t lCumQty = 0;                    ///< opened: the last "CumQty" of the open order
  int32_t lLeavesQty = 0;                 ///< still working: the last "LeavesQty"
  ScaledValue llAvgPrice = NoValue;       ///< the last "AvgPrice" of the open order
  ScaledValue llPrice = NoValue;          ///< last price that it was valued at
  double dbProfit = NoPrice;              ///< in money; NoPrice until first valued
  double dbWeight = NoPrice;              ///< money of one price point; NoPrice until known
  bool bDirty = false;                    ///< the profit changed since it was last told
  std::wstring strCloseReportID;          ///< the last close order that was folded in
  ScaledValue llCloseAvgPrice = NoValue;  ///< average price of the close orders folded in
  int64_t llCloseQtyTotal = 0;            ///< quantity of the close orders folded in

  int32_t NetPosition() const;

  void TakeOpenReport(const COrderReport& report);

  /// What the close orders come to.
  struct CClosed {
    ScaledValue llAvgPrice = NoValue;
    int64_t llQty = 0;
  };
  /// Folds the report of a close order with fills in. An order that is finished counts once, however often it
  /// is reported; one that still works counts with its fills so far, as a forecast that isn't kept.
  CClosed FoldClose(const COrderReport& report);

  /// Whether there is something to value at this price.
  bool CanBeValued(ScaledValue price) const;
  /// Profit at a price, with the money that one price point is worth.
  double ProfitAt(ScaledValue price, double weight) const;
  /// What was paid for all that was opened, closed lots included; 0 without an open price.
  double CostAt(double weight) const;
};

}  // namespace iorder

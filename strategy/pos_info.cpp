#include "strategy/pos_info.h"

#include "records/int128.h"

namespace iorder {

namespace {

/// (average * quantity + price * added) / total, truncated; in 128 bits, so that large positions don't
/// overflow. Without a total the average stays what it was.
ScaledValue AverageWith(ScaledValue average, int64_t quantity, ScaledValue price, int64_t added,
                        int64_t total) {
  if (total == 0) return average;
  const Int128 sum = Int128{average} * quantity + Int128{price} * added;
  // What was sold without a price has none on average either, where 64 bits can't tell.
  const bool lacksPrice = price == NoValue || (average == NoValue && quantity != 0);
  if (lacksPrice && sum != static_cast<int64_t>(sum)) return NoValue;
  return static_cast<ScaledValue>(sum / total);
}

}  // namespace

int32_t CPosInfo::NetPosition() const {
  return static_cast<int32_t>(static_cast<uint32_t>(lCumQty) - static_cast<uint32_t>(lCloseQty));
}

void CPosInfo::TakeOpenReport(const COrderReport& report) {
  if (report.lCumQty > 0) {
    lCumQty = report.lCumQty;
    llAvgPrice = report.llAvgPrice;
  }
  lLeavesQty = report.lLeavesQty;
}

CPosInfo::CClosed CPosInfo::FoldClose(const COrderReport& report) {
  CClosed closed;
  closed.llQty = llCloseQtyTotal + report.lCumQty;
  closed.llAvgPrice =
      AverageWith(llCloseAvgPrice, llCloseQtyTotal, report.llAvgPrice, report.lCumQty, closed.llQty);
  if (report.lLeavesQty == 0) {
    if (report.strReportID != strCloseReportID) {
      strCloseReportID = report.strReportID;
      llCloseAvgPrice = closed.llAvgPrice;
      llCloseQtyTotal = closed.llQty;
    } else {
      closed = {.llAvgPrice = llCloseAvgPrice, .llQty = llCloseQtyTotal};
    }
  }
  if (closed.llQty > 0) lCloseQty = static_cast<int32_t>(closed.llQty);
  return closed;
}

bool CPosInfo::CanBeValued(ScaledValue price) const {
  return price != NoValue && llAvgPrice != NoValue && NetPosition() > 0;
}

double CPosInfo::ProfitAt(ScaledValue price, double weight) const {
  if (price == llAvgPrice) return 0.0;
  return (FromScaled(price) - FromScaled(llAvgPrice)) * NetPosition() * weight;
}

double CPosInfo::CostAt(double weight) const {
  return lCumQty > 0 && llAvgPrice != NoValue ? lCumQty * FromScaled(llAvgPrice) * weight : 0.0;
}

}  // namespace iorder

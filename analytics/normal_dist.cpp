#include "analytics/normal_dist.h"

namespace iorder {

const double CNormalDist::kInverseRootOfTwoPi = 1 / std::sqrt(6.283185307179586);

const CNormalDist::Row CNormalDist::kTable[kRows] = {
#include "analytics/normal_dist_rows.inc"
};

}  // namespace iorder

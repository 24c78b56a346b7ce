#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "grouporder/group_order.h"
#include "grouporder/leg_scan.h"

namespace iorder {

/// One string of a cycle.
struct CLegOrder {
  size_t leg = 0;
  bool bOffset = false;  ///< closes what is held, rather than opening the chosen option
  std::wstring strSymbol;
  int32_t lQty = 0;
  std::wstring strText;  ///< as it goes to the host
};

/// The strings of a cycle, leg by leg: first what offsets held positions of the other side, then, for what
/// remains, the chosen option. Legs 0 and 2 take their positions forwards, legs 1 and 3 backwards. Only the
/// last string of a leg names the group. A leg without a symbol, or whose quantity times its multiplier isn't
/// above 0, makes none.
std::vector<CLegOrder> MakeLegOrders(const stcIntlgntOrd& order, const CLegScan& scan,
                                     const std::wstring& chasePrice);

}  // namespace iorder

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "grouporder/group_order.h"

namespace iorder {

/// What differs between the strings of one cycle.
struct CGroupOrderString {
  std::wstring_view type;  ///< second token of the leg's symbol
  std::wstring_view symbol;
  int32_t lSide = side::kBuy;
  int32_t lQty = 0;
  int32_t lGroupType = 0;
  std::wstring_view groupId;  ///< empty: of no group
};

/// The line of KEY=VALUE pairs that goes to the host for one leg, or a part of one. PROCESSID is the number
/// that the process ID spells, 0 if it spells none.
std::wstring FormatGroupOrder(const stcIntlgntOrd& order, const CGroupOrderString& string,
                              std::wstring_view chasePrice);

}  // namespace iorder

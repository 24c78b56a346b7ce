#pragma once

#include <cstdint>
#include <string>

#include "records/scaled_value.h"
#include "strategy/strategy.h"

namespace iorder {

/// The codes of an order string.
namespace order_code {
inline constexpr int32_t kMarket = 1;                 ///< ORDERTYPE "M"
inline constexpr int32_t kLimit = 2;                  ///< ORDERTYPE limit
inline constexpr int32_t kMarketWithProtection = 25;  ///< ORDERTYPE "MWP"
inline constexpr int32_t kOpen = 0;                   ///< POSITIONEFFECT
inline constexpr int32_t kClose = 1;                  ///< POSITIONEFFECT
inline constexpr int32_t kDay = 1;                    ///< TIMEINFORCE of a limit order
inline constexpr int32_t kImmediate = 2;              ///< TIMEINFORCE of a market order
}  // namespace order_code

/// What an order string says beside who sends it.
struct COrder {
  std::wstring strSymbol;
  ScaledValue llPrice = NoValue;
  std::wstring strPrice;  ///< a price in words for the order service; wins over llPrice unless empty
  int32_t lQty = 0;
  int32_t lOrderType = order_code::kLimit;
  int32_t lPositionEffect = order_code::kOpen;
  int32_t lTimeInForce = order_code::kDay;
  std::wstring strSide;  ///< "B" or "S"
};

/// The line of KEY=VALUE pairs that goes to the host. The batch stamp behind the "@" of USERKEY2 is what
/// routes reports back. PROCESSID is the number that the process ID spells, 0 if it spells none.
std::wstring FormatOrder(const CStrategyIdentity& identity, const std::wstring& batchStamp,
                         const COrder& order);

}  // namespace iorder

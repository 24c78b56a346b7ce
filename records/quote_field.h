#pragma once

#include <cstdint>

namespace iorder {

/// The numeric fields of a quote record.
namespace quote_field {
inline constexpr int32_t kTime =
    2;  ///< of the last trade, UTC, hhmmss with further digits by "TradeTimeFormat"
inline constexpr int32_t kPrice = 3;      ///< last price, scaled; price type "L"
inline constexpr int32_t kQuantity = 4;   ///< of the last trade
inline constexpr int32_t kVolume = 6;     ///< of the day
inline constexpr int32_t kOpen = 8;       ///< opening price, scaled; price type "O"
inline constexpr int32_t kPriceR = 12;    ///< price type "R"
inline constexpr int32_t kPriceP = 15;    ///< price type "P"
inline constexpr int32_t kDate = 21;      ///< of the last trade, UTC, yyyymmdd
inline constexpr int32_t kEndDate = 104;  ///< of the contract, yyyymmdd
inline constexpr int32_t kPriceY = 135;   ///< price type "Y"
}  // namespace quote_field

}  // namespace iorder

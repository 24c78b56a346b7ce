#pragma once

#include <cstdint>
#include <string>

#include "records/scaled_value.h"

namespace iorder {

/// Numeric fields of a quote record.
namespace quote_field {
inline constexpr int32_t kTime =
    2;  ///< of the last trade, UTC, hhmmss with further digits by "TradeTimeFormat"
inline constexpr int32_t kPrice = 3;     ///< last price; price type "L"
inline constexpr int32_t kQty = 4;       ///< of the last trade
inline constexpr int32_t kVolume = 6;    ///< of the day
inline constexpr int32_t kOpen = 8;      ///< opening price; price type "O"
inline constexpr int32_t kPriceR = 12;   ///< price type "R"
inline constexpr int32_t kPriceP = 15;   ///< price type "P"
inline constexpr int32_t kDate = 21;     ///< of the last trade, UTC, yyyymmdd
inline constexpr int32_t kPriceY = 135;  ///< price type "Y"
}  // namespace quote_field

/// The update id of a snapshot that no update caused.
inline constexpr int32_t kNoUpdate = -1;

/// A snapshot of one quote on its way to the profit monitor.
struct CQuoteData {
  std::wstring strSymbol;
  int64_t llField21 = NoValue;       ///< date
  int64_t llField2 = NoValue;        ///< time
  ScaledValue llPrice = NoValue;     ///< last price
  int64_t llField6 = NoValue;        ///< volume of the day
  int32_t lTransHandle = kNoUpdate;  ///< update id: the originator of the update that caused the snapshot
};

}  // namespace iorder

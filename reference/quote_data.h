#pragma once

#include <cstdint>
#include <string>

#include "records/quote_field.h"
#include "records/scaled_value.h"

namespace iorder {

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

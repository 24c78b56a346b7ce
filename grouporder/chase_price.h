#pragma once

#include <cstdint>
#include <string>

#include "records/base_data.h"

namespace iorder {

/// The kind of order settings that group orders have.
inline constexpr int32_t kGroupChaseKind = 1;

/// The text of CHASEPRICE, "0|times|timeout in ms|C|2", from the item of the order settings (none: there are
/// none) that applies to `symbol`: what it holds for broker and account, else for all. Empty if there is
/// nothing, if it isn't a JSON object, or if it isn't switched on.
std::wstring BuildChasePrice(CBaseData* settings, int32_t kind, const std::wstring& broker,
                             const std::wstring& account, const std::wstring& symbol);

}  // namespace iorder

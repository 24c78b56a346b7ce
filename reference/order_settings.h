#pragma once

#include <memory>
#include <string_view>

#include "records/base_data.h"

namespace iorder {

/// The item of the order settings (record "TRADE.EXTENDORDER.SETUP") that applies to a symbol, owned by the
/// caller, or none. The narrowest name wins: the whole symbol; its first five, four, three, two tokens, each
/// only if the last of them is there; the word for its type ("OPTION", "STOCK", and "FUTURE" for all else);
/// "ALL".
std::unique_ptr<CBaseData> FindRecordForSymbol(CBaseData& settings, std::wstring_view symbol);

}  // namespace iorder

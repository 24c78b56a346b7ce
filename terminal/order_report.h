#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "records/exec_type.h"
#include "terminal/order_list.h"
#include "terminal/record_bus.h"

namespace iorder {

inline constexpr const wchar_t* kOrderSet = L"TRADE.ORDERSET";

/// The fields of one order's node in "TRADE.ORDERSET".
using ReportFields = std::map<std::wstring, FieldValue>;

FieldValue TextField(std::wstring text);
FieldValue Int32Field(int64_t value);
FieldValue Int64Field(int64_t value);

/// What every report of an order shows: what the order string says, "LevelKey", and "CumQty" 0.
ReportFields FirstReport(const SentOrder& order);

/// Changes the node of that number and fires the update, with the payload "BN<node>=[]" if none is given. On
/// a thread of the bus, under no lock.
void FireReport(CEmbeddedBus& bus, int32_t node, const ReportFields& fields,
                const std::optional<std::wstring>& payload = std::nullopt);

}  // namespace iorder

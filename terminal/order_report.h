#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

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
/// NoValue: the field goes.
FieldValue Int64OrNone(int64_t value);
/// The integer of either size in a field; none if it holds another kind.
std::optional<int64_t> IntegerIn(const Value& value);

/// What one report says of its order.
struct OrderReport {
  int32_t order = 0;
  int32_t execType = 0;
  ScaledValue price = NoValue;
  int64_t sent = 0;
  int64_t leaves = 0;
  int64_t filled = 0;    ///< "CumQty"
  int64_t received = 0;  ///< "RecFillQty"; the queue fills it in
  ScaledValue average = NoValue;
  std::wstring text;               ///< why the order was rejected
  std::vector<FieldChange> named;  ///< of a child: what a line of the day names; it wins
  bool announces = false;          ///< of a child: the engine is told of its record
};

/// What every report of an order shows: what the order string says, "LevelKey", and "CumQty" 0.
ReportFields FirstReport(const SentOrder& order);

/// What the report says, with what every report of its order shows.
ReportFields FieldsOf(const SentOrder& order, const OrderReport& report);

/// Changes the node of that number and fires the update, with the payload "BN<node>=[]" if none is given. On
/// a thread of the bus, under no lock.
void FireReport(CEmbeddedBus& bus, int32_t node, const ReportFields& fields,
                const std::optional<std::wstring>& payload = std::nullopt);

}  // namespace iorder

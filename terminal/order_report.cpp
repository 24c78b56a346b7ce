#include "terminal/order_report.h"

#include <utility>

#include "records/number_text.h"

namespace iorder {

FieldValue TextField(std::wstring text) {
  return {{}, std::move(text), {}};
}

FieldValue Int32Field(int64_t value) {
  return {{}, static_cast<int32_t>(value), {}};
}

FieldValue Int64Field(int64_t value) {
  return {{}, value, {}};
}

FieldValue Int64OrNone(int64_t value) {
  return value != NoValue ? Int64Field(value) : FieldValue{FieldValue::Kind::kRemove, {}, {}};
}

std::optional<int64_t> IntegerIn(const Value& value) {
  if (const int64_t* const int64 = std::get_if<int64_t>(&value)) return *int64;
  if (const int32_t* const int32 = std::get_if<int32_t>(&value)) return *int32;
  return std::nullopt;
}

ReportFields FirstReport(const SentOrder& order) {
  const auto text = [&](const wchar_t* key) { return OrderField(order.fields, key); };
  ReportFields fields;
  fields[L"UserKey2"] = TextField(text(L"USERKEY2"));
  fields[L"Symbol"] = TextField(text(L"SYMBOL"));
  fields[L"Side"] = TextField(text(L"SIDE"));
  fields[L"PositionEffect"] = Int32Field(LeadingInt64(text(L"POSITIONEFFECT")));
  fields[L"OrderType"] = Int32Field(LeadingInt64(text(L"ORDERTYPE")));
  if (order.fields.contains(L"PRICE")) {
    fields[L"Price"] = Int64Field(LeadingInt64(text(L"PRICE")));
  }
  fields[L"SendQty"] = Int32Field(LeadingInt64(text(L"QTY")));
  fields[L"LevelKey"] = TextField(ReportId(order.number));
  fields[L"CumQty"] = Int32Field(0);
  return fields;
}

ReportFields FieldsOf(const SentOrder& order, const OrderReport& report) {
  ReportFields fields = FirstReport(order);
  fields[L"ExecType"] = Int32Field(report.execType);
  fields[L"CumQty"] = Int32Field(report.filled);
  fields[L"LeavesQty"] = Int32Field(report.leaves);
  fields[L"RecFillQty"] = Int32Field(report.received);
  if (report.price != NoValue) fields[L"Price"] = Int64Field(report.price);
  // The node keeps what a report doesn't name, and a report that was overtaken must not show a later average.
  fields[L"AvgPrice"] = Int64OrNone(report.average);
  if (!report.text.empty()) fields[L"Text"] = TextField(report.text);
  return fields;
}

void FireReport(CEmbeddedBus& bus, int32_t node, const ReportFields& fields,
                const std::optional<std::wstring>& payload) {
  RecordChange change;
  for (const auto& [name, value] : fields) {
    change.fields.push_back({name, value});
  }
  bus.ApplyToNode(kOrderSet, node, change);
  bus.Fire(kOrderSet, {false, std::nullopt, payload.value_or(L"BN" + ToDecimal(node) + L"=[]")});
}

}  // namespace iorder

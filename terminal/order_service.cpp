#include "terminal/order_service.h"

#include <algorithm>
#include <cwchar>

#include "terminal/input_error.h"

namespace iorder {
namespace {

constexpr const wchar_t* kOrderSet = L"TRADE.ORDERSET";
constexpr const wchar_t* kStrategyPosition = L"STRATEGY.POSITION";

FieldValue TextValue(std::wstring text) {
  return {{}, std::move(text), {}};
}

int64_t LeadingNumber(const std::wstring& text) {
  return std::wcstoll(text.c_str(), nullptr, 10);
}

FieldValue Int32Value(int64_t value) {
  return {{}, static_cast<int32_t>(value), {}};
}

/// The whole number in a field, 0 for anything else.
int64_t NumberOf(const FieldValue& field) {
  if (const int64_t* const int64 = std::get_if<int64_t>(&field.value)) {
    return *int64;
  }
  return Int32Or(field.value, 0);
}

bool Names(const std::vector<FieldChange>& fields, std::wstring_view name) {
  return std::any_of(fields.begin(), fields.end(),
                     [name](const FieldChange& field) { return field.name == name; });
}

}  // namespace

COrderService::COrderService(IWorldRuntime& runtime, CEmbeddedBus& bus, CAccountsRecord& accounts)
    : m_runtime(runtime), m_bus(bus), m_accounts(accounts), m_section(runtime, "orders") {}

void COrderService::NewOrder(const std::wstring& text) {
  SentOrder order;
  order.time = m_runtime.Now();
  order.text = text;
  order.fields = ParseOrderText(text);
  order.complaint = ComplaintOf(order.fields);
  CLockGuard guard(m_section);
  order.number = static_cast<int32_t>(m_orders.size()) + 1;
  m_orders.push_back(std::move(order));
}

std::wstring COrderService::ComplaintOf(const OrderFields& fields) {
  const std::wstring broker = OrderField(fields, L"BROKERID");
  const std::wstring account = OrderField(fields, L"ACCOUNT");
  if (!m_accounts.IsConnected(broker, account)) {
    return L"account " + broker + L"/" + account + L" isn't connected";
  }
  const std::wstring symbol = OrderField(fields, L"SYMBOL");
  return m_bus.HasData(symbol) ? std::wstring() : L"unknown symbol " + symbol;
}

void COrderService::CancelOrder(const std::wstring& text) {
  SentCancel cancel{m_runtime.Now(), text, OrderField(ParseOrderText(text), L"REPORTID")};
  CLockGuard guard(m_section);
  m_cancels.push_back(std::move(cancel));
}

std::vector<SentOrder> COrderService::Orders() {
  CLockGuard guard(m_section);
  return m_orders;
}

std::vector<SentCancel> COrderService::Cancels() {
  CLockGuard guard(m_section);
  return m_cancels;
}

SentOrder COrderService::OrderOf(int32_t number) {
  CLockGuard guard(m_section);
  if (number < 1 || static_cast<size_t>(number) > m_orders.size()) {
    throw InputError("there is no order " + std::to_string(number) + " by then; the engine has sent " +
                     std::to_string(m_orders.size()));
  }
  return m_orders[static_cast<size_t>(number) - 1];
}

COrderService::ReportFields COrderService::FirstReport(const SentOrder& order) {
  ReportFields fields;
  fields[L"UserKey2"] = TextValue(OrderField(order.fields, L"USERKEY2"));
  fields[L"Symbol"] = TextValue(OrderField(order.fields, L"SYMBOL"));
  fields[L"Side"] = TextValue(OrderField(order.fields, L"SIDE"));
  fields[L"PositionEffect"] = Int32Value(LeadingNumber(OrderField(order.fields, L"POSITIONEFFECT")));
  fields[L"OrderType"] = Int32Value(LeadingNumber(OrderField(order.fields, L"ORDERTYPE")));
  if (order.fields.contains(L"PRICE")) {
    fields[L"Price"] = {{}, LeadingNumber(OrderField(order.fields, L"PRICE")), {}};
  }
  fields[L"SendQty"] = Int32Value(LeadingNumber(OrderField(order.fields, L"QTY")));
  fields[L"LevelKey"] = TextValue(L"R" + std::to_wstring(order.number));
  fields[L"CumQty"] = Int32Value(0);
  return fields;
}

void COrderService::WorkOutQuantities(const ReportAction& report, ReportFields& fields) {
  const int64_t filled = NumberOf(fields[L"CumQty"]);
  if (!Names(report.fields, L"RecFillQty")) {
    fields[L"RecFillQty"] = Int32Value(filled);
  }
  if (!Names(report.fields, L"LeavesQty")) {
    fields[L"LeavesQty"] = Int32Value(NumberOf(fields[L"SendQty"]) - filled);
  }
}

void COrderService::Report(const ReportAction& report) {
  const SentOrder order = OrderOf(report.order);
  ReportFields& fields = m_reports.try_emplace(report.order, FirstReport(order)).first->second;
  for (const FieldChange& field : report.fields) {
    fields[field.name] = field.value;
  }
  WorkOutQuantities(report, fields);

  RecordChange change;
  for (const auto& [name, value] : fields) {
    change.fields.push_back({name, value});
  }
  const int32_t node = report.node.value_or(report.order - 1);
  m_bus.ApplyToNode(kOrderSet, node, change);
  m_bus.Fire(kOrderSet,
             {false, std::nullopt, report.payload.value_or(L"BN" + std::to_wstring(node) + L"=[]")});
}

void COrderService::Child(const ChildAction& child, const Announce& announce) {
  const SentOrder order = OrderOf(child.order);
  std::wstring levelKey = L"C" + std::to_wstring(order.number);
  for (const FieldChange& field : child.fields) {
    if (field.name == L"LevelKey" && std::holds_alternative<std::wstring>(field.value.value)) {
      levelKey = std::get<std::wstring>(field.value.value);
    }
  }
  int32_t& handle = m_childHandles[levelKey];
  const bool isFirst = handle == 0;
  RecordChange change;
  change.name = levelKey;
  if (isFirst) {
    change.fields = {{L"Strategy", TextValue(OrderField(order.fields, L"STRATEGY"))},
                     {L"LevelKey", TextValue(levelKey)}};
  }
  change.fields.insert(change.fields.end(), child.fields.begin(), child.fields.end());
  handle = m_bus.ApplyUnnamed(handle, change);

  if (child.announce.value_or(isFirst)) {
    announce(child.topic, handle);
  } else if (!isFirst) {
    m_bus.FireUnnamed(handle);
  }
}

void COrderService::Position(const PositionAction& position) {
  if (position.items) {
    m_bus.ReplaceItems(kStrategyPosition, position.strategy, *position.items);
  } else {
    m_bus.RemoveNode(kStrategyPosition, position.strategy);
  }
}

}  // namespace iorder

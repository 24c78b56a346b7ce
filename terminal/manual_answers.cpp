#include "terminal/manual_answers.h"

#include <algorithm>

#include "terminal/strategy_positions.h"

namespace iorder {
namespace {

/// 0 for what is no integer.
int64_t NumberOf(const FieldValue& field) {
  return IntegerIn(field.value).value_or(0);
}

bool Names(const std::vector<FieldChange>& fields, std::wstring_view name) {
  return std::any_of(fields.begin(), fields.end(),
                     [name](const FieldChange& field) { return field.name == name; });
}

std::wstring LevelKeyOf(const ChildAction& child) {
  std::wstring levelKey = ChildKey(child.order);
  for (const FieldChange& field : child.fields) {
    if (field.name == L"LevelKey" && std::holds_alternative<std::wstring>(field.value.value)) {
      levelKey = std::get<std::wstring>(field.value.value);
    }
  }
  return levelKey;
}

}  // namespace

void CManualAnswers::WorkOutQuantities(const ReportAction& report, ReportFields& fields) {
  const int64_t filled = NumberOf(fields[L"CumQty"]);
  if (!Names(report.fields, L"RecFillQty")) {
    fields[L"RecFillQty"] = Int32Field(filled);
  }
  if (!Names(report.fields, L"LeavesQty")) {
    fields[L"LeavesQty"] = Int32Field(NumberOf(fields[L"SendQty"]) - filled);
  }
}

void CManualAnswers::Report(const ReportAction& report) {
  const SentOrderPtr order = m_orders.Order(report.order);
  ReportFields& fields = m_reports.try_emplace(report.order, FirstReport(*order)).first->second;
  for (const FieldChange& field : report.fields) {
    fields[field.name] = field.value;
  }
  WorkOutQuantities(report, fields);
  FireReport(m_bus, report.node.value_or(report.order - 1), fields, report.payload);
}

void CManualAnswers::Child(const ChildAction& child) {
  const SentOrderPtr order = m_orders.Order(child.order);
  const std::wstring levelKey = LevelKeyOf(child);
  const bool isFirst = !m_children.Has(levelKey);
  std::vector<FieldChange> fields;
  if (isFirst) {
    fields = {{L"Strategy", TextField(OrderField(order->fields, L"STRATEGY"))},
              {L"LevelKey", TextField(levelKey)}};
  }
  fields.insert(fields.end(), child.fields.begin(), child.fields.end());
  m_children.Change(levelKey, fields);
  if (child.announce.value_or(isFirst)) {
    m_children.Announce(levelKey, child.topic);
  } else if (!isFirst) {
    m_children.Fire(levelKey);
  }
}

void CManualAnswers::Position(const PositionAction& position) {
  if (position.items) {
    m_bus.ReplaceItems(kStrategyPosition, position.strategy, *position.items);
  } else {
    m_bus.RemoveNode(kStrategyPosition, position.strategy);
  }
}

}  // namespace iorder

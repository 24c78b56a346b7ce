#include "terminal/child_orders.h"

#include <utility>

#include "records/exec_type.h"

namespace iorder {
namespace {

/// A child's record has no "RecFillQty": there are no fills that it could tell late.
OrderRules WithoutFillLag(OrderRules rules) {
  rules.recFillLag = Milliseconds(0);
  return rules;
}

std::vector<FieldChange> ChildFields(const SentOrder& sent, const OrderReport& report) {
  ReportFields fields = FieldsOf(sent, report);
  fields.erase(L"RecFillQty");
  // The price of the string says nothing: it is the working price.
  fields[L"Price"] = Int64OrNone(report.price);
  fields[L"Strategy"] = TextField(OrderField(sent.fields, L"STRATEGY"));
  fields[L"LevelKey"] = TextField(ChildKey(sent.number));
  fields[L"GroupID"] = TextField(OrderField(sent.fields, L"GROUPID"));
  fields[L"ClientModify"] = Int32Field(0);
  for (const FieldChange& field : report.named) {
    fields[field.name] = field.value;
  }
  std::vector<FieldChange> changes;
  for (auto& [name, value] : fields) {
    changes.push_back({name, std::move(value)});
  }
  return changes;
}

}  // namespace

CChildOrders::CChildOrders(IWorldRuntime& runtime, const OrderRules& rules, const CAnswerDraws& draws,
                           CChildRecords& records)
    : m_runtime(runtime),
      m_rules(rules),
      m_draws(draws),
      m_records(records),
      m_section(runtime, "child orders"),
      m_reports(WithoutFillLag(rules), draws) {}

std::vector<TimePoint> CChildOrders::Add(const SentOrderPtr& order, OrderReport report, TimePoint due) {
  if (!IsTold(report)) return {};
  CLockGuard guard(m_section);
  Child& child = m_children[order->number];
  child.sent = order;
  report.announces = !std::exchange(child.isOnItsWay, true);
  return m_reports.Add(report, due);
}

bool CChildOrders::IsTold(const OrderReport& report) const {
  const bool isEnd = exec_type::EndsChild(report.execType);
  if (m_draws.LosesChild(report.order, m_rules.lostChild)) return false;
  if (isEnd && m_draws.LosesEnd(report.order, m_rules.lostEnd)) return false;
  return isEnd || !m_draws.IsLateChild(report.order, m_rules.lateChild);
}

void CChildOrders::Deliver() {
  while (true) {
    std::optional<OrderReport> report;
    SentOrderPtr sent;
    bool isTold = false;
    {
      CLockGuard guard(m_section);
      report = m_reports.TakeDue(m_runtime.Now());
      if (!report) return;
      Child& child = m_children[report->order];
      sent = child.sent;
      isTold = std::exchange(child.isTold, true);
    }
    Tell(*sent, *report, isTold);
  }
}

void CChildOrders::Tell(const SentOrder& sent, const OrderReport& report, bool isTold) {
  const std::wstring key = ChildKey(sent.number);
  // An announcement that comes again, or that an update has overtaken, sends the record as it is by now.
  if (!report.announces || !isTold) m_records.Change(key, ChildFields(sent, report));
  if (report.announces) {
    m_records.Announce(key, kChildTopic);
  } else {
    m_records.Fire(key);
  }
}

}  // namespace iorder

#include "app/group_order_totals.h"

#include <fmt/format.h>

#include <vector>

#include "app/group_order_words.h"
#include "app/table_text.h"

namespace iorder {
namespace {

std::string Children(size_t count) {
  return fmt::format("{} {}", count, count == 1 ? "child" : "children");
}

const char* EndState(GroupOrderEnd end) {
  switch (end) {
    case GroupOrderEnd::kTarget:
      return "done";
    case GroupOrderEnd::kNoLeg:
      return "no_option";
    case GroupOrderEnd::kNothing:
      return "no_orders";
    case GroupOrderEnd::kReplaced:
      return "replaced";
    case GroupOrderEnd::kAsleep:
      return "asleep";
  }
  return "";
}

/// The time of day alone.
std::string TimeOfDay(const std::string& time) {
  const std::string text = time.substr(time.find('T') + 1);
  return text.ends_with(".000") ? text.substr(0, text.size() - 4) : text;
}

}  // namespace

std::string CGroupOrderTotals::Row::State() const {
  if (end) return EndState(*end);
  if (isFailed && (nextLook.empty() || live > 0)) return "failed";
  if (live > 0) return "waiting";
  if (!nextLook.empty()) return "next_look";
  return cycles > 0 ? "sent" : "looking";
}

std::string CGroupOrderTotals::Row::Words() const {
  const std::string next = nextLook.empty() ? "" : "next look at " + TimeOfDay(nextLook);
  // One that another has replaced is still woken by its timer.
  if (end) return EndWords(*end) + (end == GroupOrderEnd::kReplaced && !next.empty() ? ", " + next : "");
  // A timer that runs already isn't stopped by a failure, but finds the children that are left.
  if (isFailed && (next.empty() || live > 0)) {
    return "failed child, will not go on" + (live > 0 ? "; " + Children(live) + " left" : "");
  }
  if (live > 0) return "waiting for " + Children(live);
  if (!next.empty()) return (isFailed ? "failed child, but " : "") + next;
  return cycles > 0 ? "orders sent, no child yet" : "looking";
}

void CGroupOrderTotals::Add(const Happening& happening) {
  std::visit([this](const auto& what) { Take(what); }, happening);
}

void CGroupOrderTotals::Take(const GroupOrderLooked& look) {
  Row& row = RowOf(look.order);
  row.nextLook.clear();
  row.end.reset();
}

void CGroupOrderTotals::Take(const GroupCycleMade& cycle) {
  Row& row = RowOf(cycle.order);
  ++row.cycles;
}

void CGroupOrderTotals::Take(const OrderSent& order) {
  if (!order.group) return;
  Row& row = RowOf(order.group->order);
  ++row.orders;
  row.lots += order.lots;
}

void CGroupOrderTotals::Take(const GroupChildAnnounced& child) {
  Row& row = RowOf(child.order);
  ++row.children;
  row.live = child.live;
  row.end.reset();
}

void CGroupOrderTotals::Take(const GroupChildChanged& child) {
  Row& row = RowOf(child.order);
  row.live = child.live;
  row.isFailed = row.isFailed || child.fails;
}

void CGroupOrderTotals::Take(const GroupLookPlanned& look) {
  Row& row = RowOf(look.order);
  row.nextLook = look.time;
  row.end.reset();
}

void CGroupOrderTotals::Take(const GroupLookPassed& look) {
  RowOf(look.order).nextLook.clear();
}

void CGroupOrderTotals::Take(const GroupOrderEnded& ended) {
  RowOf(ended.order).end = ended.end;
}

bool CGroupOrderTotals::IsIdShared(const std::string& id) const {
  const auto first = m_rows.lower_bound({id, 0});
  const auto second = first != m_rows.end() ? std::next(first) : first;
  return second != m_rows.end() && second->first.first == id;
}

std::string CGroupOrderTotals::Table() const {
  if (m_rows.empty()) return "";
  std::vector<std::vector<std::string>> lines;
  lines.push_back({"group order", "cycles", "orders", "lots", "children", "stands"});
  for (const auto& [key, row] : m_rows) {
    const std::string id = key.first.empty() ? "(no id)" : key.first;
    lines.push_back({IsIdShared(key.first) ? fmt::format("{} #{}", id, key.second) : id,
                     std::to_string(row.cycles), std::to_string(row.orders), std::to_string(row.lots),
                     std::to_string(row.children), row.Words()});
  }
  const TableColumn text{.isText = true};
  return TableText({text, {}, {}, {}, {}, text}, lines);
}

void CGroupOrderTotals::WriteJson(CObjectWriter& writer) const {
  writer.BeginList("group_orders");
  for (const auto& [key, row] : m_rows) {
    writer.Begin();
    writer.Text("group_order", key.first);
    writer.Number("number", key.second);
    writer.Number("cycles", row.cycles);
    writer.Number("orders", row.orders);
    writer.Number("lots", row.lots);
    writer.Number("children", row.children);
    writer.Number("live", static_cast<int64_t>(row.live));
    writer.Text("state", row.State());
    writer.Text("words", row.Words());
    writer.End();
  }
  writer.EndList();
}

}  // namespace iorder

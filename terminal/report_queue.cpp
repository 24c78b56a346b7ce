#include "terminal/report_queue.h"

#include <algorithm>
#include <utility>

namespace iorder {

std::vector<TimePoint> CReportQueue::Add(const OrderReport& report, TimePoint due) {
  Order& order = m_orders[report.order];
  const int32_t number = ++order.reports;
  due = DueOf(order, due + m_draws.Lateness(report.order, number, m_rules.late));
  Insert(due, false, report);
  if (m_draws.Repeats(report.order, number, m_rules.repeat)) {
    Insert(due, false, report);
  }
  const bool tellsFill = report.filled > std::exchange(order.filled, report.filled);
  if (m_rules.recFillLag.count() == 0 || !tellsFill) {
    return {due};
  }
  Insert(due + m_rules.recFillLag, true, report);
  return {due, due + m_rules.recFillLag};
}

TimePoint CReportQueue::DueOf(Order& order, TimePoint due) const {
  if (!m_rules.outOfOrder) {
    due = order.lastDue = std::max(due, order.lastDue);
  }
  return due;
}

void CReportQueue::Insert(TimePoint due, bool isFillDetail, const OrderReport& report) {
  const auto place = std::upper_bound(m_entries.begin(), m_entries.end(), due,
                                      [](TimePoint time, const Entry& other) { return time < other.due; });
  m_entries.insert(place, {due, ++m_lastNumber, isFillDetail, report});
}

std::optional<OrderReport> CReportQueue::TakeDue(TimePoint now) {
  if (m_entries.empty() || m_entries.front().due > now) {
    return std::nullopt;
  }
  const Entry entry = std::move(m_entries.front());
  m_entries.pop_front();
  return Tell(entry);
}

OrderReport CReportQueue::Tell(const Entry& entry) {
  Order& order = m_orders[entry.report.order];
  if (entry.isFillDetail) {
    order.received = std::max(order.received, entry.report.filled);
    order.told.received = order.received;
    return order.told;
  }
  OrderReport report = entry.report;
  // Without a lag what is told of fills is complete.
  report.received = m_rules.recFillLag.count() == 0 ? report.filled : order.received;
  if (entry.number > order.toldNumber) {
    order.toldNumber = entry.number;
    order.told = report;
  }
  return report;
}

}  // namespace iorder

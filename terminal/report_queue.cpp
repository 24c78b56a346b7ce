#include "terminal/report_queue.h"

#include <algorithm>
#include <utility>

namespace iorder {

std::vector<TimePoint> CReportQueue::Add(const OrderReport& report, TimePoint due) {
  Order& order = m_orders[report.order];
  const int32_t number = ++order.reports;
  // Only what is drawn lets a report overtake an earlier one.
  order.lastPunctual = std::max(due, order.lastPunctual);
  due = order.lastPunctual + m_draws.Lateness(report.order, number, m_rules.late);
  std::vector<TimePoint> times = {Put(order, due, report)};
  if (m_draws.Repeats(report.order, number, m_rules.repeat)) {
    times.push_back(Put(order, due, report));
  }
  const bool tellsFill = report.filled > std::exchange(order.filled, report.filled);
  if (m_rules.recFillLag.count() > 0 && tellsFill) {
    times.push_back(Insert(order, times.front() + m_rules.recFillLag, true, report));
  }
  return times;
}

TimePoint CReportQueue::Put(Order& order, TimePoint due, const OrderReport& report) {
  if (!m_rules.outOfOrder) {
    due = std::max(due, order.lastDue);
  }
  order.lastDue = Insert(order, due, false, report);
  return order.lastDue;
}

TimePoint CReportQueue::Insert(Order& order, TimePoint due, bool isFillDetail, const OrderReport& report) {
  while (!order.moments.insert(due).second) {
    due += Milliseconds(1);
  }
  const auto place = std::upper_bound(m_entries.begin(), m_entries.end(), due,
                                      [](TimePoint time, const Entry& other) { return time < other.due; });
  m_entries.insert(place, {due, ++m_lastNumber, isFillDetail, report});
  return due;
}

std::optional<OrderReport> CReportQueue::TakeDue(TimePoint now) {
  if (m_entries.empty() || m_entries.front().due > now) {
    return std::nullopt;
  }
  const Entry entry = std::move(m_entries.front());
  m_entries.pop_front();
  std::set<TimePoint>& moments = m_orders[entry.report.order].moments;
  moments.erase(moments.begin(), moments.lower_bound(now));
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

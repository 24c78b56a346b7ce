#pragma once

#include <map>
#include <string>

#include "terminal/child_records.h"
#include "terminal/day.h"
#include "terminal/order_list.h"
#include "terminal/order_report.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Answers orders as the lines of a day say. All operations come on the one thread of the bus that plays
/// lines; an order that wasn't sent yet is an InputError.
class CManualAnswers {
 public:
  CManualAnswers(CEmbeddedBus& bus, COrderList& orders, CChildRecords& children)
      : m_bus(bus), m_orders(orders), m_children(children) {}

  void Report(const ReportAction& report);
  void Child(const ChildAction& child);
  void Position(const PositionAction& position);

 private:
  static void WorkOutQuantities(const ReportAction& report, ReportFields& fields);

  CEmbeddedBus& m_bus;
  COrderList& m_orders;
  CChildRecords& m_children;
  std::map<int32_t, ReportFields> m_reports;  ///< by order
};

}  // namespace iorder

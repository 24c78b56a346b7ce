#pragma once

#include <functional>
#include <map>
#include <string>

#include "terminal/day.h"
#include "terminal/order_list.h"
#include "terminal/order_report.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Answers orders as the lines of a day say. All operations come on the one thread of the bus that plays
/// lines; an order that wasn't sent yet is an InputError.
class CManualAnswers {
 public:
  /// Tells the engine of a record on a topic.
  using Announce = std::function<void(const std::wstring& topic, int32_t handle)>;

  CManualAnswers(CEmbeddedBus& bus, COrderList& orders) : m_bus(bus), m_orders(orders) {}

  void Report(const ReportAction& report);
  void Child(const ChildAction& child, const Announce& announce);
  void Position(const PositionAction& position);

 private:
  static void WorkOutQuantities(const ReportAction& report, ReportFields& fields);

  CEmbeddedBus& m_bus;
  COrderList& m_orders;
  std::map<int32_t, ReportFields> m_reports;       ///< by order
  std::map<std::wstring, int32_t> m_childHandles;  ///< by "LevelKey"
};

}  // namespace iorder

#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/answer_draws.h"
#include "terminal/child_records.h"
#include "terminal/order_list.h"
#include "terminal/order_rules.h"
#include "terminal/report_queue.h"

namespace iorder {

/// Tells the engine what becomes of child orders: the first report of one announces its record, each further
/// one changes it and fires its update. What the rules lose or hold back isn't told.
class CChildOrders {
 public:
  CChildOrders(IWorldRuntime& runtime, const OrderRules& rules, const CAnswerDraws& draws,
               CChildRecords& records);

  /// Puts on its way what is to be told then, or later by what is drawn. The times at which Deliver has
  /// something to do. Any thread may call.
  std::vector<TimePoint> Add(const SentOrderPtr& order, OrderReport report, TimePoint due);
  /// Tells what is due. On the thread of the bus, under no lock.
  void Deliver();

 private:
  struct Child {
    SentOrderPtr sent;
    bool isOnItsWay = false;  ///< the announcement has been put in
    bool isTold = false;      ///< its record holds what the order is
  };

  bool IsTold(const OrderReport& report) const;
  void Tell(const SentOrder& sent, const OrderReport& report, bool isTold);

  IWorldRuntime& m_runtime;
  const OrderRules m_rules;
  const CAnswerDraws m_draws;
  CChildRecords& m_records;
  CCriticalSection m_section;
  std::map<int32_t, Child> m_children IORDER_GUARDED_BY(m_section);  ///< by order
  CReportQueue m_reports IORDER_GUARDED_BY(m_section);
};

}  // namespace iorder

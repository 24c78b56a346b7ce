#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "platform/date_time.h"
#include "terminal/answer_draws.h"
#include "terminal/order_report.h"
#include "terminal/order_rules.h"

namespace iorder {

/// The reports on their way to the engine: each comes when it is due, and no report of an order comes before
/// an earlier one of the same order, unless the rules let what is drawn bring that about. The engine reads a
/// report some time after it was told of it, so no two of one order come at the same moment: the later one
/// waits for the next. It has no clock and no lock of its own.
class CReportQueue {
 public:
  CReportQueue(const OrderRules& rules, const CAnswerDraws& draws) : m_rules(rules), m_draws(draws) {}

  /// Puts a report on its way that is due then (not before now), or later by what is drawn. The times at
  /// which something is to be taken out.
  std::vector<TimePoint> Add(const OrderReport& report, TimePoint due);
  /// The first report that is due, or none.
  std::optional<OrderReport> TakeDue(TimePoint now);

 private:
  struct Entry {
    TimePoint due;
    uint64_t number;    ///< of all entries, in the order in which they were put in
    bool isFillDetail;  ///< it completes "RecFillQty" for the fills that its report told
    OrderReport report;
  };
  struct Order {
    int32_t reports = 0;
    int64_t filled = 0;           ///< as far as put in
    TimePoint lastPunctual;       ///< when the newest report would have come without what is drawn
    TimePoint lastDue;            ///< of what was put in, but for fill details
    std::set<TimePoint> moments;  ///< from now on, at which something comes or has come
    uint64_t toldNumber = 0;      ///< of the newest report that was told
    OrderReport told;
    int64_t received = 0;
  };

  TimePoint Put(Order& order, TimePoint due, const OrderReport& report);
  TimePoint Insert(Order& order, TimePoint due, bool isFillDetail, const OrderReport& report);
  OrderReport Tell(const Entry& entry);

  const OrderRules m_rules;
  const CAnswerDraws m_draws;
  uint64_t m_lastNumber = 0;
  std::deque<Entry> m_entries;  ///< by due, then by number
  std::map<int32_t, Order> m_orders;
};

}  // namespace iorder

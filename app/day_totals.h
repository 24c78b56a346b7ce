#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "app/group_order_totals.h"
#include "app/happening.h"
#include "app/position_totals.h"

namespace iorder {

/// What a day came to, gathered from its happenings.
class CDayTotals {
 public:
  struct Strategy {
    int64_t state = -1;
    bool isGone = false;
    int64_t accepted = 0;
    int64_t orders = 0;
    int64_t lots = 0;
    int64_t cash = 0;   ///< of its last batch
    std::string ended;  ///< what ended its last run; empty if it hasn't ended
  };

  void Add(const Happening& happening);

  int64_t Orders() const { return m_orders; }
  int64_t Cancels() const { return m_cancels; }
  int64_t Faults() const { return m_faults; }
  const std::map<std::string, Strategy>& Strategies() const { return m_strategies; }

  /// The closing table, with an end of line behind each line.
  std::string Table() const;
  /// The closing object of the JSON form, with the errors of the run.
  std::string Json(const std::vector<std::string>& errors) const;

 private:
  std::string StrategyTable() const;

  std::map<std::string, Strategy> m_strategies;
  CPositionTotals m_positions;
  CGroupOrderTotals m_groupOrders;
  int64_t m_orders = 0;
  int64_t m_cancels = 0;
  int64_t m_faults = 0;
};

}  // namespace iorder

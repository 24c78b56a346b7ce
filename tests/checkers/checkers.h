#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "terminal/day.h"
#include "tests/checkers/checked_run.h"
#include "tests/checkers/checker.h"
#include "tests/checkers/group_book.h"
#include "tests/checkers/position_model.h"
#include "tests/checkers/profit_model.h"
#include "tests/checkers/strategy_book.h"
#include "tests/checkers/tape.h"

namespace iorder::testing {

/// Rules that a day leaves out: lines {"note": "checkers: leave out RULE: why"} of its file. A note that
/// begins so and names no rule is an InputError.
std::set<std::string> RulesLeftOut(const std::string& dayPath);

/// All checkers, listening to a day as it is played.
class CCheckers : public IRunListener {
 public:
  /// The day outlives the checkers.
  explicit CCheckers(const Day& day, const std::set<std::string>& leftOut = {});

  void OnStep(const TraceStep& step) override;
  void OnRead(const BusRead& read) override;
  /// Settles the last moment. What has been broken, in the order in which it showed.
  const Violations& Finish();

  static std::vector<std::string> Rules();
  const CGroupBook& Groups() const { return m_groups; }

 private:
  void Reach(LocalTime at);

  const CTape m_tape;
  CStrategyBook m_book;
  CPositionModel m_positions;
  CProfitModel m_profits{m_positions};
  CGroupBook m_groups;
  Violations m_violations;
  std::vector<std::unique_ptr<CChecker>> m_checkers;
  LocalTime m_now;
};

}  // namespace iorder::testing

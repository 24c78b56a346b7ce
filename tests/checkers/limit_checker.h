#pragma once

#include <map>
#include <set>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/checkers/profit_model.h"

namespace iorder::testing {

/// The limits of a tag fire when, and only when, the profit or loss of all its strategies together reaches
/// one: as one of them is valued or a command sets the limits. Each strategy of the tag is then told to close
/// out, and cancels and closes unless its run is over.
class CLimitChecker : public CChecker {
 public:
  CLimitChecker(const CStrategyBook& book, const CPositionModel& positions, const CProfitModel& profits,
                Violations& violations)
      : CChecker("limits", violations), m_book(book), m_positions(positions), m_profits(profits) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  struct Side {
    int64_t enable = 0;
    int64_t value = -1;
    double percent = -1.0;
  };
  struct Limits {
    Side profit;
    Side loss;
  };
  /// What a line of the log says.
  struct Fired {
    std::string tag;
    bool isLoss = false;
    bool isPercent = false;
    double reached = 0;
    double limit = 0;
  };

  void OnCommand(const std::string& text);
  void OnFired(const TraceStep& step);
  void CheckFired(LocalTime at, const Fired& fired);
  void CheckMissed(LocalTime at, const std::string& tag);
  bool IsUnsure(const std::string& tag, LocalTime at) const;
  /// Every sum of what the tag's strategies were at in this moment.
  std::vector<Totals> SumsOf(const std::string& tag, LocalTime at) const;

  const CStrategyBook& m_book;
  const CPositionModel& m_positions;
  const CProfitModel& m_profits;
  std::map<std::string, Limits> m_limits;               ///< by tag
  std::map<std::string, std::vector<Limits>> m_former;  ///< of this moment
  std::set<std::string> m_due;                          ///< tags that were valued or set in this moment
  std::vector<Fired> m_fired;                           ///< in this moment
  std::set<std::string> m_told;                         ///< "ID SN" of strategies that were told to close out
};

}  // namespace iorder::testing

#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"
#include "tests/checkers/profit_model.h"
#include "tests/checkers/tape.h"

namespace iorder::testing {

/// Profit as an independent valuation makes it: each value of a position is that of what is held, at its
/// average, at a last price that the tape has shown since the day began and that it still shows or showed as
/// the position was there; totals are their sums; "Profit" messages tell each changed value once, within a
/// second, cut to hundredths, and "TotalProfit" the sums of a tag's strategies.
class CProfitChecker : public CChecker {
 public:
  CProfitChecker(const CStrategyBook& book, const CPositionModel& positions, const CProfitModel& profits,
                 const CTape& tape, Violations& violations)
      : CChecker("profit", violations),
        m_book(book),
        m_positions(positions),
        m_profits(profits),
        m_tape(tape) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  struct Untold {
    ToldValue value;
    LocalTime at;
  };
  struct Course {
    std::map<std::string, std::vector<Untold>> untold;  ///< values that no message has told, by symbol
    std::map<std::string, LocalTime> since;             ///< the first fill of a symbol's position
  };

  void CheckValue(const TraceStep& step);
  void CheckTotal(const TraceStep& step, const ToldValue& value);
  void CheckMessage(const TraceStep& step, const JsonNode& body);
  void CheckUntold(LocalTime at, uint32_t strategy, Course& course);
  void CheckTagTotal(LocalTime at, const JsonNode& message);
  bool FitsTag(const std::vector<std::vector<Totals>>& strategies, size_t index, const Totals& sum,
               const JsonNode& data) const;

  const CStrategyBook& m_book;
  const CPositionModel& m_positions;
  const CProfitModel& m_profits;
  const CTape& m_tape;
  std::map<uint32_t, Course> m_courses;
  std::vector<JsonNode> m_totals;  ///< "TotalProfit" messages of this moment
};

}  // namespace iorder::testing

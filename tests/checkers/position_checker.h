#pragma once

#include <map>
#include <set>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/checkers/position_model.h"

namespace iorder::testing {

/// A position is the sum of its fills, per strategy, run and symbol: "Report" messages tell it, its bought
/// and sold lots and their averages, and a close sells all of it, of every symbol that is held. A limit
/// closes out once in a strategy's life.
///
/// Where a symbol has been bought by more than one order of a run, the last one with a fill counts: that is
/// what the rules say.
class CPositionChecker : public CChecker {
 public:
  /// `fillsAreComplete`: no report of the day tells a fill before its detail is there, so that a close
  /// order's fills count as soon as they are told.
  CPositionChecker(const CPositionModel& model, bool fillsAreComplete, Violations& violations)
      : CChecker("positions", violations), m_model(model), m_fillsAreComplete(fillsAreComplete) {}

  void OnStep(const TraceStep& step) override;

 private:
  struct Walk {
    bool isOpen = false;
    bool byLimit = false;
    std::set<std::string> sold;
  };

  void CheckReport(const TraceStep& step, const JsonNode& body);
  void CheckOpen(const TraceStep& step, const JsonNode& body, const ToldReport& report);
  void CheckClose(const TraceStep& step, const JsonNode& body, const ToldReport& report);
  void CheckHeld(const TraceStep& step, const JsonNode& body, const HeldPosition& position);
  void CheckSale(const TraceStep& step, const JsonNode& body);
  void CheckWalk(const TraceStep& step, const Walk& walk);
  void Expect(const TraceStep& step, const JsonNode& body, const char* key, int64_t value);

  const CPositionModel& m_model;
  const bool m_fillsAreComplete;
  std::map<std::pair<uint32_t, std::string>, Walk> m_walks;  ///< by strategy and thread
  std::set<uint32_t> m_closedByLimit;                        ///< strategies
};

}  // namespace iorder::testing

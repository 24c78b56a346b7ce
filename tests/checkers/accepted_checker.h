#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"
#include "tests/checkers/tape.h"

namespace iorder::testing {

/// Nothing is bought that wasn't accepted in the same run: a "Scanner" message with "OpenPriceOK" 1, once per
/// symbol and run. An opening price that is judged is one that the tape shows at that moment, and the verdict
/// is that of the bounds of the order info.
class CAcceptedChecker : public CChecker {
 public:
  CAcceptedChecker(const CStrategyBook& book, const CTape& tape, Violations& violations)
      : CChecker("accepted", violations), m_book(book), m_tape(tape) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  struct Verdict {
    LocalTime at;
    std::string stamp;
  };
  using Verdicts = std::map<std::string, Verdict>;  ///< by symbol
  struct Run {
    Verdicts accepted;
    Verdicts rejected;
  };
  struct Bought {
    uint32_t strategy;
    std::string symbol;
  };

  static void KeepMoment(Verdicts& verdicts, LocalTime at);
  void OnVerdict(const TraceStep& step, const JsonNode& body);
  void CheckBounds(const TraceStep& step, const KnownStrategy& strategy, const JsonNode& body);

  const CStrategyBook& m_book;
  const CTape& m_tape;
  std::map<uint32_t, Run> m_runs;
  std::vector<Bought> m_bought;  ///< in this moment
};

}  // namespace iorder::testing

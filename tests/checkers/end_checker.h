#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"

namespace iorder::testing {

/// After the stop time, a stop command or a reached limit a run opens nothing more, until its next reset;
/// closes may go on. The stop time and a stop command cancel and close exactly as their flags say.
///
/// What may bring a run back, and so is allowed: a report of the batch with an ExecType of 3 to 7 (of an open
/// order that filled meanwhile, or of a close) moves the state to 8, from which the next accepted option
/// makes room and orders anew. After a limit the state is 6, in which cancels that weren't told lead to a
/// batch, and so any report may bring it back; a batch that was called for in the moment of the end may still
/// be built; and a start at once that still waits for quotes, for up to a second, sets the state after it.
/// Nothing else may: without these the end stands.
class CEndChecker : public CChecker {
 public:
  CEndChecker(const CStrategyBook& book, Violations& violations)
      : CChecker("ends", violations), m_book(book) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  struct End {
    bool hasEnded = false;
    bool byLimit = false;
    LocalTime at;
    const char* what = "";
  };

  /// What an ending does in its moment.
  struct Ending {
    uint32_t strategy = 0;
    std::string thread;
    bool byCommand = false;
    bool cancels = false;
    bool closes = false;
  };

  void OnEndingLine(const TraceStep& step);
  void CheckEnding(LocalTime at, const Ending& ending);
  void OnEnd(const TraceStep& step, uint32_t strategy, const char* what, bool byLimit);
  void OnReport(const TraceStep& step);

  const CStrategyBook& m_book;
  std::map<uint32_t, End> m_ends;
  std::vector<Ending> m_endings;            ///< of this moment
  std::map<uint32_t, LocalTime> m_started;  ///< by a command, and when
};

}  // namespace iorder::testing

#pragma once

#include <map>
#include <string>

#include "tests/checkers/checker.h"

namespace iorder::testing {

/// After the stop time, a stop command or a reached limit a run opens nothing more, until its next reset;
/// closes may go on.
///
/// What may bring a run back, and so is allowed: a report of the batch with an ExecType of 3 to 7 (of an open
/// order that filled meanwhile, or of a close) moves the state to 8, from which the next accepted option
/// makes room and orders anew. After a limit the state is 6, in which cancels that weren't told lead to a
/// batch, and so any report may bring it back; a batch that was called for in the moment of the end may still
/// be built; and a start at once that still waits for quotes, for up to a second, sets the state after it.
/// Nothing else may: without these the end stands.
class CEndChecker : public CChecker {
 public:
  explicit CEndChecker(Violations& violations) : CChecker("ends", violations) {}

  void OnStep(const TraceStep& step) override;

 private:
  struct End {
    bool hasEnded = false;
    bool byLimit = false;
    LocalTime at;
    const char* what = "";
  };

  void OnEnd(const TraceStep& step, uint32_t strategy, const char* what, bool byLimit);
  void OnReport(const TraceStep& step);

  std::map<uint32_t, End> m_ends;
  std::map<uint32_t, LocalTime> m_started;  ///< by a command, and when
};

}  // namespace iorder::testing

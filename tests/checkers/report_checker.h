#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"

namespace iorder::testing {

/// What a strategy does with a report of its batch: it tells the result that the report's action and ExecType
/// stand for, then logs it, then tells the "Report", all on the thread of the batches. An ExecType of 8 is a
/// cancel's confirmation exactly where the cancel was told as it was asked for. Reports of earlier batches
/// change nothing.
class CReportChecker : public CChecker {
 public:
  explicit CReportChecker(Violations& violations) : CChecker("reports", violations) {}

  void OnStep(const TraceStep& step) override;
  void OnMomentEnd(LocalTime at) override;

 private:
  struct Result {
    std::string symbol;
    int64_t result = 0;
    int64_t action = 0;
    bool isTold = false;
  };
  struct Cancel {
    uint32_t strategy;
    std::string report;
    bool isConfirmation;
  };

  void OnReport(const TraceStep& step);
  void CheckBatch(const TraceStep& step, const std::string& report);
  void NoteAsked(const TraceStep& step, const std::string& report);

  std::vector<std::string> m_userKeys;        ///< of all orders that were sent
  std::map<uint32_t, std::string> m_batches;  ///< the user key of a strategy's last batch
  std::map<uint32_t, Result> m_results;       ///< the last "Order" message of the thread of the batches
  std::map<std::string, bool> m_tells;        ///< by thread: it has just told that it asks for a cancel
  std::map<uint32_t, std::map<std::string, LocalTime>> m_asked;  ///< reports, and when
  std::vector<Cancel> m_cancels;                                 ///< of this moment
};

}  // namespace iorder::testing

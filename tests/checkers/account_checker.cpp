#include "tests/checkers/account_checker.h"

namespace iorder::testing {

void CAccountChecker::OnStep(const TraceStep& step) {
  const KnownStrategy* const strategy = m_book.Find(step.strategy);
  if (strategy == nullptr) return;
  const std::string account = strategy->info.broker + "_" + strategy->info.account;
  const bool isSent = step.LineStarts("NewOrder. ");
  const bool isRefused = step.LineStarts("NewOrder Fail. Account not Ready. ") ||
                         step.LineStarts("CancelOrder Fail. Account not Ready. ");
  if (isSent && !m_tape.WasReady(account, step.at))
    ComplainByInfo(step.at, step.strategy, "leaves while the account isn't connected: " + step.line);
  if (isRefused && !m_tape.WasNotReady(account, step.at))
    ComplainByInfo(step.at, step.strategy, "is refused while the account is connected: " + step.line);
}

}  // namespace iorder::testing

#pragma once

#include <map>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"
#include "tests/checkers/tape.h"

namespace iorder::testing {

/// No order leaves while its account isn't connected, and none is refused while it is. A cancel of what is
/// acknowledged only after the end asks no account.
class CAccountChecker : public CChecker {
 public:
  CAccountChecker(const CStrategyBook& book, const CTape& tape, Violations& violations)
      : CChecker("accounts", violations), m_book(book), m_tape(tape) {}

  void OnStep(const TraceStep& step) override;

 private:
  const CStrategyBook& m_book;
  const CTape& m_tape;
};

}  // namespace iorder::testing

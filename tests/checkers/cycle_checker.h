#pragma once

#include "tests/checkers/checker.h"
#include "tests/checkers/group_book.h"

namespace iorder::testing {

/// When a group order looks and whether it goes on: at its command; then once no child lives, the delay after
/// the last child's update, by its own timer; never again once a child has failed, but by a timer that ran
/// already. It goes on if, and only if, its sum hasn't reached the target, read from what it holds at that
/// moment. Each announced child of an order that has sent is followed, once, and each update of it is taken.
class CCycleChecker : public CChecker {
 public:
  CCycleChecker(const CGroupBook& book, Violations& violations)
      : CChecker("cycles", violations), m_book(book) {}

  void OnStep(const TraceStep& /*step*/) override {}
  void OnMomentEnd(LocalTime at) override;

 private:
  const CGroupBook& m_book;
};

}  // namespace iorder::testing

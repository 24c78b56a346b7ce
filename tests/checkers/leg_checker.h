#pragma once

#include <string>
#include <vector>

#include "terminal/day.h"
#include "tests/checkers/checker.h"
#include "tests/checkers/group_book.h"

namespace iorder::testing {

/// The legs of a cycle: each looks at all options of the chain, in their order, the calls before the puts,
/// and takes the nearest one; held positions of the other side on the symbols that lie nearest to the leg are
/// offset first, with no more than is held; the lots of a leg sum up to its quantity, doubled where a check
/// band was left; and its side is the one that the order's direction gave it.
class CLegChecker : public CChecker {
 public:
  CLegChecker(const CGroupBook& book, const Day& day, Violations& violations);

  void OnStep(const TraceStep& /*step*/) override {}
  void OnMomentEnd(LocalTime at) override;

 private:
  void CheckOptions(const CGroupBook::Cycle& cycle);
  void CheckStrings(const CGroupBook::Cycle& cycle);

  const CGroupBook& m_book;
  const Day& m_day;
  bool m_knowsChains = true;  ///< there is one database, and it works
};

}  // namespace iorder::testing

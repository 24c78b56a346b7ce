#pragma once

#include <set>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/checkers/group_book.h"

namespace iorder::testing {

/// The form of a group order's strings: all keys in their order, what the command says in its places, the
/// constants, and one CHASEPRICE for the cycle, that of the settings of its last option. Only the last string
/// of a leg names the group; the strings of one group share a GROUPID, which no other cycle has had.
class CGroupStringChecker : public CChecker {
 public:
  CGroupStringChecker(const CGroupBook& book, Violations& violations)
      : CChecker("strings", violations), m_book(book) {}

  void OnStep(const TraceStep& /*step*/) override {}
  void OnMomentEnd(LocalTime at) override;

 private:
  void Check(const CGroupBook::Cycle& cycle);

  const CGroupBook& m_book;
  std::set<std::string> m_groupIds;  ///< of earlier cycles
};

}  // namespace iorder::testing

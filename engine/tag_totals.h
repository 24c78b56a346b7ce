#pragma once

#include <map>
#include <string>

#include "strategy/strategy.h"

namespace iorder {

/// What the strategies of a tag come to together, in money.
struct CTagTotal {
  double dbCost = 0.0;
  double dbPnL = 0.0;
};

/// The totals of all tags. Of one thread.
class CTagTotals {
 public:
  /// Adds a strategy's totals to those of its tag and gives the tag; strategies that aren't of the lottery
  /// type count nowhere and give none.
  const std::wstring* Add(CStrategy& strategy);
  CTagTotal Of(const std::wstring& tag) const;
  const std::map<std::wstring, CTagTotal>& All() const { return m_totals; }

 private:
  std::map<std::wstring, CTagTotal> m_totals;
};

}  // namespace iorder

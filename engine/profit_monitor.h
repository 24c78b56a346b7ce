#pragma once

#include <optional>
#include <set>
#include <string>

#include "engine/pnl_settings.h"
#include "engine/strategy_registry.h"
#include "engine/tag_totals.h"
#include "reference/quote_queue.h"
#include "strategy/strategy_host.h"

namespace iorder {

/// Values positions and watches the limits of the tags: one quote a pass, so that m_csStrategies is held
/// briefly. A limit that is reached asks every strategy of its tag to close out; that happens later, on the
/// message thread.
///
/// Run is of one thread. Lock order: m_csStrategies, then a strategy's position lock, then its profit lock.
class CProfitMonitor {
 public:
  CProfitMonitor(IStrategyHost& host, CStrategyRegistry& strategies, CPnLSettings& limits,
                 CQuoteQueue& quotes)
      : m_host(host), m_strategies(strategies), m_limits(limits), m_quotes(quotes) {}

  /// One pass: values the oldest quote, and checks the tags whose totals or limits it finds changed.
  void Run();

 private:
  /// Values a quote (none: values nothing) with every strategy; adds the tags that changed to `tags`.
  CTagTotals Value(const std::optional<CQuoteData>& quote, std::set<std::wstring>& tags);
  std::set<std::wstring> TagsToClose(const std::set<std::wstring>& tags, const CTagTotals& totals);
  void CloseOut(const std::set<std::wstring>& tags);

  IStrategyHost& m_host;
  CStrategyRegistry& m_strategies;
  CPnLSettings& m_limits;
  CQuoteQueue& m_quotes;
};

}  // namespace iorder

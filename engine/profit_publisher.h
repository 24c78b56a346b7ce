#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "engine/strategy_registry.h"
#include "engine/tag_totals.h"
#include "strategy/strategy_host.h"

namespace iorder {

/// Tells clients what positions and tags come to, each only when it changed. Lives as long as the thread that
/// runs it, and is of that thread alone.
class CProfitPublisher {
 public:
  CProfitPublisher(IStrategyHost& host, CStrategyRegistry& strategies)
      : m_host(host), m_strategies(strategies) {}

  /// "Profit" of the positions that changed, with m_csStrategies held, then "TotalProfit" of the tags whose
  /// text differs from the one last sent.
  void Run();

 private:
  /// "Profit" of all strategies; the totals of all tags if some may have changed, else none.
  std::optional<CTagTotals> PublishPositions();
  void PublishTotal(const std::wstring& tag, const CTagTotal& total);

  IStrategyHost& m_host;
  CStrategyRegistry& m_strategies;
  std::map<std::wstring, std::wstring> m_sent;  ///< the text last sent, by tag
  uint64_t m_revision = 0;                      ///< of the strategies that the last totals were of
};

}  // namespace iorder

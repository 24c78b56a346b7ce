#include <memory>
#include <string>
#include <utility>

#include "bench/counting_host.h"
#include "bench/paths.h"
#include "engine/profit_monitor.h"

namespace iorder {

namespace {

constexpr int kTags = 10;
constexpr int kQuotes = 200;

/// Strategies of ten tags that hold the same symbols, and the monitor over them.
class CValuedBook {
 public:
  CValuedBook(CCountingHost& host, int strategies, int positions)
      : m_host(host),
        m_strategies(host.GetWorld().runtime),
        m_limits(host.GetWorld().runtime),
        m_queue(host.GetWorld().runtime),
        m_monitor(host, m_strategies, m_limits, m_queue),
        m_positions(positions) {
    for (int i = 0; i < strategies; ++i) {
      const auto strategy = MakeBenchStrategy(host, std::to_string(i), std::to_string(i % kTags));
      for (int k = 0; k < positions; ++k) {
        const std::wstring name = strategy->Key() + L"/" + std::to_wstring(k);
        strategy->OnReportUpdate(MakeBenchReport(host, name, strategy->Key(), SymbolOf(k), 3).get());
      }
      m_strategies.Add(strategy, strategy->Key());
    }
  }

  /// Values one quote after the other, each with a new price.
  void Pass() {
    for (int i = 0; i < kQuotes; ++i) {
      ++m_updates;
      m_queue.Enqueue({.strSymbol = SymbolOf(i % m_positions),
                       .llPrice = (10 + m_updates % 7) * static_cast<int64_t>(kScale),
                       .llField6 = m_updates,
                       .lTransHandle = static_cast<int32_t>(m_updates)});
      m_monitor.Run();
    }
  }

 private:
  static std::wstring SymbolOf(int index) {
    return L"ND.O.TWF.TX.202403.C." + std::to_wstring(15000 + 100 * index);
  }

  CCountingHost& m_host;
  CStrategyRegistry m_strategies;
  CPnLSettings m_limits;
  CQuoteQueue m_queue;
  CProfitMonitor m_monitor;
  const int m_positions;
  int64_t m_updates = 0;
};

}  // namespace

Ratio ProfitPass(const std::string& name, const std::string& baseline, BookSize small, BookSize large,
                 int repeats) {
  CCountingHost host;
  Ratio ratio;
  host.Run([&] {
    CValuedBook less(host, small.strategies, small.positions);
    CValuedBook more(host, large.strategies, large.positions);
    ratio = Compare(name, baseline, Timed(kQuotes, [&] { less.Pass(); }),
                    Timed(kQuotes, [&] { more.Pass(); }), 0, repeats);
  });
  Keep(host.Characters());
  return ratio;
}

}  // namespace iorder

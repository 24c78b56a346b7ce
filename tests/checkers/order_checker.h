#pragma once

#include <map>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"

namespace iorder::testing {

/// Order and cancel strings: exactly their template, with what the order info says; a buy has a price and 1
/// to 100 lots, a sale the price and type that the order info names for closes. Each is announced in the log
/// by its thread just before. Prices that were worked out are the ones that the log shows, on the tick;
/// fixed ones are the order info's. Buys leave from the thread of the batches alone.
class COrderChecker : public CChecker {
 public:
  COrderChecker(const CStrategyBook& book, Violations& violations)
      : CChecker("orders", violations), m_book(book) {}

  void OnStep(const TraceStep& step) override;

 private:
  void OnOrder(const TraceStep& step, const KnownStrategy& strategy);
  void CheckTemplate(const TraceStep& step, const KnownStrategy& strategy);
  void CheckBuy(const TraceStep& step, const KnownStrategy& strategy);
  void CheckSale(const TraceStep& step, const KnownStrategy& strategy);
  void CheckTick(const TraceStep& step, const std::string& symbol, Scaled price);

  const CStrategyBook& m_book;
  struct Announced {
    uint32_t strategy = 0;
    std::string text;
  };
  std::map<std::string, Announced> m_announced;                 ///< by thread: the line that comes before
  std::map<std::pair<uint32_t, std::string>, Scaled> m_worked;  ///< prices, by strategy and symbol
  std::map<std::string, std::string> m_ticks;                   ///< "TickSize" by symbol
};

}  // namespace iorder::testing

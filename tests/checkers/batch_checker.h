#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"
#include "tests/checkers/strategy_book.h"

namespace iorder::testing {

/// A batch of buys: it works on all symbols of its run so far, highest call first and lowest put first; its
/// cash goes over them one lot at a time, a lot costing its price times the contract's weight, cut to whole
/// money, each within what is left; and the sum that it tells is what its lots cost (one more than the cash,
/// where a lot that costs less than 1 ended it). All of this is worked out anew here. All orders of a batch
/// carry one stamp, the moment of the batch, and closes carry that of the batch before them.
class CBatchChecker : public CChecker {
 public:
  CBatchChecker(const CStrategyBook& book, Violations& violations)
      : CChecker("cash", violations), m_book(book) {}

  void OnStep(const TraceStep& step) override;

 private:
  /// A symbol of a batch, in the order in which the batch came to it.
  struct Placed {
    std::string symbol;
    int64_t lots = 0;
    bool isCall = false;
    Scaled strike = 0;
  };
  struct Batch {
    bool isOpen = false;
    int64_t newSymbols = 0;
    int64_t calls = 0;
    int64_t puts = 0;
    std::vector<Placed> placed;
    std::map<std::string, double> worked;  ///< prices
  };
  struct Course {
    Batch batch;
    std::string stamp;            ///< of the last batch
    std::set<std::string> taken;  ///< symbols of the run's batches so far
    std::string chain;            ///< whose weight counts: of the last hot chain, once it shows
    bool isHot = false;           ///< the run's chain was resolved as it began
    bool wasHot = false;
  };

  void OnStrategyLine(const TraceStep& step, const KnownStrategy& strategy);
  void OnPlaced(const TraceStep& step, Batch& batch, const std::string& symbol, int64_t lots);
  void OnDone(const TraceStep& step, const KnownStrategy& strategy, Course& course);
  void CheckOrder(const TraceStep& step, const Batch& batch);
  void CheckLots(const TraceStep& step, const KnownStrategy& strategy, const Course& course);
  void CheckStamp(const TraceStep& step, const KnownStrategy& strategy);
  double WeightOf(const Course& course) const;

  const CStrategyBook& m_book;
  std::map<uint32_t, Course> m_courses;
  std::map<std::string, double> m_weights;    ///< by symbol, as the engine looked them up
  std::map<std::string, uint32_t> m_sending;  ///< by thread: whose order comes next
};

}  // namespace iorder::testing

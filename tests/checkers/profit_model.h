#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/checkers/position_model.h"
#include "tests/checkers/strategy_book.h"
#include "tests/checkers/valuation.h"

namespace iorder::testing {

/// Cost and profit of one strategy.
struct Totals {
  Money cost;
  Money profit;

  Totals& operator+=(const Totals& other) {
    cost += other.cost;
    profit += other.profit;
    return *this;
  }
};

/// A position's value, as a line of the log tells it.
struct ToldValue {
  std::string symbol;
  Scaled average = kNone;
  int64_t lots = 0;
  Scaled last = kNone;
  double profit = 0;
  double totalProfit = 0;

  /// Whether it is of what these positions hold.
  bool IsOf(const CPositionModel::Positions& positions) const;
};

ToldValue ReadValue(const std::string& line);

/// Values all positions anew from fills and last prices. A strategy's totals change as one of its positions
/// is valued, and become 0 at its reset.
class CProfitModel {
 public:
  explicit CProfitModel(const CPositionModel& positions) : m_positions(positions) {}

  void OnStep(const TraceStep& step);
  void OnMomentEnd();

  double WeightOf(const std::string& symbol) const;
  /// What a strategy's totals may have been in this moment: those with which it began, and each change.
  std::vector<Totals> InMoment(uint32_t strategy) const;
  /// What they may be now: more than one where a report came in as a position was valued, so that either side
  /// of it may have counted.
  std::vector<Totals> Now(uint32_t strategy) const;
  /// Profits of a strategy's positions as they were last valued.
  const std::map<std::string, Money>& ProfitsOf(uint32_t strategy) const;

 private:
  struct Book {
    std::map<std::string, Money> profits;
    std::vector<Totals> now{Totals()};
    std::vector<Totals> earlier;  ///< in this moment

    void Become(std::vector<Totals> totals);
  };

  void Value(uint32_t strategy, const ToldValue& value);
  static Totals TotalsOf(const Book& book, const CPositionModel::Positions& positions, double weight);

  const CPositionModel& m_positions;
  std::map<uint32_t, Book> m_books;
  std::map<std::string, double> m_weights;
};

}  // namespace iorder::testing

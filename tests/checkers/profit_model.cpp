#include "tests/checkers/profit_model.h"

namespace iorder::testing {
ToldValue ReadValue(const std::string& line) {
  ToldValue value;
  value.symbol = FieldText(line, "strSymbol").value_or("");
  value.average = FieldInteger(line, "llAvgPrice");
  value.lots = FieldInteger(line, "lCumQty");
  value.last = FieldInteger(line, "llPrice");
  value.profit = FieldDecimal(line, "dbProfit");
  value.totalProfit = FieldDecimal(line, "dbTotalProfit");
  return value;
}

bool ToldValue::IsOf(const CPositionModel::Positions& positions) const {
  const auto found = positions.find(symbol);
  return found != positions.end() && found->second.Net() == lots && found->second.average == average;
}

void CProfitModel::OnStep(const TraceStep& step) {
  if (const auto attribute = ReadAttribute(step)) {
    if (attribute->name == "Weight") m_weights[attribute->symbol] = attribute->AsWeight();
  } else if (step.LineStarts("Reset. ")) {
    Book& book = m_books[step.strategy];
    book.profits.clear();
    book.Become({Totals()});
  } else if (step.LineStarts("OnPositionProfit Result. ")) {
    Value(step.strategy, ReadValue(step.line));
  }
}

void CProfitModel::OnMomentEnd() {
  for (auto& [number, book] : m_books) book.earlier.clear();
}

double CProfitModel::WeightOf(const std::string& symbol) const {
  const auto found = m_weights.find(symbol);
  return found == m_weights.end() || found->second <= 0 ? 1.0 : found->second;
}

void CProfitModel::Value(uint32_t strategy, const ToldValue& value) {
  Book& book = m_books[strategy];
  const double weight = WeightOf(value.symbol);
  book.profits[value.symbol] = ProfitOf(value.last, value.average, value.lots, weight);
  const CPositionModel::Positions& before = m_positions.BeforeOf(strategy);
  const CPositionModel::Positions& after = m_positions.Of(strategy);
  std::vector<Totals> totals;
  if (value.IsOf(after)) totals.push_back(TotalsOf(book, after, weight));
  if (value.IsOf(before) && m_positions.ReportOf(strategy) != nullptr)
    totals.push_back(TotalsOf(book, before, weight));
  if (totals.empty()) totals.push_back(TotalsOf(book, after, weight));
  book.Become(std::move(totals));
}

/// All positions cost at the weight of the one that was valued, closed lots included.
Totals CProfitModel::TotalsOf(const Book& book, const CPositionModel::Positions& positions, double weight) {
  Totals totals;
  for (const auto& [symbol, position] : positions) {
    if (position.bought > 0 && position.average != kNone)
      totals.cost += CostOf(position.average, position.bought, weight);
  }
  for (const auto& [symbol, profit] : book.profits) totals.profit += profit;
  return totals;
}

void CProfitModel::Book::Become(std::vector<Totals> totals) {
  earlier.insert(earlier.end(), now.begin(), now.end());
  now = std::move(totals);
}

std::vector<Totals> CProfitModel::InMoment(uint32_t strategy) const {
  std::vector<Totals> all = Now(strategy);
  const auto found = m_books.find(strategy);
  if (found != m_books.end())
    all.insert(all.end(), found->second.earlier.begin(), found->second.earlier.end());
  return all;
}

std::vector<Totals> CProfitModel::Now(uint32_t strategy) const {
  const auto found = m_books.find(strategy);
  return found == m_books.end() ? std::vector<Totals>{Totals()} : found->second.now;
}

const std::map<std::string, Money>& CProfitModel::ProfitsOf(uint32_t strategy) const {
  static const std::map<std::string, Money> none;
  const auto found = m_books.find(strategy);
  return found == m_books.end() ? none : found->second.profits;
}

}  // namespace iorder::testing

#include "tests/checkers/profit_checker.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace iorder::testing {
namespace {

/// The log shows six places of a double.
constexpr long double kShown = 6e-7L;

}  // namespace

void CProfitChecker::OnStep(const TraceStep& step) {
  if (step.IsCommand(kClientMessages) && step.text.find("\"MsgType\":\"TotalProfit\"") != std::string::npos) {
    try {
      m_totals.push_back(ParseJson(step.text, {}));
    } catch (const InputError&) {
      // told by the checker of messages
    }
  }
  if (step.strategy == 0) return;
  Course& course = m_courses[step.strategy];
  if (step.LineStarts("Reset. ")) {
    course.since.clear();
    course.untold.clear();
  } else if (step.LineStarts("OnReportUpdate. ")) {
    const ToldReport report = ReadReport(step.line);
    if (report.filled > 0) course.since.try_emplace(report.symbol, step.at);
  } else if (step.LineStarts("OnPositionProfit Result. ")) {
    CheckValue(step);
  } else if (const JsonNode* const body = BodyOf(step, "Profit")) {
    CheckMessage(step, *body);
  }
}

void CProfitChecker::CheckValue(const TraceStep& step) {
  const ToldValue value = ReadValue(step.line);
  Course& course = m_courses[step.strategy];
  course.untold[value.symbol].push_back({value, step.at});
  if (m_positions.IsUnsure(step.strategy, step.at)) return;
  if (!value.IsOf(m_positions.Of(step.strategy)) && !value.IsOf(m_positions.BeforeOf(step.strategy)))
    Complain(step.at, "values what isn't held: " + step.line);
  const auto since = course.since.find(value.symbol);
  const LocalTime from = since == course.since.end() ? step.at : since->second;
  if (!m_tape.Showed(value.symbol, CTape::kLast, value.last, from, step.at))
    Complain(step.at, "values at a price that the tape doesn't show: " + step.line);
  const Money profit = ProfitOf(value.last, value.average, value.lots, m_profits.WeightOf(value.symbol));
  if (!profit.IsNear(value.profit, kShown))
    Complain(step.at,
             fmt::format("the profit isn't {:.6f}: {}", static_cast<double>(profit.exact), step.line));
  CheckTotal(step, value);
}

void CProfitChecker::CheckTotal(const TraceStep& step, const ToldValue& value) {
  Money total = ProfitOf(value.last, value.average, value.lots, m_profits.WeightOf(value.symbol));
  for (const auto& [symbol, profit] : m_profits.ProfitsOf(step.strategy)) {
    if (symbol != value.symbol) total += profit;
  }
  if (!total.IsNear(value.totalProfit, kShown + std::abs(total.exact) * 1e-14L))
    Complain(step.at, fmt::format("the total isn't {:.6f}: {}", static_cast<double>(total.exact), step.line));
}

/// A value may be followed by another one before its message is out: each message tells one that was told by
/// none before.
void CProfitChecker::CheckMessage(const TraceStep& step, const JsonNode& body) {
  const std::string symbol = TextOf(body, "Symbol");
  std::vector<Untold>& untold = m_courses[step.strategy].untold[symbol];
  const double last = DecimalOf(body, "Last");
  const double told = DecimalOf(body, "PnL");
  const double weight = m_profits.WeightOf(symbol);
  const auto fits = [&](const Untold& entry) {
    const ToldValue& value = entry.value;
    const bool isLast = std::abs(static_cast<double>(value.last) / 1e10 - last) < 0.0101;
    return isLast && IsCutToHundredths(ProfitOf(value.last, value.average, value.lots, weight), told);
  };
  const auto found = std::find_if(untold.rbegin(), untold.rend(), fits);
  if (found == untold.rend()) {
    Complain(step.at,
             fmt::format("a profit of {} of {} at {} is told that no value of it is", told, symbol, last));
    return;
  }
  untold.erase(untold.begin(), found.base());
}

void CProfitChecker::OnMomentEnd(LocalTime at) {
  for (const JsonNode& message : m_totals) CheckTagTotal(at, message);
  m_totals.clear();
  for (auto& [strategy, course] : m_courses) CheckUntold(at, strategy, course);
}

/// Every fifth of a second what has changed is told.
void CProfitChecker::CheckUntold(LocalTime at, uint32_t strategy, Course& course) {
  const KnownStrategy* const known = m_book.Find(strategy);
  if (known != nullptr && known->goneAt) return;
  for (auto& [symbol, untold] : course.untold) {
    if (untold.empty() || at - untold.front().at <= std::chrono::seconds(1)) continue;
    if (!m_positions.IsUnsure(strategy, at)) Complain(at, "a value isn't told: " + symbol);
    untold.clear();
  }
}

void CProfitChecker::CheckTagTotal(LocalTime at, const JsonNode& message) {
  const JsonNode* const data = message.Find("Data");
  if (data == nullptr || m_book.HasChanged(at)) return;
  std::vector<std::vector<Totals>> strategies;
  for (const KnownStrategy* const strategy : m_book.OfTag(TextOf(message, "StrategyTag"), at)) {
    if (m_positions.IsUnsure(strategy->number, at)) return;
    strategies.push_back(m_profits.InMoment(strategy->number));
    if (strategy->goneAt) strategies.back().emplace_back();
  }
  if (FitsTag(strategies, 0, {}, *data)) return;
  Totals last;
  for (const std::vector<Totals>& strategy : strategies) last += strategy.front();
  Complain(
      at,
      fmt::format(
          "the total of the tag '{}' is told as cost {}, profit {}; its {} strategies come to {:.4f} and "
          "{:.4f}",
          TextOf(message, "StrategyTag"), IntegerOf(*data, "Cost"), DecimalOf(*data, "PnL"),
          strategies.size(), static_cast<double>(last.cost.exact), static_cast<double>(last.profit.exact)));
}

/// Whether some choice of what each strategy was at in this moment adds up to what was told.
bool CProfitChecker::FitsTag(const std::vector<std::vector<Totals>>& strategies, size_t index,
                             const Totals& sum, const JsonNode& data) const {
  if (index == strategies.size())
    return IsCutToWhole(sum.cost, IntegerOf(data, "Cost")) &&
           IsToldAsTotal(sum.profit, DecimalOf(data, "PnL"));
  return std::any_of(strategies[index].begin(), strategies[index].end(), [&](const Totals& totals) {
    Totals next = sum;
    next += totals;
    return FitsTag(strategies, index + 1, next, data);
  });
}

}  // namespace iorder::testing

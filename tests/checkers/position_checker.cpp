#include "tests/checkers/position_checker.h"

#include <fmt/format.h>

#include <cmath>

namespace iorder::testing {
namespace {

constexpr int64_t kOpen = 1;
constexpr int64_t kClose = 2;
/// A message shows six of a price's ten places, cut off.
constexpr double kCut = 1.1e-6;

bool IsShown(const JsonNode& body, const char* key, Scaled price) {
  return std::abs(DecimalOf(body, key) - static_cast<double>(price) / 1e10) < kCut;
}

int64_t NetOf(const CPositionModel::Positions& positions, const std::string& symbol) {
  const auto found = positions.find(symbol);
  return found == positions.end() ? 0 : found->second.Net();
}

}  // namespace

void CPositionChecker::OnStep(const TraceStep& step) {
  if (step.strategy == 0 || m_model.IsUnsure(step.strategy, step.at)) return;
  Walk& walk = m_walks[{step.strategy, step.thread}];
  if (step.LineStarts("DoClosePos. ")) {
    walk = {.isOpen = true, .byLimit = step.LineStarts("DoClosePos. bByProfit=1"), .sold = {}};
  } else if (step.LineStarts("DoClosePos End.")) {
    CheckWalk(step, walk);
    if (walk.byLimit && !m_closedByLimit.insert(step.strategy).second)
      Complain(step.at, "a limit closes out again");
    walk = {};
  } else if (const JsonNode* const report = BodyOf(step, "Report")) {
    if (report->Find("UpdateDate") != nullptr) CheckReport(step, *report);
  } else if (const JsonNode* const order = BodyOf(step, "Order")) {
    if (IntegerOf(*order, "Action") == kClose && order->Find("Qty") != nullptr) CheckSale(step, *order);
  } else if (step.LineStarts("NewOrder") && FieldText(step.line, "SIDE") == "S") {
    const std::string symbol = FieldText(step.line, "SYMBOL").value_or("");
    const int64_t lots = FieldInteger(step.line, "QTY");
    if (lots != NetOf(m_model.Of(step.strategy), symbol) &&
        lots != NetOf(m_model.BeforeOf(step.strategy), symbol))
      Complain(step.at, fmt::format("sells {} lots of {}, of which {} are held", lots, symbol,
                                    NetOf(m_model.Of(step.strategy), symbol)));
  }
}

/// The report is still on its way in as its message is announced: the model keeps it until then.
void CPositionChecker::CheckReport(const TraceStep& step, const JsonNode& body) {
  const ToldReport* const report = m_model.ReportOf(step.strategy);
  if (report == nullptr) return Complain(step.at, "a Report without a report");
  if (TextOf(body, "Symbol") != report->symbol)
    Complain(step.at, "a Report names another symbol than its report: " + TextOf(body, "Symbol"));
  const bool folds = body.Find("CloseQty") != nullptr || body.Find("CloseAvgPrice") != nullptr;
  if (report->action == kOpen) CheckOpen(step, body, *report);
  if (report->action == kClose) CheckClose(step, body, *report);
  const bool isBefore = report->action == kClose && !folds;
  const auto& positions = isBefore ? m_model.BeforeOf(step.strategy) : m_model.Of(step.strategy);
  const auto found = positions.find(report->symbol);
  CheckHeld(step, body, found == positions.end() ? HeldPosition() : found->second);
}

void CPositionChecker::CheckOpen(const TraceStep& step, const JsonNode& body, const ToldReport& report) {
  Expect(step, body, "Qty", report.sent);
  Expect(step, body, "LeavesQty", report.leaves);
  Expect(step, body, "ExecType", report.execType);
  if ((body.Find("CumQty") != nullptr) != (report.filled > 0))
    Complain(step.at, "a Report tells fills that there aren't, or leaves them out");
  if (report.filled > 0) Expect(step, body, "CumQty", report.filled);
  const bool hasAverage = report.filled > 0 && report.average != kNone;
  if ((body.Find("AvgPrice") != nullptr) != hasAverage ||
      (hasAverage && !IsShown(body, "AvgPrice", report.average)))
    Complain(step.at, fmt::format("a Report's average isn't {}", report.average));
  const bool isMarket = report.orderType == 1 || report.orderType == 25;
  if (isMarket ? TextOf(body, "OrderPrice") != "M"
               : report.price != kNone && !IsShown(body, "OrderPrice", report.price))
    Complain(step.at, fmt::format("a Report's order price isn't {}", report.price));
}

void CPositionChecker::CheckClose(const TraceStep& step, const JsonNode& body, const ToldReport& report) {
  const bool folds = body.Find("CloseQty") != nullptr || body.Find("CloseAvgPrice") != nullptr;
  if (folds && report.filled <= 0) Complain(step.at, "a close order without a fill is counted");
  if (m_fillsAreComplete && !folds && report.filled > 0)
    Complain(step.at, fmt::format("{} sold lots of {} aren't counted", report.filled, report.symbol));
  if (!folds) return;
  const SoldSum& sum = m_model.SumOf(step.strategy);
  Expect(step, body, "CloseQty", sum.quantity);
  const bool hasAverage = sum.average != kNone;
  if ((body.Find("CloseAvgPrice") != nullptr) != hasAverage ||
      (hasAverage && !IsShown(body, "CloseAvgPrice", sum.average)))
    Complain(step.at, fmt::format("the average of what was sold isn't {}", sum.average));
}

void CPositionChecker::CheckHeld(const TraceStep& step, const JsonNode& body, const HeldPosition& position) {
  if ((body.Find("Position") != nullptr) != (position.bought > 0))
    Complain(step.at, "a Report tells a position where nothing was bought, or leaves it out");
  if (position.bought > 0) Expect(step, body, "Position", position.Net());
}

void CPositionChecker::CheckSale(const TraceStep& step, const JsonNode& body) {
  Walk& walk = m_walks[{step.strategy, step.thread}];
  const std::string symbol = TextOf(body, "Symbol");
  const int64_t lots = IntegerOf(body, "Qty");
  if (!walk.isOpen) Complain(step.at, symbol + " is sold outside of a close-out");
  if (IntegerOf(body, "Result") != (walk.sold.empty() ? 0 : 1))
    Complain(step.at, "the first position of a close-out has the result 0, each other one 1: " + symbol);
  if (!walk.sold.insert(symbol).second) Complain(step.at, symbol + " is sold twice in one close-out");
  if (lots != NetOf(m_model.Of(step.strategy), symbol) &&
      lots != NetOf(m_model.BeforeOf(step.strategy), symbol))
    Complain(step.at, fmt::format("the sale of {} lots of {} is told, of which {} are held", lots, symbol,
                                  NetOf(m_model.Of(step.strategy), symbol)));
}

/// What is held on both sides of a report that comes in meanwhile must be sold.
void CPositionChecker::CheckWalk(const TraceStep& step, const Walk& walk) {
  for (const auto& [symbol, position] : m_model.Of(step.strategy)) {
    const bool isHeld = position.Net() > 0 && NetOf(m_model.BeforeOf(step.strategy), symbol) > 0;
    if (isHeld && !walk.sold.contains(symbol)) Complain(step.at, "a close-out leaves out " + symbol);
  }
}

void CPositionChecker::Expect(const TraceStep& step, const JsonNode& body, const char* key, int64_t value) {
  if (body.Find(key) == nullptr || IntegerOf(body, key) != value)
    Complain(step.at, fmt::format("a Report of {} doesn't tell {} {}", TextOf(body, "Symbol"), key, value));
}

}  // namespace iorder::testing

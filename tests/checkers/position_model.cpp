#include "tests/checkers/position_model.h"

namespace iorder::testing {
namespace {

__extension__ using Wide = __int128;

constexpr int64_t kOpen = 1;
constexpr int64_t kClose = 2;
constexpr int64_t kCancel = 3;

/// The average of what was sold before and of this order, cut to ten places.
Scaled AverageWith(const HeldPosition& position, const ToldReport& report, int64_t quantity) {
  if (quantity == 0) return position.soldAverage;
  const Wide before = Wide{position.soldTotal == 0 ? 0 : position.soldAverage} * position.soldTotal;
  return static_cast<Scaled>((before + Wide{report.average} * report.filled) / quantity);
}

/// A finished order counts once, however often it is told; one that works on is only a forecast.
SoldSum AddSold(HeldPosition& position, const ToldReport& report) {
  SoldSum sum;
  sum.quantity = position.soldTotal + report.filled;
  sum.average = AverageWith(position, report, sum.quantity);
  if (report.leaves == 0 && report.report == position.soldReport) {
    sum = {position.soldTotal, position.soldAverage};
  } else if (report.leaves == 0) {
    position.soldReport = report.report;
    position.soldTotal = sum.quantity;
    position.soldAverage = sum.average;
  }
  if (sum.quantity > 0) position.sold = sum.quantity;
  return sum;
}

}  // namespace

ToldReport ReadReport(const std::string& line) {
  ToldReport report;
  report.symbol = FieldText(line, "strSymbol").value_or("");
  report.report = FieldText(line, "strReportID").value_or("");
  report.execType = FieldInteger(line, "lExecType");
  report.action = FieldInteger(line, "lAction");
  report.price = FieldInteger(line, "llPrice");
  report.average = FieldInteger(line, "llAvgPrice");
  report.orderType = FieldInteger(line, "lOrderType");
  report.sent = FieldInteger(line, "lSendQty");
  report.filled = FieldInteger(line, "lCumQty");
  report.leaves = FieldInteger(line, "lLeavesQty");
  return report;
}

void CPositionModel::OnStep(const TraceStep& step) {
  if (step.strategy == 0) return;
  Book& book = m_books[step.strategy];
  if (step.LineStarts("Reset. ")) {
    Reset(book, step.at);
  } else if (step.LineStarts("OnReportUpdate. ")) {
    Touch(book, step.at);
    Take(book, ReadReport(step.line));
  } else if (step.LineStarts("OnPositionProfit Result. ")) {
    Touch(book, step.at);
  } else if (const JsonNode* const body = BodyOf(step, "Report");
             body != nullptr && body->Find("UpdateDate") != nullptr) {
    TakeMessage(book, *body);
  } else if (book.report && step.thread == kBatchThread && step.LineStarts("DoPlaceOrder")) {
    book.report.reset();
  }
}

void CPositionModel::Touch(Book& book, LocalTime at) {
  book.touched = at;
  book.isUnsure |= book.reset == at;
}

void CPositionModel::Reset(Book& book, LocalTime at) {
  book.isUnsure = book.touched == at;
  book.reset = at;
  book.now.clear();
  book.before.clear();
  book.report.reset();
}

/// An open order's report changes the position at once; whether a close order's does shows in its message:
/// only when all of its fills have come.
void CPositionModel::Take(Book& book, const ToldReport& report) {
  book.before = book.now;
  book.report = report;
  book.sum = {};
  HeldPosition& position = book.now[report.symbol];
  if (report.action == kOpen) {
    if (report.filled > 0) {
      position.bought = report.filled;
      position.average = report.average;
    }
    position.leaves = report.leaves;
  } else if (report.action == kCancel) {
    position.leaves = report.leaves;
  } else if (report.action == kClose && report.filled > 0) {
    book.sum = AddSold(position, report);
  }
}

void CPositionModel::TakeMessage(Book& book, const JsonNode& body) {
  if (!book.report) return;
  const bool folds = body.Find("CloseQty") != nullptr || body.Find("CloseAvgPrice") != nullptr;
  if (book.report->action == kClose && !folds) {
    book.now = book.before;
    book.now.try_emplace(book.report->symbol);
  }
  book.before = book.now;
  book.report.reset();
}

const CPositionModel::Positions& CPositionModel::Of(uint32_t strategy) const {
  static const Positions none;
  const auto found = m_books.find(strategy);
  return found == m_books.end() ? none : found->second.now;
}

const CPositionModel::Positions& CPositionModel::BeforeOf(uint32_t strategy) const {
  static const Positions none;
  const auto found = m_books.find(strategy);
  return found == m_books.end() ? none : found->second.before;
}

const ToldReport* CPositionModel::ReportOf(uint32_t strategy) const {
  const auto found = m_books.find(strategy);
  return found == m_books.end() || !found->second.report ? nullptr : &*found->second.report;
}

const SoldSum& CPositionModel::SumOf(uint32_t strategy) const {
  static const SoldSum none;
  const auto found = m_books.find(strategy);
  return found == m_books.end() ? none : found->second.sum;
}

bool CPositionModel::IsUnsure(uint32_t strategy, LocalTime at) const {
  const auto found = m_books.find(strategy);
  return found != m_books.end() && (found->second.isUnsure || found->second.reset == at);
}

}  // namespace iorder::testing

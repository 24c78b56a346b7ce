#include "terminal/automatic_orders.h"

#include "terminal/security_info.h"

namespace iorder {
namespace {

/// The limit that the market is to keep: NoValue for an order at the market, none if the words reckon from a
/// price that nobody knows.
std::optional<ScaledValue> LimitOf(const OrderRequest& request, const COrderBook& book,
                                   const CTickLadder& ladder) {
  if (!request.words) return request.price;
  const ScaledValue best = request.words->isBid ? book.Bid() : book.Ask();
  const ScaledValue from = best != NoValue ? best : book.Last();
  return from != NoValue ? std::optional(ladder.Step(from, request.words->ticks)) : std::nullopt;
}

ReportFields FieldsOf(const SentOrder& sent, const OrderReport& report) {
  ReportFields fields = FirstReport(sent);
  fields[L"ExecType"] = Int32Field(report.execType);
  fields[L"CumQty"] = Int32Field(report.filled);
  fields[L"LeavesQty"] = Int32Field(report.leaves);
  fields[L"RecFillQty"] = Int32Field(report.received);
  if (report.price != NoValue) fields[L"Price"] = Int64Field(report.price);
  // The node keeps what a report doesn't name, and a report that was overtaken must not show a later average.
  fields[L"AvgPrice"] =
      report.average != NoValue ? Int64Field(report.average) : FieldValue{FieldValue::Kind::kRemove, {}, {}};
  if (!report.text.empty()) fields[L"Text"] = TextField(report.text);
  return fields;
}

}  // namespace

CAutomaticOrders::CAutomaticOrders(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                                   CAccountsRecord& accounts, const OrderRules& rules, uint64_t seed)
    : m_runtime(runtime),
      m_bus(bus),
      m_busThread(busThread),
      m_accounts(accounts),
      m_rules(rules),
      m_draws(seed),
      m_section(runtime, "order books"),
      m_reports(rules, m_draws) {}

// ---- What comes in ----

void CAutomaticOrders::OnOrder(const SentOrder& order) {
  m_busThread.Post(m_runtime.Now() + m_rules.latency, [this, order] { Arrive(order); });
}

void CAutomaticOrders::OnCancel(const SentCancel& cancel) {
  m_busThread.Post(m_runtime.Now() + m_rules.latency,
                   [this, reportId = cancel.reportId] { ArriveCancel(reportId); });
}

COrderBook& CAutomaticOrders::Book(const std::wstring& symbol) {
  CLockGuard guard(m_section);
  return BookLocked(symbol);
}

COrderBook& CAutomaticOrders::BookLocked(const std::wstring& symbol) {
  return m_books.try_emplace(symbol, m_rules.fill, m_rules.partial).first->second;
}

void CAutomaticOrders::OnQuote(COrderBook& book, const QuoteUpdate& update) {
  Times times;
  {
    CLockGuard guard(m_section);
    m_fills.clear();
    book.Quote(update, m_fills);
    FillLocked(m_fills, times);
  }
  Wake(times);
}

void CAutomaticOrders::Arrive(const SentOrder& sent) {
  const OrderRequest request = ReadOrderRequest(sent.fields);
  const std::wstring complaint = ComplaintOf(sent, request);
  const CTickLadder ladder = TickLadderOf(m_bus, request.symbol);
  Times times;
  {
    CLockGuard guard(m_section);
    Order& order = m_orders[sent.number];
    order.sent = sent;
    order.report.order = sent.number;
    order.report.sent = request.quantity;
    if (!complaint.empty()) {
      RejectLocked(order, complaint, times);
    } else {
      EnterLocked(order, request, ladder, times);
    }
  }
  Wake(times);
}

std::wstring CAutomaticOrders::ComplaintOf(const SentOrder& sent, const OrderRequest& request) {
  if (!sent.complaint.empty()) return sent.complaint;
  // The account may have gone while the order was on its way.
  std::wstring complaint =
      m_accounts.ComplaintAbout(OrderField(sent.fields, L"BROKERID"), OrderField(sent.fields, L"ACCOUNT"));
  if (!complaint.empty()) return complaint;
  if (!request.mistake.empty()) return request.mistake;
  return m_draws.Rejects(sent.number, m_rules.reject) ? L"rejected by lot" : std::wstring();
}

// ---- What becomes of an order ----

void CAutomaticOrders::RejectLocked(Order& order, const std::wstring& text, Times& times) {
  order.report.text = text;
  order.report.leaves = 0;
  ReportLocked(order, exec_type::kRejected, m_runtime.Now(), times);
}

void CAutomaticOrders::EnterLocked(Order& order, const OrderRequest& request, const CTickLadder& ladder,
                                   Times& times) {
  COrderBook& book = BookLocked(request.symbol);
  const std::optional<ScaledValue> limit = LimitOf(request, book, ladder);
  if (!limit) {
    RejectLocked(order, L"no price to reckon from", times);
    return;
  }
  order.book = &book;
  order.report.price = *limit;
  order.report.leaves = request.quantity;
  order.report.execType = exec_type::kWorking;
  if (!m_draws.LosesAck(order.sent.number, m_rules.lostAck)) {
    ReportLocked(order, exec_type::kWorking, m_runtime.Now(), times);
  }
  m_fills.clear();
  const int64_t left = book.Enter({order.sent.number, request.side, *limit, request.quantity,
                                   !request.isImmediateOrCancel, request.words.has_value()},
                                  m_fills);
  FillLocked(m_fills, times);
  if (left > 0 && request.isImmediateOrCancel) {
    CancelLocked(order, m_runtime.Now() + m_rules.latency, times);
  }
}

void CAutomaticOrders::FillLocked(const std::vector<BookFill>& fills, Times& times) {
  for (const BookFill& fill : fills) {
    Order& order = m_orders[fill.number];
    OrderReport& report = order.report;
    report.filled += fill.quantity;
    report.leaves -= fill.quantity;
    order.value += Int128{fill.price} * fill.quantity;
    report.average = AveragePrice(order.value, report.filled);
    ReportLocked(order, report.leaves == 0 ? exec_type::kFilled : exec_type::kPartlyFilled,
                 m_runtime.Now() + m_rules.latency, times);
  }
}

void CAutomaticOrders::ArriveCancel(const std::wstring& reportId) {
  Times times;
  {
    CLockGuard guard(m_section);
    const auto found = m_orders.find(OrderOfReport(reportId));
    if (found == m_orders.end() || !exec_type::IsWorking(found->second.report.execType)) return;
    found->second.book->Cancel(found->first);
    CancelLocked(found->second, m_runtime.Now(), times);
  }
  Wake(times);
}

void CAutomaticOrders::CancelLocked(Order& order, TimePoint due, Times& times) {
  order.report.leaves = 0;
  ReportLocked(order, exec_type::kCancelled, due, times);
}

// ---- What is told ----

void CAutomaticOrders::ReportLocked(Order& order, int32_t execType, TimePoint due, Times& times) {
  order.report.execType = execType;
  const Times more = m_reports.Add(order.report, due);
  times.insert(times.end(), more.begin(), more.end());
}

void CAutomaticOrders::Wake(const Times& times) {
  for (const TimePoint time : times) {
    m_busThread.Post(time, [this] { Deliver(); });
  }
}

void CAutomaticOrders::Deliver() {
  while (true) {
    ReportFields fields;
    int32_t number = 0;
    {
      CLockGuard guard(m_section);
      const std::optional<OrderReport> report = m_reports.TakeDue(m_runtime.Now());
      if (!report) return;
      number = report->order;
      fields = FieldsOf(m_orders[number].sent, *report);
    }
    FireReport(m_bus, number - 1, fields);
  }
}

}  // namespace iorder

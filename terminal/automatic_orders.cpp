#include "terminal/automatic_orders.h"

#include <algorithm>
#include <utility>

#include "records/exec_type.h"

namespace iorder {
namespace {

/// A group is complete only when its strings have all been sent, which takes no time in a day but some on a
/// machine. It is time of the day: a real clock that runs faster makes it shorter.
constexpr Milliseconds kLeastGroupLatency{1};

/// The limit that the market is to keep: NoValue for an order at the market, none if the words reckon from a
/// price that nobody knows.
std::optional<ScaledValue> LimitOf(const Arrival& arrival, const COrderBook& book) {
  const OrderRequest& request = arrival.request;
  if (!request.words) return request.price;
  const ScaledValue best = request.words->isBid ? book.Bid() : book.Ask();
  const ScaledValue from = best != NoValue ? best : book.Last();
  return from != NoValue ? std::optional(arrival.ladder.Step(from, request.words->ticks)) : std::nullopt;
}

/// The end that the line tells, of the order's own child.
std::optional<int32_t> EndIn(const ChildAction& child) {
  std::optional<int32_t> execType;
  for (const FieldChange& field : child.fields) {
    if (field.name == L"LevelKey") return std::nullopt;
    if (field.name == L"ExecType") execType = Int32Or(field.value.value, NoInt);
  }
  return execType && exec_type::EndsChild(*execType) && !child.announce ? execType : std::nullopt;
}

}  // namespace

CAutomaticOrders::CAutomaticOrders(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                                   CAccountsRecord& accounts, CChildRecords& childRecords,
                                   CStrategyPositions& positions, const OrderRules& rules, uint64_t seed)
    : m_runtime(runtime),
      m_bus(bus),
      m_busThread(busThread),
      m_positions(positions),
      m_rules(rules),
      m_draws(seed),
      m_door(bus, accounts, rules, m_draws),
      m_groups(runtime),
      m_children(runtime, rules, m_draws, childRecords),
      m_section(runtime, "order books"),
      m_reports(rules, m_draws) {}

// ---- What comes in ----

void CAutomaticOrders::OnOrder(const SentOrderPtr& order) {
  const TimePoint now = m_runtime.Now();
  if (!IsGroupOrder(*order)) {
    m_busThread.Post(now + m_rules.latency, [this, order] { Arrive({order}); });
  } else if (m_groups.Join(order)) {
    m_busThread.Post(now + std::max(m_rules.latency, kLeastGroupLatency),
                     [this, order] { Arrive(m_groups.Take(order)); });
  }
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
  Jobs jobs;
  {
    CLockGuard guard(m_section);
    m_fills.clear();
    book.Quote(update, m_fills);
    FillLocked(m_fills, jobs);
  }
  Post(jobs);
}

void CAutomaticOrders::Arrive(const std::vector<SentOrderPtr>& together) {
  const std::vector<Arrival> arrivals = m_door.Receive(together);
  Jobs jobs;
  {
    CLockGuard guard(m_section);
    for (const Arrival& arrival : arrivals) {
      ReceiveLocked(arrival, jobs);
    }
  }
  Post(jobs);
}

void CAutomaticOrders::ArriveCancel(const std::wstring& reportId) {
  Jobs jobs;
  {
    CLockGuard guard(m_section);
    const auto found = m_orders.find(OrderOfReport(reportId));
    const bool isThere = found != m_orders.end() && !found->second.isChild;
    if (!isThere || !exec_type::IsWorking(found->second.report.execType)) return;
    EndLocked(found->second, exec_type::kCancelled, m_runtime.Now(), jobs);
  }
  Post(jobs);
}

bool CAutomaticOrders::EndChild(const ChildAction& child) {
  const std::optional<int32_t> execType = EndIn(child);
  if (!execType) return false;
  Jobs jobs;
  {
    CLockGuard guard(m_section);
    const auto found = m_orders.find(child.order);
    const bool isThere = found != m_orders.end() && found->second.isChild;
    if (!isThere || !exec_type::IsWorking(found->second.report.execType)) return false;
    found->second.report.named = child.fields;
    EndLocked(found->second, *execType, m_runtime.Now(), jobs);
  }
  Post(jobs);
  return true;
}

// ---- What becomes of an order ----

void CAutomaticOrders::ReceiveLocked(const Arrival& arrival, Jobs& jobs) {
  Order& order = m_orders[arrival.sent->number];
  order.sent = arrival.sent;
  order.isChild = IsGroupOrder(*arrival.sent);
  order.side = arrival.request.side;
  order.report.order = arrival.sent->number;
  order.report.sent = arrival.request.quantity;
  order.report.leaves = arrival.request.quantity;
  if (!arrival.refusal.empty()) {
    RejectLocked(order, arrival.refusal, jobs);
  } else {
    EnterLocked(order, arrival, jobs);
  }
}

void CAutomaticOrders::RejectLocked(Order& order, const std::wstring& text, Jobs& jobs) {
  // The engine learns of a child's end by an update, and of that only behind the announcement.
  if (order.isChild) ReportLocked(order, exec_type::kWorking, m_runtime.Now(), jobs);
  order.report.text = text;
  EndLocked(order, exec_type::kRejected, m_runtime.Now(), jobs);
}

void CAutomaticOrders::EnterLocked(Order& order, const Arrival& arrival, Jobs& jobs) {
  const OrderRequest& request = arrival.request;
  COrderBook& book = BookLocked(request.symbol);
  order.book = &book;
  if (request.chase) order.chase.emplace(*request.chase, request.side, arrival.ladder);
  const std::optional<ScaledValue> limit = order.chase ? order.chase->LimitIn(book) : LimitOf(arrival, book);
  if (!limit) {
    RejectLocked(order, L"no price to reckon from", jobs);
    return;
  }
  order.report.price = *limit;
  AcknowledgeLocked(order, jobs);
  if (order.isChild && m_draws.FailsChild(order.sent->number, m_rules.failedChild)) {
    const bool isStopped = m_draws.IsStopped(order.sent->number);
    EndLocked(order, isStopped ? exec_type::kStopped : exec_type::kCancelled,
              m_runtime.Now() + m_rules.latency, jobs);
    return;
  }
  m_fills.clear();
  const int64_t left = book.Enter({order.sent->number, request.side, *limit, request.quantity,
                                   !request.isImmediateOrCancel, request.words.has_value()},
                                  m_fills);
  FillLocked(m_fills, jobs);
  if (left > 0 && request.isImmediateOrCancel) {
    EndLocked(order, exec_type::kCancelled, m_runtime.Now() + m_rules.latency, jobs);
  }
  FollowLocked(order, jobs);
}

void CAutomaticOrders::AcknowledgeLocked(Order& order, Jobs& jobs) {
  order.report.execType = exec_type::kWorking;
  if (order.isChild || !m_draws.LosesAck(order.sent->number, m_rules.lostAck)) {
    ReportLocked(order, exec_type::kWorking, m_runtime.Now(), jobs);
  }
}

/// Plans the next step of an order that follows the market and isn't there yet.
void CAutomaticOrders::FollowLocked(Order& order, Jobs& jobs) {
  if (!order.chase) return;
  if (order.report.price == NoValue) {
    order.chase.reset();
    return;
  }
  jobs.push_back({m_runtime.Now() + order.chase->Timeout(),
                  [this, number = order.sent->number] { FollowMarket(number); }});
}

void CAutomaticOrders::FollowMarket(int32_t number) {
  Jobs jobs;
  {
    CLockGuard guard(m_section);
    Order& order = m_orders[number];
    if (!exec_type::IsWorking(order.report.execType)) return;
    order.chase->Step();
    const ScaledValue limit = order.chase->LimitIn(*order.book);
    if (limit != order.report.price) {
      order.report.price = limit;
      ReportLocked(order, order.report.execType, m_runtime.Now(), jobs);
      order.book->Cancel(number);
      m_fills.clear();
      order.book->Enter({number, order.side, limit, order.report.leaves}, m_fills);
      FillLocked(m_fills, jobs);
    }
    FollowLocked(order, jobs);
  }
  Post(jobs);
}

void CAutomaticOrders::FillLocked(const std::vector<BookFill>& fills, Jobs& jobs) {
  const TimePoint due = m_runtime.Now() + m_rules.latency;
  for (const BookFill& fill : fills) {
    Order& order = m_orders[fill.number];
    OrderReport& report = order.report;
    report.filled += fill.quantity;
    report.leaves -= fill.quantity;
    order.value += Int128{fill.price} * fill.quantity;
    report.average = AveragePrice(order.value, report.filled);
    const std::wstring strategy = OrderField(order.sent->fields, L"STRATEGY");
    if (order.isChild && !strategy.empty()) {
      const int64_t lots = order.side == OrderSide::kBuy ? fill.quantity : -fill.quantity;
      jobs.push_back({due, [this, strategy, symbol = OrderField(order.sent->fields, L"SYMBOL"), lots] {
                        m_positions.Fill(strategy, symbol, lots);
                      }});
    }
    ReportLocked(order, report.leaves == 0 ? exec_type::kFilled : exec_type::kPartlyFilled, due, jobs);
  }
}

void CAutomaticOrders::EndLocked(Order& order, int32_t execType, TimePoint due, Jobs& jobs) {
  if (order.book != nullptr) order.book->Cancel(order.sent->number);
  order.report.leaves = 0;
  ReportLocked(order, execType, due, jobs);
}

// ---- What is told ----

void CAutomaticOrders::ReportLocked(Order& order, int32_t execType, TimePoint due, Jobs& jobs) {
  order.report.execType = execType;
  if (!exec_type::IsWorking(execType)) order.chase.reset();
  const bool isChild = order.isChild;
  const std::vector<TimePoint> times =
      isChild ? m_children.Add(order.sent, order.report, due) : m_reports.Add(order.report, due);
  for (const TimePoint time : times) {
    if (isChild) {
      jobs.push_back({time, [this] { m_children.Deliver(); }});
    } else {
      jobs.push_back({time, [this] { Deliver(); }});
    }
  }
}

void CAutomaticOrders::Post(Jobs& jobs) {
  for (Job& job : jobs) {
    m_busThread.Post(job.due, std::move(job.run));
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
      fields = FieldsOf(*m_orders[number].sent, *report);
    }
    FireReport(m_bus, number - 1, fields);
  }
}

}  // namespace iorder

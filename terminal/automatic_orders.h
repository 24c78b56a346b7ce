#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/accounts_record.h"
#include "terminal/bus_thread.h"
#include "terminal/chase_price.h"
#include "terminal/child_orders.h"
#include "terminal/order_book.h"
#include "terminal/order_door.h"
#include "terminal/order_groups.h"
#include "terminal/order_list.h"
#include "terminal/order_report.h"
#include "terminal/record_bus.h"
#include "terminal/report_queue.h"
#include "terminal/strategy_positions.h"

namespace iorder {

/// Answers orders and cancels by itself, as the head of the day says.
///
/// An order or cancel reaches the market one latency after it was sent, and is acknowledged, rejected or
/// confirmed at that moment; the orders of a group come in together, one latency after the first of them. A
/// fill is reported one latency after it happened. So a cancel may meet a fill on its way: what the market
/// filled before the cancel came stays filled, and is reported before the cancel is confirmed. A cancel for
/// what doesn't work (any more) isn't answered: the order's own reports tell what became of it.
///
/// Plain orders are reported in "TRADE.ORDERSET". Group orders are child orders: their own records tell of
/// them, and their fills go into the position of their strategy.
///
/// Orders and quotes may come from any thread; reports are fired on the thread of the bus. One lock guards
/// all books and orders; that of CChildOrders is taken under it. The bus and the runtime's threads are called
/// under no lock.
class CAutomaticOrders {
 public:
  CAutomaticOrders(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                   CAccountsRecord& accounts, CChildRecords& childRecords, CStrategyPositions& positions,
                   const OrderRules& rules, uint64_t seed);

  void OnOrder(const SentOrderPtr& order);
  void OnCancel(const SentCancel& cancel);
  /// A line of the day ends a child order that works: it is taken out of the market, and told with what the
  /// line names. False, and nothing done, if the line doesn't tell an end of such an order.
  bool EndChild(const ChildAction& child);

  /// The book for the quote path: found once, then used without any look-up. It lives as long as this.
  COrderBook& Book(const std::wstring& symbol);
  /// The market moves; before the bus shows it.
  void OnQuote(COrderBook& book, const QuoteUpdate& update);

 private:
  /// An order that the market has taken, or refused.
  struct Order {
    SentOrderPtr sent;
    bool isChild = false;
    OrderSide side = OrderSide::kBuy;
    COrderBook* book = nullptr;
    OrderReport report;           ///< the last one
    Int128 value = 0;             ///< price times lots of all fills
    std::optional<CChase> chase;  ///< while it works and follows the market
  };
  /// What is to be done when the lock has been left.
  struct Job {
    TimePoint due;
    std::function<void()> run;  ///< on the thread of the bus
  };
  using Jobs = std::vector<Job>;

  void Arrive(const std::vector<SentOrderPtr>& together);
  void ArriveCancel(const std::wstring& reportId);
  void FollowMarket(int32_t number);

  COrderBook& BookLocked(const std::wstring& symbol) IORDER_REQUIRES(m_section);
  void ReceiveLocked(const Arrival& arrival, Jobs& jobs) IORDER_REQUIRES(m_section);
  void RejectLocked(Order& order, const std::wstring& text, Jobs& jobs) IORDER_REQUIRES(m_section);
  void EnterLocked(Order& order, const Arrival& arrival, Jobs& jobs) IORDER_REQUIRES(m_section);
  void AcknowledgeLocked(Order& order, Jobs& jobs) IORDER_REQUIRES(m_section);
  void FollowLocked(Order& order, Jobs& jobs) IORDER_REQUIRES(m_section);
  void FillLocked(const std::vector<BookFill>& fills, Jobs& jobs) IORDER_REQUIRES(m_section);
  void EndLocked(Order& order, int32_t execType, TimePoint due, Jobs& jobs) IORDER_REQUIRES(m_section);
  void ReportLocked(Order& order, int32_t execType, TimePoint due, Jobs& jobs) IORDER_REQUIRES(m_section);
  void Post(Jobs& jobs);
  void Deliver();

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  CStrategyPositions& m_positions;
  const OrderRules m_rules;
  const CAnswerDraws m_draws;
  COrderDoor m_door;
  COrderGroups m_groups;
  CChildOrders m_children;
  CCriticalSection m_section;
  std::map<std::wstring, COrderBook> m_books IORDER_GUARDED_BY(m_section);
  std::map<int32_t, Order> m_orders IORDER_GUARDED_BY(m_section);
  CReportQueue m_reports IORDER_GUARDED_BY(m_section);
  std::vector<BookFill> m_fills IORDER_GUARDED_BY(m_section);  ///< of one move; kept for its memory
};

}  // namespace iorder

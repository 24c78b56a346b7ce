#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/accounts_record.h"
#include "terminal/bus_thread.h"
#include "terminal/order_book.h"
#include "terminal/order_list.h"
#include "terminal/order_report.h"
#include "terminal/order_request.h"
#include "terminal/record_bus.h"
#include "terminal/report_queue.h"

namespace iorder {

/// Answers orders and cancels by itself, as the head of the day says.
///
/// An order or cancel reaches the market one latency after it was sent, and is acknowledged, rejected or
/// confirmed at that moment. A fill is reported one latency after it happened. So a cancel may meet a fill on
/// its way: what the market filled before the cancel came stays filled, and is reported before the cancel
/// is confirmed. A cancel for what doesn't work (any more) isn't answered: the order's own reports tell what
/// became of it.
///
/// Orders and quotes may come from any thread; reports are fired on the thread of the bus. One lock guards
/// all books and orders; the bus and the runtime's threads are called under no lock.
class CAutomaticOrders {
 public:
  CAutomaticOrders(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                   CAccountsRecord& accounts, const OrderRules& rules, uint64_t seed);

  void OnOrder(const SentOrder& order);
  void OnCancel(const SentCancel& cancel);

  /// The book for the quote path: found once, then used without any look-up. It lives as long as this.
  COrderBook& Book(const std::wstring& symbol);
  /// The market moves; before the bus shows it.
  void OnQuote(COrderBook& book, const QuoteUpdate& update);

 private:
  /// An order that the market has taken, or refused.
  struct Order {
    SentOrder sent;
    COrderBook* book = nullptr;
    OrderReport report;  ///< the last one
    Int128 value = 0;    ///< price times lots of all fills
  };
  using Times = std::vector<TimePoint>;

  void Arrive(const SentOrder& sent);
  void ArriveCancel(const std::wstring& reportId);
  std::wstring ComplaintOf(const SentOrder& sent, const OrderRequest& request);
  CTickLadder LadderOf(const std::wstring& symbol);

  COrderBook& BookLocked(const std::wstring& symbol) IORDER_REQUIRES(m_section);
  void RejectLocked(Order& order, const std::wstring& text, Times& times) IORDER_REQUIRES(m_section);
  void EnterLocked(Order& order, const OrderRequest& request, const CTickLadder& ladder, Times& times)
      IORDER_REQUIRES(m_section);
  void FillLocked(const std::vector<BookFill>& fills, Times& times) IORDER_REQUIRES(m_section);
  void CancelLocked(Order& order, TimePoint due, Times& times) IORDER_REQUIRES(m_section);
  void ReportLocked(Order& order, int32_t execType, TimePoint due, Times& times) IORDER_REQUIRES(m_section);
  void Wake(const Times& times);
  void Deliver();

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  CAccountsRecord& m_accounts;
  const OrderRules m_rules;
  const CAnswerDraws m_draws;
  CCriticalSection m_section;
  std::map<std::wstring, COrderBook> m_books IORDER_GUARDED_BY(m_section);
  std::map<int32_t, Order> m_orders IORDER_GUARDED_BY(m_section);
  CReportQueue m_reports IORDER_GUARDED_BY(m_section);
  std::vector<BookFill> m_fills IORDER_GUARDED_BY(m_section);  ///< of one move; kept for its memory
};

}  // namespace iorder

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/world_runtime.h"
#include "terminal/accounts_record.h"
#include "terminal/automatic_orders.h"
#include "terminal/bus_thread.h"
#include "terminal/child_records.h"
#include "terminal/manual_answers.h"
#include "terminal/order_list.h"
#include "terminal/record_bus.h"
#include "terminal/strategy_positions.h"

namespace iorder {

/// Takes the engine's orders and cancels, keeps the list of them, and has them answered: by the rules of the
/// day's head, or, without rules, by the lines of the day.
///
/// NewOrder, CancelOrder and the lists may be called from any thread.
class COrderService {
 public:
  COrderService(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread, CAccountsRecord& accounts,
                CEngineMessages& messages, const std::optional<OrderRules>& rules, uint64_t seed);

  void NewOrder(const std::wstring& text);
  void CancelOrder(const std::wstring& text);

  std::vector<SentOrderPtr> Orders() { return m_list.Orders(); }
  std::vector<SentCancel> Cancels() { return m_list.Cancels(); }

  /// What lines of the day say of orders and positions, on the thread of the bus.
  void Report(const ReportAction& report) { m_manual.Report(report); }
  void Child(const ChildAction& child);
  void Position(const PositionAction& position);

  /// None if the lines of the day answer.
  CAutomaticOrders* Automatic() { return m_automatic ? &*m_automatic : nullptr; }

 private:
  std::wstring ComplaintOf(const OrderFields& fields);

  CEmbeddedBus& m_bus;
  CAccountsRecord& m_accounts;
  COrderList m_list;
  CChildRecords m_children;
  CManualAnswers m_manual;
  CStrategyPositions m_positions;  ///< of an automatic day
  std::optional<CAutomaticOrders> m_automatic;
};

}  // namespace iorder

#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/accounts_record.h"
#include "terminal/day.h"
#include "terminal/order_text.h"
#include "terminal/record_bus.h"

namespace iorder {

/// One order string that the engine sent.
struct SentOrder {
  int32_t number = 0;  ///< from 1, all strategies together
  TimePoint time;
  std::wstring text;
  OrderFields fields;
  std::wstring complaint;  ///< what the terminal has against it; "" if it takes it
};

/// One cancel string that the engine sent.
struct SentCancel {
  TimePoint time;
  std::wstring text;
  std::wstring reportId;
};

/// Takes the engine's orders and cancels, keeps the list of them, and writes what becomes of them to the bus.
/// The lines of a day say what becomes of them.
///
/// All operations may come from any thread. The lock is held for the list alone.
class COrderService {
 public:
  /// Tells the engine of a record on a topic.
  using Announce = std::function<void(const std::wstring& topic, int32_t handle)>;

  COrderService(IWorldRuntime& runtime, CEmbeddedBus& bus, CAccountsRecord& accounts);

  void NewOrder(const std::wstring& text);
  void CancelOrder(const std::wstring& text);

  std::vector<SentOrder> Orders();
  std::vector<SentCancel> Cancels();

  /// The answers of a day's lines, on a thread of the bus. An order that wasn't sent yet is an InputError.
  void Report(const ReportAction& report);
  void Child(const ChildAction& child, const Announce& announce);
  void Position(const PositionAction& position);

 private:
  using ReportFields = std::map<std::wstring, FieldValue>;

  SentOrder OrderOf(int32_t number);
  std::wstring ComplaintOf(const OrderFields& fields);
  static ReportFields FirstReport(const SentOrder& order);
  static void WorkOutQuantities(const ReportAction& report, ReportFields& fields);

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CAccountsRecord& m_accounts;
  CCriticalSection m_section;
  std::vector<SentOrder> m_orders IORDER_GUARDED_BY(m_section);
  std::vector<SentCancel> m_cancels IORDER_GUARDED_BY(m_section);
  std::map<int32_t, ReportFields> m_reports;       ///< by order; of the bus thread alone
  std::map<std::wstring, int32_t> m_childHandles;  ///< by "LevelKey"; of the bus thread alone
};

}  // namespace iorder

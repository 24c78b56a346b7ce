#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/order_text.h"

namespace iorder {

/// One order string that the engine sent.
struct SentOrder {
  int32_t number = 0;  ///< from 1, all strategies together
  TimePoint time;
  std::wstring text;
  OrderFields fields;
  std::wstring complaint;  ///< what the terminal has against it; "" if it takes it
};

/// One object for all that keep the order, to the end of the day.
using SentOrderPtr = std::shared_ptr<const SentOrder>;

/// One cancel string that the engine sent.
struct SentCancel {
  TimePoint time;
  std::wstring text;
  std::wstring reportId;
};

/// What the engine sent, in its order. Any thread may call; the lock is held for the list alone.
class COrderList {
 public:
  explicit COrderList(IWorldRuntime& runtime) : m_runtime(runtime), m_section(runtime, "orders") {}

  /// The order with its number and time.
  SentOrderPtr AddOrder(const std::wstring& text, OrderFields fields, std::wstring complaint);
  SentCancel AddCancel(const std::wstring& text);

  std::vector<SentOrderPtr> Orders();
  std::vector<SentCancel> Cancels();
  /// An order that wasn't sent yet is an InputError.
  SentOrderPtr Order(int32_t number);

 private:
  IWorldRuntime& m_runtime;
  CCriticalSection m_section;
  std::vector<SentOrderPtr> m_orders IORDER_GUARDED_BY(m_section);
  std::vector<SentCancel> m_cancels IORDER_GUARDED_BY(m_section);
};

/// The identity of an order's reports: the field "LevelKey", and what a cancel names.
std::wstring ReportId(int32_t order);
/// The order whose reports have that identity; 0 if there can't be one.
int32_t OrderOfReport(const std::wstring& reportId);

}  // namespace iorder

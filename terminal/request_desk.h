#pragma once

#include <map>
#include <string>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/bus_thread.h"
#include "terminal/day.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Answers the engine's "GLACETTE.REQUEST" as the day says. Any thread may call.
class CRequestDesk {
 public:
  CRequestDesk(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread);

  /// From now on this is the answer for the request's product.
  void Set(const RequestAction& request);

  /// Loads what the answer loads, fills in the engine's document and gives the reply; empty without an answer
  /// for the product. `value` carries the reference to the document.
  Value Answer(const std::wstring& product, int32_t first, int32_t second, const Value& value);

 private:
  void Load(const RecordAction& load);
  void FillIn(const std::string& document, const Value& reference);

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  CCriticalSection m_section;
  std::map<std::wstring, RequestAction> m_requests IORDER_GUARDED_BY(m_section);
};

}  // namespace iorder

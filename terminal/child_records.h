#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "terminal/engine_messages.h"
#include "terminal/record_bus.h"
#include "terminal/record_change.h"

namespace iorder {

/// The topic on which child orders are announced.
inline constexpr const wchar_t* kChildTopic = L"TRADE.OTO.MANAGER";

/// The identity of the order's child: the field "LevelKey" of its record.
std::wstring ChildKey(int32_t order);

/// The records of child orders. No name opens them: the engine is told their handles. All operations come on
/// the thread of the bus, under no lock.
class CChildRecords {
 public:
  CChildRecords(CEmbeddedBus& bus, CEngineMessages& messages) : m_bus(bus), m_messages(messages) {}

  bool Has(const std::wstring& levelKey) const { return m_handles.contains(levelKey); }
  /// Makes the record if need be and changes it. Fires nothing.
  void Change(const std::wstring& levelKey, const std::vector<FieldChange>& fields);
  /// Both for a record that is there.
  void Announce(const std::wstring& levelKey, const std::wstring& topic);
  void Fire(const std::wstring& levelKey);

 private:
  CEmbeddedBus& m_bus;
  CEngineMessages& m_messages;
  std::map<std::wstring, int32_t> m_handles;  ///< by "LevelKey"
};

}  // namespace iorder

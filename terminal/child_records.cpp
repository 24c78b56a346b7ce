#include "terminal/child_records.h"

namespace iorder {

std::wstring ChildKey(int32_t order) {
  return L"C" + std::to_wstring(order);
}

void CChildRecords::Change(const std::wstring& levelKey, const std::vector<FieldChange>& fields) {
  RecordChange change;
  change.name = levelKey;
  change.fields = fields;
  int32_t& handle = m_handles[levelKey];
  handle = m_bus.ApplyUnnamed(handle, change);
}

void CChildRecords::Announce(const std::wstring& levelKey, const std::wstring& topic) {
  m_messages.Announce(topic, m_handles.at(levelKey));
}

void CChildRecords::Fire(const std::wstring& levelKey) {
  m_bus.FireUnnamed(m_handles.at(levelKey));
}

}  // namespace iorder

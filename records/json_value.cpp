#include "records/json_value.h"

namespace iorder {

const std::wstring& JsonValue::Text() const {
  static const std::wstring none;
  const auto* const text = As<std::wstring>();
  return text != nullptr ? *text : none;
}

JsonValue* JsonValue::Member(std::wstring_view key) {
  auto* const members = std::get_if<Object>(&m_payload);
  return members != nullptr ? members->try_emplace(std::wstring(key)).first->second.get() : nullptr;
}

}  // namespace iorder

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/critical_section.h"

namespace iorder {

/// A map from text to a value with a lock of its own; entries are never removed. Each operation is atomic by
/// itself, a look-up followed by a set isn't: users of the same key compute the same value. Keys are compared
/// exactly.
template <typename Value>
class CLockedStringMap {
 public:
  CLockedStringMap(IRuntime& runtime, const char* lockName) : m_cs(runtime, lockName) {}

  /// The value under `key`, which may well be an empty text, or none.
  std::optional<Value> Lookup(const std::wstring& key) {
    CLockGuard guard(m_cs);
    const auto found = m_map.find(key);
    return found == m_map.end() ? std::nullopt : std::optional<Value>(found->second);
  }

  /// Enters the value, in place of one that is there.
  void Set(const std::wstring& key, const Value& value) {
    CLockGuard guard(m_cs);
    m_map.insert_or_assign(key, value);
  }

  /// Enters the value if the key isn't there yet. True if it was new.
  bool Insert(const std::wstring& key, const Value& value) {
    CLockGuard guard(m_cs);
    return m_map.try_emplace(key, value).second;
  }

 private:
  CCriticalSection m_cs;
  std::unordered_map<std::wstring, Value> m_map IORDER_GUARDED_BY(m_cs);
};

using CGlcMapStringToString = CLockedStringMap<std::wstring>;
using CGlcMapStringToVal = CLockedStringMap<int32_t>;

}  // namespace iorder

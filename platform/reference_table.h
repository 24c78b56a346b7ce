#pragma once

#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace iorder {

/// The numbers that a runtime gives out for objects: small ones, in order. All operations may come from any
/// thread.
class CReferenceTable {
 public:
  uint32_t NewObjectNumber() {
    const std::lock_guard guard(m_mutex);
    return ++m_lastNumber;
  }

  int64_t Make(void* object) {
    const std::lock_guard guard(m_mutex);
    m_objects[++m_lastReference] = object;
    return m_lastReference;
  }

  void* Resolve(int64_t reference) {
    const std::lock_guard guard(m_mutex);
    const auto found = m_objects.find(reference);
    return found != m_objects.end() ? found->second : nullptr;
  }

  void Release(int64_t reference) {
    const std::lock_guard guard(m_mutex);
    m_objects.erase(reference);
  }

 private:
  std::mutex m_mutex;
  uint32_t m_lastNumber = 0;
  int64_t m_lastReference = 0;
  std::unordered_map<int64_t, void*> m_objects;
};

}  // namespace iorder

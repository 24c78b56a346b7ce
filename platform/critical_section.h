#pragma once

#include <memory>
#include <utility>

#include "platform/runtime.h"
#include "platform/thread_annotations.h"

namespace iorder {

/// The lock of the engine's classes: re-entrant, named, and known to clang's thread-safety analysis. Made by
/// the runtime, so that in virtual time a blocked thread counts as blocked and the order of locks is
/// recorded.
class IORDER_CAPABILITY("critical section") CCriticalSection {
 public:
  /// `name` as in IRuntime::CreateLock; it must outlive the object (a literal).
  CCriticalSection(IRuntime& runtime, const char* name) : m_lock(runtime.CreateLock(name)) {}
  explicit CCriticalSection(std::unique_ptr<ILock> lock) : m_lock(std::move(lock)) {}
  CCriticalSection(const CCriticalSection&) = delete;
  CCriticalSection& operator=(const CCriticalSection&) = delete;

  void Enter() IORDER_ACQUIRE() { m_lock->Enter(); }
  void Leave() noexcept IORDER_RELEASE() { m_lock->Leave(); }

 private:
  std::unique_ptr<ILock> m_lock;
};

/// Holds a critical section for the length of a block.
class IORDER_SCOPED_CAPABILITY CLockGuard {
 public:
  explicit CLockGuard(CCriticalSection& section) IORDER_ACQUIRE(section) : m_section(section) {
    m_section.Enter();
  }
  ~CLockGuard() IORDER_RELEASE() { m_section.Leave(); }
  CLockGuard(const CLockGuard&) = delete;
  CLockGuard& operator=(const CLockGuard&) = delete;

 private:
  CCriticalSection& m_section;
};

}  // namespace iorder

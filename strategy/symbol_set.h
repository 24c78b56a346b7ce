#pragma once

#include <set>
#include <string>
#include <unordered_set>

#include "platform/critical_section.h"

namespace iorder {

/// Symbols that were met once, with a lock of their own. Only asked, never walked.
class CSymbolSet {
 public:
  CSymbolSet(IRuntime& runtime, const char* lockName) : m_cs(runtime, lockName) {}

  /// True if the symbol was new.
  bool Add(const std::wstring& symbol) {
    CLockGuard guard(m_cs);
    return !m_symbols.contains(symbol) && m_symbols.insert(symbol).second;
  }
  void Remove(const std::wstring& symbol) {
    CLockGuard guard(m_cs);
    m_symbols.erase(symbol);
  }
  void Clear() {
    CLockGuard guard(m_cs);
    m_symbols.clear();
  }

 private:
  CCriticalSection m_cs;
  std::unordered_set<std::wstring> m_symbols IORDER_GUARDED_BY(m_cs);
};

/// Symbols that are walked, in ascending order, with a lock of their own.
class CSymbolList {
 public:
  CSymbolList(IRuntime& runtime, const char* lockName) : m_cs(runtime, lockName) {}

  void Add(const std::wstring& symbol) {
    CLockGuard guard(m_cs);
    m_symbols.insert(symbol);
  }
  void Remove(const std::wstring& symbol) {
    CLockGuard guard(m_cs);
    m_symbols.erase(symbol);
  }
  void Clear() {
    CLockGuard guard(m_cs);
    m_symbols.clear();
  }
  bool IsEmpty() {
    CLockGuard guard(m_cs);
    return m_symbols.empty();
  }

  /// Calls `look` with the symbols, with the lock held throughout.
  template <typename Look>
  auto WithLock(Look look) {
    CLockGuard guard(m_cs);
    return look(m_symbols);
  }

 private:
  CCriticalSection m_cs;
  std::set<std::wstring> m_symbols IORDER_GUARDED_BY(m_cs);
};

}  // namespace iorder

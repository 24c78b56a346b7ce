#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/critical_section.h"

namespace iorder {

/// A symbol of a strategy's quote table with a small number of its own, given once and kept for the
/// strategy's life.
struct CQuoteKey {
  std::wstring strSymbol;
  uint32_t number = 0;
};

/// Symbols that are asked for at each update, with a lock of their own. They go by their numbers, so that an
/// update of a known symbol costs no look-up of its text.
class CSymbolSet {
 public:
  CSymbolSet(IRuntime& runtime, const char* lockName) : m_cs(runtime, lockName) {}

  /// True if the symbol was new.
  bool Add(const CQuoteKey& key) {
    CLockGuard guard(m_cs);
    if (key.number >= m_isIn.size()) m_isIn.resize(key.number + 1);
    if (m_isIn[key.number]) return false;
    m_isIn[key.number] = true;
    return true;
  }
  void Clear() {
    CLockGuard guard(m_cs);
    m_isIn.clear();
  }

 private:
  CCriticalSection m_cs;
  std::vector<bool> m_isIn IORDER_GUARDED_BY(m_cs);
};

/// Symbols that are walked, in ascending order, with a lock of their own.
class CSymbolList {
 public:
  CSymbolList(IRuntime& runtime, const char* lockName) : m_cs(runtime, lockName) {}

  /// True if the symbol was new.
  bool Add(const std::wstring& symbol) {
    CLockGuard guard(m_cs);
    return m_symbols.insert(symbol).second;
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

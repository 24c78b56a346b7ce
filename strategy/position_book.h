#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "strategy/pos_info.h"
#include "strategy/symbol_set.h"

namespace iorder {

/// The positions of one strategy, by symbol, with their lock. Any thread may call. The lock comes behind the
/// engine's m_csStrategies and before the strategy's profit lock.
class CPositionBook {
 public:
  explicit CPositionBook(IRuntime& runtime) : m_cs(runtime, "position lock") {}

  /// Calls `change` with the position of a symbol, made if there is none yet, with the lock held.
  template <typename Change>
  auto WithPosition(const CQuoteKey& key, Change change) {
    CLockGuard guard(m_cs);
    CPosInfo& position = m_mapPosition[key.strSymbol];
    if (key.number >= m_byNumber.size()) m_byNumber.resize(key.number + 1);
    m_byNumber[key.number] = &position;
    return change(position);
  }

  /// Calls `look` with all positions, in the order of their symbols, with the lock held throughout.
  template <typename Look>
  auto WithLock(Look look) {
    CLockGuard guard(m_cs);
    return look(m_mapPosition);
  }

  /// The net position of a symbol, 0 without one. It looks up no text: it is asked at each update.
  int32_t NetPosition(const CQuoteKey& key) {
    CLockGuard guard(m_cs);
    const CPosInfo* position = key.number < m_byNumber.size() ? m_byNumber[key.number] : nullptr;
    return position != nullptr ? position->NetPosition() : 0;
  }

  void Clear() {
    CLockGuard guard(m_cs);
    m_byNumber.clear();
    m_mapPosition.clear();
  }

 private:
  CCriticalSection m_cs;
  std::map<std::wstring, CPosInfo> m_mapPosition IORDER_GUARDED_BY(m_cs);
  std::vector<const CPosInfo*> m_byNumber IORDER_GUARDED_BY(m_cs);  ///< the same, by number of the symbol
};

}  // namespace iorder

#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "records/scaled_value.h"

namespace iorder {

/// The option chain of one run: its symbols, calls or puts, and its distinct strikes. Any thread may call.
class COptionChain {
 public:
  explicit COptionChain(IRuntime& runtime) : m_csChain(runtime, "chain lock") {}

  void AddCall(const std::wstring& symbol);
  void AddPut(const std::wstring& symbol);
  /// Enters the strike of a symbol, once.
  void AddStrike(const std::wstring& symbol);
  void SortStrikes();
  void ClearStrikes();

  /// All symbols, calls first.
  std::vector<std::wstring> Symbols();
  /// The same, and the chain has none left.
  std::vector<std::wstring> TakeSymbols();
  /// The first call, or the first put, or "".
  std::wstring FirstSymbol();
  size_t CallCount();
  size_t PutCount();

  /// The distinct strikes, ascending once they were sorted.
  std::vector<ScaledValue> Strikes();
  /// The text that a strike was spelled with; "" for one that isn't there.
  std::wstring StrikeText(ScaledValue strike);

  /// Removes the symbols whose strike isn't kept. `removed` is told each one, under the lock.
  void KeepOnly(const std::function<bool(ScaledValue strike)>& keepsCall,
                const std::function<bool(ScaledValue strike)>& keepsPut,
                const std::function<void(const std::wstring& symbol)>& removed);

 private:
  CCriticalSection m_csChain;
  std::vector<std::wstring> m_arSymbolCall IORDER_GUARDED_BY(m_csChain);
  std::vector<std::wstring> m_arSymbolPut IORDER_GUARDED_BY(m_csChain);
  std::map<ScaledValue, std::wstring> m_mapStrike IORDER_GUARDED_BY(m_csChain);
  std::vector<ScaledValue> m_arStrike IORDER_GUARDED_BY(m_csChain);
};

/// The strike in a symbol as a scaled value.
ScaledValue StrikeOf(const std::wstring& symbol);

}  // namespace iorder

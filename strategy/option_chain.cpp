#include "strategy/option_chain.h"

#include <algorithm>
#include <utility>

#include "records/number_text.h"
#include "reference/symbol.h"

namespace iorder {

ScaledValue StrikeOf(const std::wstring& symbol) {
  return ToScaled(LeadingDouble(GetSymbolStrike(symbol)));
}

void COptionChain::AddCall(const std::wstring& symbol) {
  CLockGuard guard(m_csChain);
  m_arSymbolCall.push_back(symbol);
}

void COptionChain::AddPut(const std::wstring& symbol) {
  CLockGuard guard(m_csChain);
  m_arSymbolPut.push_back(symbol);
}

void COptionChain::AddStrike(const std::wstring& symbol) {
  CLockGuard guard(m_csChain);
  const ScaledValue strike = StrikeOf(symbol);
  if (m_mapStrike.try_emplace(strike, GetSymbolStrike(symbol)).second) m_arStrike.push_back(strike);
}

void COptionChain::SortStrikes() {
  CLockGuard guard(m_csChain);
  std::sort(m_arStrike.begin(), m_arStrike.end());
}

void COptionChain::ClearStrikes() {
  CLockGuard guard(m_csChain);
  m_mapStrike.clear();
  m_arStrike.clear();
}

std::vector<std::wstring> COptionChain::Symbols() {
  CLockGuard guard(m_csChain);
  std::vector<std::wstring> symbols = m_arSymbolCall;
  symbols.insert(symbols.end(), m_arSymbolPut.begin(), m_arSymbolPut.end());
  return symbols;
}

std::vector<std::wstring> COptionChain::TakeSymbols() {
  CLockGuard guard(m_csChain);
  std::vector<std::wstring> symbols = std::exchange(m_arSymbolCall, {});
  symbols.insert(symbols.end(), m_arSymbolPut.begin(), m_arSymbolPut.end());
  m_arSymbolPut.clear();
  return symbols;
}

std::wstring COptionChain::FirstSymbol() {
  CLockGuard guard(m_csChain);
  if (!m_arSymbolCall.empty()) return m_arSymbolCall.front();
  return m_arSymbolPut.empty() ? std::wstring() : m_arSymbolPut.front();
}

size_t COptionChain::CallCount() {
  CLockGuard guard(m_csChain);
  return m_arSymbolCall.size();
}

size_t COptionChain::PutCount() {
  CLockGuard guard(m_csChain);
  return m_arSymbolPut.size();
}

std::vector<ScaledValue> COptionChain::Strikes() {
  CLockGuard guard(m_csChain);
  return m_arStrike;
}

std::wstring COptionChain::StrikeText(ScaledValue strike) {
  CLockGuard guard(m_csChain);
  const auto found = m_mapStrike.find(strike);
  return found == m_mapStrike.end() ? std::wstring() : found->second;
}

void COptionChain::KeepOnly(const std::function<bool(ScaledValue strike)>& keepsCall,
                            const std::function<bool(ScaledValue strike)>& keepsPut,
                            const std::function<void(const std::wstring& symbol)>& removed) {
  const auto keep = [&removed](std::vector<std::wstring>& symbols, const auto& keeps) {
    std::erase_if(symbols, [&](const std::wstring& symbol) {
      const bool goes = !keeps(StrikeOf(symbol));
      if (goes) removed(symbol);
      return goes;
    });
  };
  CLockGuard guard(m_csChain);
  keep(m_arSymbolCall, keepsCall);
  keep(m_arSymbolPut, keepsPut);
}

}  // namespace iorder

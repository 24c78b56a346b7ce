#include "reference/quote_subscriptions.h"

#include <utility>

namespace iorder {

CQuoteSubscriptions::CQuoteSubscriptions(IHostGateway& host,
                                         std::function<bool(const std::wstring& symbol)> anyHolder)
    : m_host(host),
      m_anyHolder(std::move(anyHolder)),
      m_mapSubscribed(host.GetWorld().runtime, "m_mapSubscribed") {}

bool CQuoteSubscriptions::IsHeld(const std::wstring& symbol) {
  return m_anyHolder(symbol) || m_mapSubscribed.Lookup(symbol).has_value();
}

void CQuoteSubscriptions::SubQuote(const std::wstring& symbol) {
  if (IsHeld(symbol)) return;
  m_host.WriteLog(L"SubQuote. strSymbol=" + symbol + L".");
  m_host.FireSubscribe(symbol);
}

void CQuoteSubscriptions::UnsubQuote(const std::wstring& symbol) {
  if (IsHeld(symbol)) return;
  m_host.WriteLog(L"UnsubQuote. strSymbol=" + symbol + L".");
  m_host.FireUnsubscribe(symbol);
}

bool CQuoteSubscriptions::EnsureOptionTopic(const std::wstring& name) {
  if (m_mapSubscribed.Insert(name, name)) m_host.FireSubscribe(name);
  return IsQuoteValid(name);
}

bool CQuoteSubscriptions::IsQuoteValid(const std::wstring& symbol) {
  const auto record = m_host.OpenRecord(symbol, nullptr);
  return record != nullptr && record->GetInt(L"MCODE", NoInt) > 0;
}

}  // namespace iorder

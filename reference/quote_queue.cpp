#include "reference/quote_queue.h"

#include <utility>

namespace iorder {

bool CQuoteQueue::Enqueue(const CQuoteData& quote) {
  CLockGuard guard(m_csQuotes);
  const auto known = m_mapQuotes.find(quote.strSymbol);
  if (known != m_mapQuotes.end() && known->second.lTransHandle != kNoUpdate) {
    const CQuoteData& first = known->second;
    if (first.lTransHandle == quote.lTransHandle || first.llField6 == quote.llField6) return false;
  } else {
    m_mapQuotes.insert_or_assign(quote.strSymbol, quote);
  }
  m_lstQuotes.push_back(quote);
  return true;
}

std::optional<CQuoteData> CQuoteQueue::Take() {
  CLockGuard guard(m_csQuotes);
  if (m_lstQuotes.empty()) return std::nullopt;
  CQuoteData quote = std::move(m_lstQuotes.front());
  m_lstQuotes.pop_front();
  return quote;
}

bool CQuoteQueue::IsEmpty() {
  CLockGuard guard(m_csQuotes);
  return m_lstQuotes.empty();
}

}  // namespace iorder

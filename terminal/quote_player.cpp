#include "terminal/quote_player.h"

namespace iorder {

CQuotePlayer::Target CQuotePlayer::Find(const std::wstring& symbol) {
  return {&m_bus.Quote(symbol), m_orders != nullptr ? &m_orders->Book(symbol) : nullptr,
          m_figures != nullptr ? m_figures->Find(symbol) : CMarketFigures::Series()};
}

void CQuotePlayer::Play(const Target& target, const QuoteUpdate& update, const RecordChange* more,
                        const Firing& firing) {
  if (target.book != nullptr) {
    m_orders->OnQuote(*target.book, update);
  }
  if (m_figures != nullptr) {
    m_figures->OnQuote(target.series, update);
  }
  const DateTime utc = update.NeedsClock() ? m_runtime.UtcTime() : DateTime();
  m_bus.PlayQuote(*target.record, update, more, utc, firing);
}

}  // namespace iorder

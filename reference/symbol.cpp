#include "reference/symbol.h"

#include <algorithm>

#include "records/option_figures_record.h"

namespace iorder {

namespace {

constexpr int kExchangePlace = 3;
constexpr int kProductPlace = 4;
constexpr int kMonthPlace = 5;
constexpr int kRightPlace = 6;

/// The symbol as it stands up to the end of the token at this place.
std::wstring PrefixTo(std::wstring_view symbol, int place) {
  CTokenizer tokens(symbol);
  std::wstring_view token;
  for (int i = 0; i < place; ++i) token = tokens.Next(L'.');
  return token.empty() ? std::wstring() : std::wstring(symbol.substr(0, tokens.Position()));
}

}  // namespace

std::wstring_view CTokenizer::Next(wchar_t delimiter) {
  const size_t begin = m_text.find_first_not_of(delimiter, m_position);
  if (begin == std::wstring_view::npos) {
    m_position = m_text.size();
    return {};
  }
  m_position = std::min(m_text.find(delimiter, begin), m_text.size());
  return m_text.substr(begin, m_position - begin);
}

std::wstring_view SymbolToken(std::wstring_view symbol, int place) {
  CTokenizer tokens(symbol);
  std::wstring_view token;
  for (int i = 0; i < place; ++i) token = tokens.Next(L'.');
  return token;
}

std::wstring GetSymbolExchange(std::wstring_view symbol) {
  return std::wstring(SymbolToken(symbol, kExchangePlace));
}
std::wstring GetSymbolMonth(std::wstring_view symbol) {
  return std::wstring(SymbolToken(symbol, kMonthPlace));
}
std::wstring GetSymbolCallPut(std::wstring_view symbol) {
  return std::wstring(SymbolToken(symbol, kRightPlace));
}

std::wstring GetSymbolStrike(std::wstring_view symbol) {
  CTokenizer tokens(symbol);
  std::wstring_view right;
  for (int i = 0; i < kRightPlace; ++i) right = tokens.Next(L'.');
  if (right.empty() || tokens.Position() == symbol.size()) return {};
  // Behind the delimiter nothing but a line-feed cuts, so that the strike keeps its point.
  CTokenizer rest(symbol.substr(tokens.Position() + 1));
  return std::wstring(rest.Next(L'\n'));
}

std::wstring GetSymbolMonthKey(std::wstring_view symbol) {
  return PrefixTo(symbol, kMonthPlace);
}
std::wstring GetSymbolProductKey(std::wstring_view symbol) {
  return PrefixTo(symbol, kProductPlace);
}

std::wstring FirstTokens(std::wstring_view symbol, int count) {
  CTokenizer tokens(symbol);
  std::wstring key;
  for (int i = 0; i < count; ++i) {
    if (i > 0) key += L'.';
    key += tokens.Next(L'.');
  }
  return key;
}

std::wstring ExchangeKey(std::wstring_view symbol) {
  return FirstTokens(symbol, kExchangePlace);
}
std::wstring ProductId(std::wstring_view symbol) {
  return FirstTokens(symbol, kProductPlace);
}
std::wstring SymbolKey(std::wstring_view symbol) {
  return FirstTokens(symbol, kMonthPlace);
}

std::wstring ReplaceAll(std::wstring text, std::wstring_view from, std::wstring_view to) {
  for (size_t at = text.find(from); at != std::wstring::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

bool IsCall(std::wstring_view symbol) {
  return symbol.find(L".C.") != std::wstring_view::npos;
}
bool IsPut(std::wstring_view symbol) {
  return symbol.find(L".P.") != std::wstring_view::npos;
}
std::wstring PutOf(const std::wstring& callSymbol) {
  return ReplaceAll(callSymbol, L".C.", L".P.");
}

std::wstring AnalyticsRecordName(const std::wstring& underlying) {
  const bool future = underlying.find(L".F.") != std::wstring::npos;
  return std::wstring(future ? L"OPT.Volatility." : kOptionFiguresRecord) + underlying;
}

}  // namespace iorder

#pragma once

#include <string>
#include <string_view>

/// The grammar of symbols. A symbol is text: tokens joined by ".", in this order: namespace (ND), instrument
/// type (F future, O option, S stock), exchange, product, month (or HOT), and for options right (C or P) and
/// strike. A run of dots counts as one; a symbol is never validated, and tokens that aren't there are empty.
/// All functions are pure.
namespace iorder {

/// The one chain that is never resolved through the hot month table: it follows the nearest expiry.
inline constexpr std::wstring_view kNearestChain = L"ND.O.TWF.TX.HOT";
inline constexpr std::wstring_view kHotMonth = L"HOT";

/// Cuts a text into tokens, one after the other: delimiters in front of a token are skipped, and a text that
/// has run out gives empty tokens.
class CTokenizer {
 public:
  explicit CTokenizer(std::wstring_view text) : m_text(text) {}

  std::wstring_view Next(wchar_t delimiter);
  /// Index behind the last token given out.
  size_t Position() const { return m_position; }

 private:
  std::wstring_view m_text;
  size_t m_position = 0;
};

/// The token at this place, counted from 1.
std::wstring_view SymbolToken(std::wstring_view symbol, int place);

std::wstring GetSymbolExchange(std::wstring_view symbol);
std::wstring GetSymbolMonth(std::wstring_view symbol);
/// "C", "P" or whatever stands in the place of the right.
std::wstring GetSymbolCallPut(std::wstring_view symbol);
/// Everything behind the right: a strike may hold a ".".
std::wstring GetSymbolStrike(std::wstring_view symbol);
/// The symbol as it stands up to and with its month; "" if it has none.
std::wstring GetSymbolMonthKey(std::wstring_view symbol);
/// The symbol as it stands up to and with its product; "" if it has none.
std::wstring GetSymbolProductKey(std::wstring_view symbol);

/// The first `count` tokens joined by ".", with nothing between the dots for a missing token.
std::wstring FirstTokens(std::wstring_view symbol, int count);
/// The first three, four and five of them.
std::wstring ExchangeKey(std::wstring_view symbol);
std::wstring ProductId(std::wstring_view symbol);
std::wstring SymbolKey(std::wstring_view symbol);

/// The text with every `from` replaced by `to`; `from` isn't empty.
std::wstring ReplaceAll(std::wstring text, std::wstring_view from, std::wstring_view to);

/// ".C." and ".P." in a symbol tell call from put.
bool IsCall(std::wstring_view symbol);
bool IsPut(std::wstring_view symbol);
/// The put of the same strike.
std::wstring PutOf(const std::wstring& callSymbol);

/// The name of the record with the analytics that belong to this underlying.
std::wstring AnalyticsRecordName(const std::wstring& underlying);

}  // namespace iorder

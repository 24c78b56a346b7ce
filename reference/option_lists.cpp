#include "reference/option_lists.h"

#include "records/number_text.h"
#include "reference/symbol.h"

namespace iorder {

namespace {

/// The statement's end: only this instrument type, strikes in the order of their numbers.
std::wstring WithTypeByStrike(const std::wstring& condition, std::wstring_view type) {
  return condition + L" and Type = '" + std::wstring(type) + L"' order by CAST(SearchName AS INTEGER)";
}

}  // namespace

std::wstring COptionLists::GetHotMonth(const std::wstring& symbol) {
  const auto table = m_host.OpenRecord(L"HOTMONTHTABLE", nullptr);
  if (table == nullptr) return symbol;
  std::wstring current = table->GetString(symbol);
  return current.empty() ? symbol : current;
}

std::vector<std::wstring> COptionLists::QueryOptionList(const std::wstring& symbol) {
  if (symbol == kNearestChain) return QueryNearestOptionList(symbol);
  const std::wstring type(SymbolToken(symbol, 2));
  const std::wstring exchange(SymbolToken(symbol, 3));
  const std::wstring product(SymbolToken(symbol, 4));
  const std::wstring month(SymbolToken(symbol, 5));

  // The product token may be longer than the product (an adjusted series carries a suffix): the suffix is cut
  // off in the database, where it is known.
  const std::wstring pattern = L"ND." + type + L"." + exchange + L"." + product + L"%." + month + L".C.";
  const std::wstring condition = L"Symbol like '%" + pattern +
                                 L"%' and substr(product, 0, length(product)-length(setpriadj)+1) = '" +
                                 product + L"'";
  std::vector<std::wstring> symbols;
  m_database.Query(WithTypeByStrike(condition, type), [&symbols](IRecordItem& row) {
    if (std::wstring name = row.Get(L"Symbol"); !name.empty()) symbols.push_back(std::move(name));
  });
  return symbols;
}

std::vector<std::wstring> COptionLists::QueryNearestOptionList(const std::wstring& symbol) {
  const std::wstring type(SymbolToken(symbol, 2));
  const std::wstring exchange(SymbolToken(symbol, 3));
  const std::wstring product(SymbolToken(symbol, 4));

  const std::wstring condition = L"Symbol like '%ND." + type + L"." + exchange + L"." + product + L"%.C.%'";
  std::vector<std::wstring> symbols;
  int64_t best = 0;
  m_database.Query(WithTypeByStrike(condition, type), [&symbols, &best](IRecordItem& row) {
    std::wstring name = row.Get(L"Symbol");
    if (name.empty()) return;
    const int64_t expiry = LeadingInt64(row.Get(L"ExpDate"));
    if (expiry <= 0) return;
    if (best != 0 && expiry != best) {
      if (best <= expiry) return;
      symbols.clear();
    }
    symbols.push_back(std::move(name));
    best = expiry;
  });
  return symbols;
}

}  // namespace iorder

#include "reference/order_settings.h"

#include <string>

#include "reference/symbol.h"

namespace iorder {

namespace {

constexpr int kMostTokens = 5;
constexpr int kTypePlace = 2;

const wchar_t* TypeWord(std::wstring_view type) {
  if (type == L"O") return L"OPTION";
  if (type == L"S") return L"STOCK";
  return L"FUTURE";
}

}  // namespace

std::unique_ptr<CBaseData> FindRecordForSymbol(CBaseData& settings, std::wstring_view symbol) {
  if (auto item = settings.OpenItemByName(symbol, nullptr)) return item;
  for (int count = kMostTokens; count >= kTypePlace; --count) {
    if (SymbolToken(symbol, count).empty()) continue;
    if (auto item = settings.OpenItemByName(FirstTokens(symbol, count), nullptr)) return item;
  }
  if (auto item = settings.OpenItemByName(TypeWord(SymbolToken(symbol, kTypePlace)), nullptr)) return item;
  return settings.OpenItemByName(L"ALL", nullptr);
}

}  // namespace iorder

#include "terminal/security_info.h"

#include "platform/text.h"
#include "records/json_document.h"

namespace iorder {
namespace {

constexpr int kExchangeTokens = 3;
constexpr int kProductTokens = 4;

/// The symbol as far as its first so many tokens go.
std::wstring FirstTokens(const std::wstring& symbol, int count) {
  size_t end = symbol.find(L'.');
  for (int i = 1; i < count && end != std::wstring::npos; ++i) {
    end = symbol.find(L'.', end + 1);
  }
  return symbol.substr(0, end);
}

std::wstring TickSizeIn(const Value& attributes) {
  const std::wstring* const json = std::get_if<std::wstring>(&attributes);
  rapidjson::Document document;
  if (json == nullptr || ParseJson(ToUtf8(*json), document)) return {};
  return StringMember(document, "TickSize");
}

}  // namespace

CTickLadder TickLadderOf(CEmbeddedBus& bus, const std::wstring& symbol) {
  const std::wstring tickSize = TickSizeIn(bus.ItemField(
      L"Security.Info", FirstTokens(symbol, kExchangeTokens), FirstTokens(symbol, kProductTokens)));
  return CTickLadder(tickSize.empty() ? CTickLadder::kFallbackTick : tickSize);
}

}  // namespace iorder

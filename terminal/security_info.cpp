#include "terminal/security_info.h"

#include "platform/text.h"
#include "records/json_document.h"
#include "records/number_text.h"

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

/// The text of a product's attribute, or "".
std::wstring AttributeOf(CEmbeddedBus& bus, const std::wstring& symbol, std::string_view attribute) {
  const Value attributes = bus.ItemField(L"Security.Info", FirstTokens(symbol, kExchangeTokens),
                                         FirstTokens(symbol, kProductTokens));
  const std::wstring* const json = std::get_if<std::wstring>(&attributes);
  rapidjson::Document document;
  if (json == nullptr || ParseJson(ToUtf8(*json), document)) return {};
  return StringMember(document, attribute);
}

}  // namespace

CTickLadder TickLadderOf(CEmbeddedBus& bus, const std::wstring& symbol) {
  const std::wstring tickSize = AttributeOf(bus, symbol, "TickSize");
  return CTickLadder(tickSize.empty() ? CTickLadder::kFallbackTick : tickSize);
}

int64_t ContractWeightOf(CEmbeddedBus& bus, const std::wstring& symbol) {
  const std::wstring weight = AttributeOf(bus, symbol, "Weight");
  return weight.empty() ? 1 : LeadingInt64(weight);
}

}  // namespace iorder

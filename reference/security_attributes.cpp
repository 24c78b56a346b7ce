#include "reference/security_attributes.h"

#include <array>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/runtime.h"
#include "platform/text.h"
#include "records/json_document.h"
#include "records/number_text.h"
#include "reference/symbol.h"

namespace iorder {

namespace {

constexpr const wchar_t* kRequestTopic = L"GLACETTE.REQUEST";
constexpr int32_t kRequestFirst = 1;
constexpr int32_t kRequestFetch = 64;
constexpr int32_t kRequestLoad = 0;

/// What an attribute is when its product doesn't say; "" for an attribute that may be looked up at the
/// exchange.
std::wstring DefaultOf(const std::wstring& attribute) {
  static constexpr std::array<std::pair<std::wstring_view, std::wstring_view>, 5> defaults{
      {{L"TickSize", L"0.001"},
       {L"Weight", L"1"},
       {L"Denominator", L"1"},
       {L"TicksPerPoint", L"1"},
       {L"Multiplier.GQ2", L"1"}}};
  for (const auto& [name, value] : defaults) {
    if (name == attribute) return std::wstring(value);
  }
  return {};
}

std::wstring ReadDocument(const AnswerDocument& answer, const std::wstring& symbol,
                          const std::wstring& attribute) {
  const auto read = [&](const std::wstring& key) {
    const rapidjson::Value* entry = FindMember(answer, ToUtf8(key));
    return entry != nullptr ? StringMember(*entry, ToUtf8(attribute)) : std::wstring();
  };
  std::wstring result = read(ProductId(symbol));
  if (result.empty()) result = DefaultOf(attribute);
  return result.empty() ? read(ExchangeKey(symbol)) : result;
}

/// Whole price units as a scaled value; beyond its range the nearest end.
ScaledValue ScaleUnits(int64_t units) {
  ScaledValue scaled = 0;
  if (!__builtin_mul_overflow(units, static_cast<int64_t>(kScale), &scaled)) return scaled;
  return units > 0 ? std::numeric_limits<int64_t>::max() : std::numeric_limits<int64_t>::min();
}

}  // namespace

CSecurityAttributes::CSecurityAttributes(IHostGateway& host)
    : m_host(host),
      m_csSecurityCache(host.GetWorld().runtime, "m_csSecurityCache"),
      m_mapSecurityCache(host.GetWorld().runtime, "m_mapSecurityCache") {}

void CSecurityAttributes::SetRecord(std::unique_ptr<CBaseData> record) {
  m_owner = std::move(record);
  m_pSecurityInfo = m_owner.get();
}

std::wstring CSecurityAttributes::GetStringFromSecurity(const std::wstring& symbol,
                                                        const std::wstring& attribute) {
  if (m_pSecurityInfo == nullptr) return {};
  const std::wstring cacheKey = symbol + L":" + attribute;
  {
    CLockGuard guard(m_csSecurityCache);
    if (auto cached = m_mapSecurityCache.Lookup(cacheKey)) return *std::move(cached);
  }
  std::wstring result = LookUp(symbol, attribute);
  m_host.WriteLog(L"GetStringFromSecurity. SymbolID=" + ProductId(symbol) + L", strMapKey=" + cacheKey +
                  L", strResult=" + result + L".");
  CLockGuard guard(m_csSecurityCache);
  m_mapSecurityCache.Set(cacheKey, result);
  return result;
}

std::wstring CSecurityAttributes::LookUp(const std::wstring& symbol, const std::wstring& attribute) {
  auto exchangeItem = m_pSecurityInfo.load()->OpenItemByName(ExchangeKey(symbol), nullptr);
  AnswerDocument answer;
  RequestSecurityInfo(ExchangeKey(symbol), ProductId(symbol), exchangeItem, answer);
  const bool answered = !answer.IsNull() && !answer.HasParseError();
  return answered ? ReadDocument(answer, symbol, attribute)
                  : ReadRecord(symbol, attribute, exchangeItem.get());
}

std::wstring CSecurityAttributes::ReadRecord(const std::wstring& symbol, const std::wstring& attribute,
                                             CBaseData* exchangeItem) {
  if (exchangeItem == nullptr) {
    m_host.WriteLog(L"GetStringFromSecurity cannot open Security.Info Exchange:" + ExchangeKey(symbol) +
                    L", symbolid=" + ProductId(symbol));
    return {};
  }
  std::wstring result = exchangeItem->GetJsonString(ProductId(symbol), attribute);
  if (result.empty()) result = DefaultOf(attribute);
  return result.empty() ? exchangeItem->GetJsonString(ExchangeKey(symbol), attribute) : result;
}

void CSecurityAttributes::RequestSecurityInfo(const std::wstring& exchangeKey, const std::wstring& productId,
                                              std::unique_ptr<CBaseData>& exchangeItem,
                                              AnswerDocument& answer) {
  if (exchangeItem == nullptr) {
    const Value reply = SendRequest(productId, answer, false);
    exchangeItem = m_pSecurityInfo.load()->OpenItemByName(exchangeKey, nullptr);
    LogAnswer(reply, L"GetInfoFromMordoDb:false");
  } else if (exchangeItem->GetString(productId).empty()) {
    LogAnswer(SendRequest(productId, answer, true), L"GetInfoFromMordoDb:2false");
  }
}

Value CSecurityAttributes::SendRequest(const std::wstring& productId, AnswerDocument& answer,
                                       bool itemExists) {
  IRuntime& runtime = m_host.GetWorld().runtime;
  struct Reference {
    IRuntime& runtime;
    int64_t value;
    ~Reference() { runtime.ReleaseReference(value); }
  } const reference{runtime, runtime.MakeReference(&answer)};
  // The second form has room for the low half of the reference only.
  const Value value = itemExists ? Value(static_cast<int32_t>(reference.value)) : Value(reference.value);
  return m_host.SendHostEvent(kRequestTopic, kRequestFirst, itemExists ? kRequestLoad : kRequestFetch,
                              productId, value);
}

/// The line that reads like a failure is written when the host says "TRUE" or answers with no text at all.
void CSecurityAttributes::LogAnswer(const Value& reply, const wchar_t* line) {
  const std::wstring* text = std::get_if<std::wstring>(&reply);
  if (text == nullptr || *text == L"TRUE") m_host.WriteLog(line);
}

ScaledValue CSecurityAttributes::RoundToTick(const std::wstring& symbol, double price) {
  const ScaledValue scaled = ToScaled(price);
  const ScaledValue tick = ToScaled(TickAt(GetStringFromSecurity(symbol, L"TickSize"), scaled));
  if (scaled == NoValue || tick <= 0) return scaled;
  const ScaledValue low = scaled / tick * tick;
  ScaledValue high = 0;
  if (__builtin_add_overflow(low, tick, &high)) return low;
  return scaled - low < high - scaled ? low : high;
}

double TickAt(const std::wstring& tickSize, ScaledValue price) {
  if (tickSize.find(L':') == std::wstring::npos) return LeadingDouble(tickSize);
  double tick = 1.0;
  CTokenizer entries(tickSize);
  for (std::wstring_view entry = entries.Next(L';'); !entry.empty(); entry = entries.Next(L';')) {
    const size_t colon = entry.find(L':');
    if (price < ScaleUnits(LeadingInt64(entry.substr(0, colon)))) break;
    tick = colon == std::wstring_view::npos ? 0.0 : LeadingDouble(entry.substr(colon + 1));
  }
  return tick;
}

}  // namespace iorder

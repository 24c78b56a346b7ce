#include "strategy/strategy.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <utility>

#include "platform/text.h"
#include "records/json_document.h"
#include "records/json_reader.h"
#include "records/number_text.h"

namespace iorder {

std::wstring TagOfID(const std::wstring& strategyID) {
  return strategyID.substr(0, strategyID.find(L'#'));
}

CStrategy::CStrategy(IStrategyHost& owner)
    : m_owner(owner),
      m_objectNumber(owner.GetWorld().runtime.NewObjectNumber()),
      m_logSuffix(fmt::sprintf(L".%x> ", m_objectNumber)),
      m_csIdentity(owner.GetWorld().runtime, "identity lock"),
      m_identity(std::make_shared<const CStrategyIdentity>()),
      m_csOrderInfo(owner.GetWorld().runtime, "order info lock"),
      m_csQuote(owner.GetWorld().runtime, "quote lock"),
      m_csReverse(owner.GetWorld().runtime, "reverse lock") {}

CStrategy::~CStrategy() {
  CutOffShield shield(Runtime());
  CloseAllQuotes();
}

std::optional<std::shared_ptr<void>> CStrategy::Pin() {
  if (auto self = weak_from_this().lock()) return self;
  return std::nullopt;
}

CStrategy::IdentityPtr CStrategy::Identity() const {
  CLockGuard guard(m_csIdentity);
  return m_identity;
}

void CStrategy::SetIdentity(CStrategyIdentity identity) {
  auto next = std::make_shared<const CStrategyIdentity>(std::move(identity));
  {
    CLockGuard guard(m_csIdentity);
    m_identity.swap(next);
  }
  NoteTotalsChanged();
}

void CStrategy::SetKey(const std::wstring& key) {
  CStrategyIdentity identity = *Identity();
  identity.m_strStrategyKey = key;
  SetIdentity(std::move(identity));
}

void CStrategy::SetUserKey2(const std::wstring& text) {
  CStrategyIdentity identity = *Identity();
  identity.m_strUserKey2 = text;
  SetIdentity(std::move(identity));
}

void CStrategy::ParseStrategyInfo(rapidjson::Document& document) {
  {
    CLockGuard guard(m_csOrderInfo);
    m_orderInfo.Swap(document);
  }
  CStrategyIdentity identity;
  identity.m_strStrategyKey = Key();
  identity.m_strStrategyType = ReadJsonString(m_orderInfo, "StrategyType");
  identity.m_strStrategyID = ReadJsonString(m_orderInfo, "StrategyID");
  identity.m_strStrategySN = ReadJsonString(m_orderInfo, "StrategySN");
  identity.m_strStrategyTag = ReadJsonString(m_orderInfo, "StrategyTag");
  if (identity.m_strStrategyTag.empty()) identity.m_strStrategyTag = TagOfID(identity.m_strStrategyID);
  identity.m_strBrokerID = ReadJsonString(m_orderInfo, "BrokerID");
  identity.m_strAccount = ReadJsonString(m_orderInfo, "Account");
  identity.m_strUserKey1 = ReadJsonString(m_orderInfo, "UserKey1");
  identity.m_strUserKey2 = ReadJsonString(m_orderInfo, "UserKey2");
  identity.m_strUserKey3 = ReadJsonString(m_orderInfo, "UserKey3");
  identity.m_strProcessID = ReadJsonString(m_orderInfo, "ProcessID");
  SetIdentity(std::move(identity));
  ParseOrderInfo();
  AfterParseOrderInfo();
}

std::wstring CStrategy::OrderInfoText() const {
  CLockGuard guard(m_csOrderInfo);
  return ToWide(WriteJson(m_orderInfo));
}

void CStrategy::WriteLog(const std::wstring& message) {
  // Joined, not formatted: a formatter would copy the message character by character.
  m_owner.WriteLog(L"[OpenLottery]<" + Identity()->m_strStrategyKey + m_logSuffix + message);
}

void CStrategy::DelStrategy() {
  WriteLog(L"DelStrategy.");
  PostEvent(kDelStrategyMessage);
}

bool CStrategy::HasQuote(const std::wstring& symbol) {
  CLockGuard guard(m_csQuote);
  return m_mapQuote.contains(symbol);
}

CStrategy::CQuote CStrategy::FindQuote(const std::wstring& symbol) {
  CLockGuard guard(m_csQuote);
  const auto found = m_mapQuote.find(symbol);
  return found == m_mapQuote.end() ? CQuote() : found->second;
}

int64_t CStrategy::GetQuoteField(const std::wstring& symbol, int32_t id) {
  const QuoteHandle handle = GetQuote(symbol);
  return handle != nullptr ? handle->GetFieldById(id) : NoValue;
}

bool CStrategy::IsQuoteValid(const std::wstring& symbol) {
  const QuoteHandle handle = GetQuote(symbol);
  return handle != nullptr && handle->GetInt(L"MCODE", NoInt) > 0;
}

CStrategy::QuoteKey CStrategy::KeyOf(CBaseData* handle) {
  CLockGuard guard(m_csReverse);
  const auto found = m_mapReverse.find(handle);
  return found == m_mapReverse.end() ? nullptr : found->second;
}

CStrategy::QuoteKey CStrategy::KeyOfSymbol(const std::wstring& symbol) {
  CLockGuard guard(m_csQuote);
  return KeyFor(symbol);
}

CStrategy::QuoteKey CStrategy::KeyFor(const std::wstring& symbol) {
  const auto [entry, isNew] = m_mapKeys.try_emplace(symbol);
  if (isNew) {
    const auto number = static_cast<uint32_t>(m_mapKeys.size() - 1);
    entry->second = std::make_shared<const CQuoteKey>(CQuoteKey{.strSymbol = symbol, .number = number});
  }
  return entry->second;
}

CStrategy::QuoteHandle CStrategy::SubscribeQuote(const std::wstring& symbol) {
  if (HasQuote(symbol)) return nullptr;
  m_owner.SubQuote(symbol);
  CLockGuard guard(m_csQuote);
  const auto [entry, isNew] = m_mapQuote.try_emplace(symbol);
  if (!isNew) return nullptr;  // another thread was quicker
  const QuoteKey key = KeyFor(symbol);
  const QuoteHandle handle = m_owner.OpenRecord(symbol, this);
  entry->second = {.key = key, .handle = handle};
  CLockGuard reverseGuard(m_csReverse);
  m_mapReverse.insert_or_assign(handle.get(), key);
  return handle;
}

void CStrategy::UnsubscribeQuote(const std::wstring& symbol) {
  {
    QuoteHandle handle;
    CLockGuard guard(m_csQuote);
    const auto found = m_mapQuote.find(symbol);
    if (found == m_mapQuote.end()) return;
    handle = std::move(found->second.handle);
    m_mapQuote.erase(found);
    CLockGuard reverseGuard(m_csReverse);
    m_mapReverse.erase(handle.get());
  }
  m_owner.UnsubQuote(symbol);
}

void CStrategy::CloseAllQuotes() {
  std::map<std::wstring, CQuote> quotes;
  {
    CLockGuard guard(m_csQuote);
    quotes.swap(m_mapQuote);
    CLockGuard reverseGuard(m_csReverse);
    m_mapReverse.clear();
  }
  for (auto& [symbol, quote] : quotes) quote.handle.reset();
  for (const auto& [symbol, quote] : quotes) m_owner.UnsubQuote(symbol);
}

double CStrategy::GetContractWeight(const std::wstring& symbol) {
  const std::wstring weight = m_owner.GetStringFromSecurity(symbol, L"Weight");
  return weight.empty() ? 1.0 : static_cast<double>(LeadingInt64(weight));
}

}  // namespace iorder

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <memory>

#include "engine/intelligent_order.h"
#include "platform/text.h"
#include "records/json_document.h"
#include "records/json_reader.h"
#include "strategy/strategy_open_lottery.h"

namespace iorder {

namespace {

constexpr const wchar_t* kOpenLottery = L"OpenLottery";

/// The "Action" of a strategy command; other values have no branch of their own.
namespace action {
constexpr int32_t kStop = 0;
constexpr int32_t kStart = 1;
constexpr int32_t kDelete = 2;
constexpr int32_t kSetLimits = 3;
}  // namespace action

uint32_t NumberOf(const std::shared_ptr<CStrategy>& strategy) {
  return strategy != nullptr ? strategy->ObjectNumber() : 0;
}

}  // namespace

void CIntelligentOrder::ParseOrderCommand(const std::wstring& text) {
  WriteLog(L"New Intelligent Order : " + text);
  rapidjson::Document document;
  if (const JsonFailure failure = ParseJson(ToUtf8(text), document)) {
    WriteLog(fmt::sprintf(L"JSON Parse Fail! GetParseError=%d, GetErrorOffset=%d, strOrderInfo=%s",
                          static_cast<int>(failure.code), failure.offset, text));
    return;
  }
  if (ReadJsonString(document, "StrategyType") != kOpenLottery) {
    m_groupOrders.ParseGroupOrder(document);
  } else if (ReadJsonInt(document, "Action", action::kStop) == action::kSetLimits) {
    SetPnLLimits(document);
  } else {
    ParseStrategyCommand(document);
  }
}

void CIntelligentOrder::ParseStrategyCommand(rapidjson::Document& document) {
  const int32_t command = ReadJsonInt(document, "Action", action::kStop);
  const std::wstring key = ReadJsonString(document, "StrategyType") + L"_" +
                           ReadJsonString(document, "StrategyID") + L"_" +
                           ReadJsonString(document, "StrategySN");
  IStrategyHost& host = *this;
  CStrategyRegistry::StrategyPtr strategy;
  {
    CLockGuard guard(m_strategies.Lock());
    // A key that isn't found leaves the last strategy in hand, and a command acts on it.
    CStrategyRegistry::CWalk walk = m_strategies.WalkTo(key);
    switch (command) {
      case action::kStop:
        WriteLog(fmt::sprintf(L"[OpenLottery] Stop. strStrategyKey=%s, idx=%d, pStrategy=%x.", key,
                              walk.index, NumberOf(walk.strategy)));
        if (walk.IsFound()) walk.strategy->OnStopCommand(document);
        return;
      case action::kDelete:
        PostEngineMessage(kDelStrategyMessage, walk.strategy.get(), 0);
        return;
      case action::kStart:
        if (!walk.IsFound()) {
          strategy = std::make_shared<CStrategyOpenLottery>(host, m_strWorkFolder);
          walk.index = m_strategies.Add(strategy, key);
        }
        WriteLog(fmt::sprintf(L"[OpenLottery] Start. strStrategyKey=%s, idx=%d, pStrategy=%x.", key,
                              walk.index, NumberOf(strategy)));
        break;
      default:
        strategy = walk.strategy;
        break;
    }
  }
  if (strategy == nullptr) return;
  strategy->SetKey(key);
  strategy->ParseStrategyInfo(document);
}

void CIntelligentOrder::SetPnLLimits(const rapidjson::Document& document) {
  const std::wstring strategyID = ReadJsonString(document, "StrategyID");
  std::wstring tag = ReadJsonString(document, "StrategyTag");
  if (tag.empty()) tag = TagOfID(strategyID);
  const CPnLLimits limits = m_limits.Touch(tag)->Update(document);
  WriteLog(
      fmt::sprintf(L"[OpenLottery] Set. strStrategyID=%s, strStrategyTag=%s, Profit:Enable=%d, Value=%lld, "
                   L"ValueP=%f, Loss:Enable=%d, Value=%lld, ValueP=%f.",
                   strategyID, tag, limits.m_lProfitEnable, limits.m_llProfitValue, limits.m_dbProfitValueP,
                   limits.m_lLossEnable, limits.m_llLossValue, limits.m_dbLossValueP));
  m_hPnLEvent->Set();  // new limits hold at once
}

}  // namespace iorder

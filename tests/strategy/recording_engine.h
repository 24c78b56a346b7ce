#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "strategy/strategy.h"
#include "tests/reference/reference_fixture.h"

namespace iorder::testing {

/// The engine as a strategy sees it: subscriptions, posts and log lines are noted, and a test may
/// act in the middle of them.
class CRecordingEngine : public IStrategyHost {
 public:
  explicit CRecordingEngine(CRecordingHost& host) : m_host(host) {}

  World& GetWorld() override { return m_host.GetWorld(); }
  void WriteLog(const std::wstring& text) override {
    m_host.WriteLog(text);
    if (onLog) onLog(text);
  }
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override {
    return m_host.OpenRecord(name, receiver);
  }
  Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override {
    return m_host.SendHostEvent(topic, first, second, text, value);
  }
  void PostEngineMessage(uint32_t message, CStrategy*, uintptr_t) override { posted.push_back(message); }
  void SubQuote(const std::wstring& symbol) override {
    if (onSubscribe) onSubscribe(symbol);
    m_host.FireSubscribe(symbol);
  }
  void UnsubQuote(const std::wstring& symbol) override {
    if (onUnsubscribe) onUnsubscribe(symbol);
    m_host.FireUnsubscribe(symbol);
  }
  std::wstring GetHotMonth(const std::wstring& symbol) override { return symbol; }
  std::vector<std::wstring> QueryOptionList(const std::wstring&) override { return chain; }
  std::wstring GetStringFromSecurity(const std::wstring&, const std::wstring& attribute) override {
    return attribute == L"Weight" ? weight : L"";
  }
  ScaledValue RoundToTick(const std::wstring&, double) override { return NoValue; }
  int32_t GetTradingDays(const std::wstring&, int32_t, int32_t) override { return 0; }
  bool IsAccountReady(const std::wstring&, const std::wstring&) override { return false; }
  void EnqueueQuote(const CQuoteData&) override {}

  std::vector<uint32_t> posted;
  std::wstring weight;
  std::vector<std::wstring> chain;  ///< what every query for options finds
  std::function<void(const std::wstring& text)> onLog;
  std::function<void(const std::wstring& symbol)> onSubscribe;
  std::function<void(const std::wstring& symbol)> onUnsubscribe;

 private:
  CRecordingHost& m_host;
};

}  // namespace iorder::testing

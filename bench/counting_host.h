#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/virtual/virtual_runtime.h"
#include "strategy/strategy_host.h"
#include "strategy/strategy_open_lottery.h"
#include "terminal/embedded_terminal.h"

namespace iorder {

/// The engine as a strategy sees it, with a terminal of its own below it: what leaves is counted and let go,
/// so that only the strategy's own work is measured.
class CCountingHost : public IStrategyHost {
 public:
  CCountingHost();
  ~CCountingHost() override;

  /// Runs `body` as a thread of the host's runtime.
  void Run(const std::function<void()>& body);
  CEmbeddedBus& Bus();
  /// Characters of all lines and messages so far.
  size_t Characters() const { return m_characters; }

  World& GetWorld() override;
  void WriteLog(const std::wstring& text) override { m_characters += text.size(); }
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override;
  Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override;
  void PostEngineMessage(uint32_t, CStrategy*, uintptr_t) override {}
  void SubQuote(const std::wstring&) override {}
  void UnsubQuote(const std::wstring&) override {}
  std::wstring GetHotMonth(const std::wstring& symbol) override { return symbol; }
  std::vector<std::wstring> QueryOptionList(const std::wstring&) override { return {}; }
  std::wstring GetStringFromSecurity(const std::wstring&, const std::wstring&) override { return L"50"; }
  ScaledValue RoundToTick(const std::wstring&, double price) override { return ToScaled(price); }
  int32_t GetTradingDays(const std::wstring&, int32_t, int32_t) override { return 0; }
  bool IsAccountReady(const std::wstring&, const std::wstring&) override { return true; }
  void EnqueueQuote(const CQuoteData&) override {}

 private:
  CVirtualRuntime m_runtime;
  Day m_day;
  CEmbeddedTerminal m_terminal;
  size_t m_characters = 0;
};

/// A strategy of this ID and tag that was given its command and has no run.
std::shared_ptr<CStrategyOpenLottery> MakeBenchStrategy(CCountingHost& host, const std::string& id,
                                                        const std::string& tag);

/// A report of the strategy's present batch as the order service writes it, in the record `name`.
std::unique_ptr<CBaseData> MakeBenchReport(CCountingHost& host, const std::wstring& name,
                                           const std::wstring& strategyKey, const std::wstring& symbol,
                                           int32_t lots);

}  // namespace iorder

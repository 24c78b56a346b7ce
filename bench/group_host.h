#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/host_events_proxy.h"
#include "grouporder/group_order_host.h"
#include "platform/virtual/virtual_runtime.h"
#include "terminal/embedded_terminal.h"

namespace iorder {

/// The engine as group orders see it, with a terminal of its own below it whose bus holds the figures of one
/// chain: records are opened as the engine opens them, order strings are counted and let go.
class CGroupHost : public IGroupOrderHost {
 public:
  explicit CGroupHost(std::vector<std::wstring> calls);
  ~CGroupHost() override;

  /// Runs `body` as a thread of the host's runtime.
  void Run(const std::function<void()>& body) { m_runtime.Run(body); }
  const std::vector<std::wstring>& Symbols() const { return m_calls; }
  int64_t Strings() const { return m_strings; }

  World& GetWorld() override { return m_terminal.GetWorld(); }
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override;
  Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override;
  std::unique_ptr<CBaseData> FollowRecord(int32_t) override { return nullptr; }
  std::vector<std::wstring> QueryOptionList(const std::wstring&) override { return m_calls; }
  bool EnsureOptionTopic(const std::wstring&) override { return true; }
  bool IsQuoteValid(const std::wstring&) override { return true; }
  CBaseData* StrategyPosition() override { return m_position.get(); }
  CBaseData* ExtendOrderSetup() override { return m_setup.get(); }
  int32_t ReplaySpeed() override { return 0; }
  int32_t ArmRecheck(int32_t, int32_t) override { return 1; }
  int32_t PutOffRecheck(int32_t, int32_t) override { return 1; }

 private:
  void FillBus();

  const std::vector<std::wstring> m_calls;
  CVirtualRuntime m_runtime;
  Day m_day;
  CEmbeddedTerminal m_terminal;
  CProxy_INordoManagerEvents m_events;
  std::unique_ptr<CBaseData> m_position;
  std::unique_ptr<CBaseData> m_setup;
  int64_t m_strings = 0;
};

}  // namespace iorder

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/connected_accounts.h"
#include "engine/host_events_proxy.h"
#include "engine/pnl_settings.h"
#include "engine/strategy_registry.h"
#include "engine/timer.h"
#include "grouporder/group_order_host.h"
#include "grouporder/group_orders.h"
#include "platform/host_events.h"
#include "platform/symbol_database.h"
#include "platform/world.h"
#include "records/base_data.h"
#include "records/host_gateway.h"
#include "records/symbol_database_access.h"
#include "reference/option_lists.h"
#include "reference/quote_queue.h"
#include "reference/quote_subscriptions.h"
#include "reference/security_attributes.h"
#include "reference/trading_calendar.h"
#include "strategy/strategy_host.h"

namespace iorder {

/// The automatic order engine: one object that the host makes, drives through phases and gives messages. It
/// owns the threads, the timers, the standing records, the symbol database and the strategies, and wires them
/// together; what it wants of the host goes out as events to the connected sinks.
///
/// Phase 1 starts the four threads, phase 2 opens the records and the database and arms the minute clock,
/// phase 4 stops. Both operations of INordoManager always succeed and may come from any thread; the host
/// gives the phases in order. No error goes back to the host: bad input ends silently or with a log line. An
/// exception ends the message or tick that it rose in and is reported as a fault.
///
/// Locks: each part has its own. m_csStrategies comes before m_csRetiring and before every lock of a
/// strategy; no two others of the engine's are held together.
class CIntelligentOrder final : public CBaseDataEventReceiver,
                                public CDataBaseEventReceiver,
                                public INordoManager,
                                private IHostGateway,
                                private IGroupOrderHost,
                                private IStrategyHost {
 public:
  /// `world` must outlive the engine.
  explicit CIntelligentOrder(World& world);
  /// Cuts off what threads are left; nothing reaches the host from here on.
  ~CIntelligentOrder() override;

  /// Connects a sink for the events, and takes it away again (false for a cookie that was never given out). A
  /// sink lives until the engine is gone, or was taken away and has no event on its way.
  int32_t Advise(IHostEvents* sink) { return m_events.Advise(sink); }
  bool Unadvise(int32_t cookie) { return m_events.Unadvise(cookie); }

  /// Before phase 1; the watch outlives the engine. What the engine does is the same with and without.
  void SetWatch(IGroupOrderWatch* watch) { m_groupOrders.SetWatch(watch); }

  void SetPhase(int32_t category, int32_t phase) override;
  void OnTopicMessage(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override;

  /// Takes the updates of the engine's records; on the bus's threads, so it stays short.
  void OnUpdate(CBaseData* source, int32_t originator, const std::wstring& payload) override;

 private:
  /// An open standing record; none until phase 2, or when it didn't open.
  struct CStandingRecord {
    std::unique_ptr<CBaseData> owner;
    std::atomic<CBaseData*> record{nullptr};

    void Take(std::unique_ptr<CBaseData> opened);
    void Close();
    bool Is(const CBaseData* source) const { return source != nullptr && source == record.load(); }
  };

  // IHostGateway, IStrategyHost and IGroupOrderHost.
  World& GetWorld() override { return m_world; }
  void WriteLog(const std::wstring& text) override;
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override;
  Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override;
  void FireSubscribe(const std::wstring& topic) override { m_events.FireSubscribe(topic); }
  void FireUnsubscribe(const std::wstring& topic) override { m_events.FireUnsubscribe(topic); }
  void PostEngineMessage(uint32_t message, CStrategy* strategy, uintptr_t extra) override;
  void SubQuote(const std::wstring& symbol) override { m_quotes.SubQuote(symbol); }
  void UnsubQuote(const std::wstring& symbol) override { m_quotes.UnsubQuote(symbol); }
  std::wstring GetHotMonth(const std::wstring& symbol) override { return m_optionLists.GetHotMonth(symbol); }
  std::vector<std::wstring> QueryOptionList(const std::wstring& symbol) override {
    return m_optionLists.QueryOptionList(symbol);
  }
  std::wstring GetStringFromSecurity(const std::wstring& symbol, const std::wstring& attribute) override {
    return m_security.GetStringFromSecurity(symbol, attribute);
  }
  ScaledValue RoundToTick(const std::wstring& symbol, double price) override {
    return m_security.RoundToTick(symbol, price);
  }
  int32_t GetTradingDays(const std::wstring& symbol, int32_t endDate, int32_t startDate) override {
    return m_calendar.GetTradingDays(symbol, endDate, startDate);
  }
  bool IsAccountReady(const std::wstring& broker, const std::wstring& account) override {
    return m_accounts.IsReady(broker, account);
  }
  void EnqueueQuote(const CQuoteData& quote) override;
  std::unique_ptr<CBaseData> FollowRecord(int32_t handle) override {
    return CBaseData::OpenByHandle(m_world, handle, this);
  }
  bool EnsureOptionTopic(const std::wstring& name) override { return m_quotes.EnsureOptionTopic(name); }
  bool IsQuoteValid(const std::wstring& name) override { return m_quotes.IsQuoteValid(name); }
  CBaseData* StrategyPosition() override { return m_pStrategyPosition.record; }
  CBaseData* ExtendOrderSetup() override { return m_pExtendOrderSetup.record; }
  int32_t ReplaySpeed() override { return m_lSpeed; }
  int32_t ArmRecheck(int32_t timerId, int32_t delayMs) override { return ArmTimer(timerId, delayMs); }
  int32_t PutOffRecheck(int32_t timerId, int32_t delayMs) override {
    return m_timer.ChangeTimer(timerId, delayMs);
  }

  // Phases.
  void StartUp();
  void OpenUp();
  void ShutDown();

  // Threads.
  using ThreadMember = std::shared_ptr<IThread> CIntelligentOrder::*;
  std::shared_ptr<IThread> StartThread(const wchar_t* name, void (CIntelligentOrder::*body)())
      IORDER_REQUIRES(m_csThreads);
  /// Empties a member that holds a thread and gives what it held.
  std::shared_ptr<IThread> TakeThread(ThreadMember member);
  /// False if the thread didn't end within the limit for it.
  bool AwaitThread(IThread& thread);
  /// Waits for a thread, and ends it by force if it doesn't end in time.
  void EndThread(const std::shared_ptr<IThread>& thread);
  /// Posts to the thread that a member holds; what the message owns is freed if there is none.
  void Post(ThreadMember member, const ThreadMessage& message);
  /// Posts a copy of a text as the message's first parameter; the receiver owns it.
  void PostText(ThreadMember member, uint32_t number, const std::wstring& text, uintptr_t second);
  void OrderCommandThread();
  void OrderWatchThread();
  void ProcessMsgLoop();
  void ProcessCalPositionProfit();
  void HandleEngineMessage(const ThreadMessage& message);
  void DelStrategy(CStrategy& strategy);
  /// Runs one message or tick to its end, or to the edge where its exception is reported.
  void Guarded(const std::function<void()>& work);

  // Commands.
  void ParseOrderCommand(const std::wstring& text);
  void ParseStrategyCommand(rapidjson::Document& document);
  void SetPnLLimits(const rapidjson::Document& document);

  // Clock.
  void OnEngineTimer(int32_t id);
  void AlignToMinute();
  void MinuteTick();
  void StartStrategies();
  void ArmMinuteClock();
  void KillMinuteClock();
  int32_t ArmTimer(int32_t id, int64_t intervalMs);

  // Reports.
  /// Gives the report that a payload of "TRADE.ORDERSET" names to its strategy; on the message thread.
  void DispatchOrderSetUpdate(const std::wstring& payload);

  World& m_world;
  CProxy_INordoManagerEvents m_events;

  // Written in phases 1 and 2, read afterwards.
  std::wstring m_strWorkFolder;
  std::atomic<int32_t> m_bReplay{0};
  std::atomic<int32_t> m_lSpeed{0};
  /// Both live as long as the engine: phase 4 leaves nobody who waits for them.
  const std::unique_ptr<IEvent> m_hStopEvent;
  const std::unique_ptr<IEvent> m_hPnLEvent;

  CCriticalSection m_csThreads;
  std::shared_ptr<IThread> m_hCmdThread IORDER_GUARDED_BY(m_csThreads);
  std::shared_ptr<IThread> m_hMsgThread IORDER_GUARDED_BY(m_csThreads);
  std::shared_ptr<IThread> m_hWatchThread IORDER_GUARDED_BY(m_csThreads);
  std::shared_ptr<IThread> m_hPnLThread IORDER_GUARDED_BY(m_csThreads);
  /// Every thread that was ever started, for the end.
  std::vector<std::shared_ptr<IThread>> m_threads IORDER_GUARDED_BY(m_csThreads);

  CStandingRecord m_pExtendOrderSetup;
  CStandingRecord m_pStrategyPosition;
  CStandingRecord m_pOrderSet;
  CStandingRecord m_pSystemTime;
  CStandingRecord m_pAccounts;

  CSymbolDatabaseAccess m_database;
  COptionLists m_optionLists;
  CSecurityAttributes m_security;
  CTradingCalendar m_calendar;
  CStrategyRegistry m_strategies;
  CQuoteSubscriptions m_quotes;
  CQuoteQueue m_quoteQueue;
  CConnectedAccounts m_accounts;
  CPnLSettings m_limits;
  CGroupOrders m_groupOrders;
  CTimer m_timer;
};

}  // namespace iorder

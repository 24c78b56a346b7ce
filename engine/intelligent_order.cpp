#include "engine/intelligent_order.h"

#include <utility>

#include "engine/engine_message.h"

namespace iorder {

namespace {

constexpr const wchar_t* kCommandTopic = L"TRADE.IntelligentOrder";
constexpr const wchar_t* kHotMonthTopic = L"TRADE.HOT.MONTH";
constexpr const wchar_t* kChildTopic = L"TRADE.OTO.MANAGER";
constexpr int32_t kReplayLogin = 9;
/// The platform's "not enough memory", as an error code.
constexpr uint32_t kNoThreadFault = 0x80070008;

std::wstring FolderOf(const std::wstring& path) {
  return path.substr(0, path.rfind(L'\\') + 1);
}

}  // namespace

void CIntelligentOrder::CStandingRecord::Take(std::unique_ptr<CBaseData> opened) {
  owner = std::move(opened);
  record = owner.get();
}

void CIntelligentOrder::CStandingRecord::Close() {
  record = nullptr;
  owner.reset();
}

CIntelligentOrder::CIntelligentOrder(World& world)
    : m_world(world),
      m_events(world.runtime),
      m_hStopEvent(world.runtime.CreateEvent(EventReset::kManual, false)),
      m_hPnLEvent(world.runtime.CreateEvent(EventReset::kAuto, false)),
      m_csThreads(world.runtime, "m_csThreads"),
      m_database(world),
      m_optionLists(*this, m_database),
      m_security(*this),
      m_calendar(*this),
      m_strategies(world.runtime),
      m_quotes(*this, [this](const std::wstring& symbol) { return m_strategies.AnyHolds(symbol); }),
      m_quoteQueue(world.runtime),
      m_accounts(world.runtime),
      m_limits(world.runtime),
      m_groupOrders(*this),
      m_timer(world.runtime,
              [this](const std::wstring& text) { m_events.ReportFault(kNoThreadFault, text); }) {}

CIntelligentOrder::~CIntelligentOrder() {
  CutOffShield shield(m_world.runtime);
  m_events.DisconnectAll();
  std::vector<std::shared_ptr<IThread>> threads;
  {
    CLockGuard guard(m_csThreads);
    threads.swap(m_threads);
  }
  for (const auto& thread : threads) thread->Terminate();
  for (const auto& thread : threads) {
    m_world.runtime.Wait(*thread, std::nullopt);
    while (const auto message = thread->TakeMessage()) TakeText(*message);
  }
  m_timer.EndAll();
  m_strategies.DeleteAll();
  m_groupOrders.CloseChildren();
  m_pSystemTime.Close();
  m_pAccounts.Close();
  m_pExtendOrderSetup.Close();
  m_pStrategyPosition.Close();
  m_pOrderSet.Close();
  m_security.SetRecord(nullptr);
}

void CIntelligentOrder::SetPhase(int32_t category, int32_t phase) {
  if (category != 1) return;
  switch (phase) {
    case 1:
      StartUp();
      break;
    case 2:
      OpenUp();
      break;
    case 4:
      ShutDown();
      break;
    default:
      break;
  }
}

void CIntelligentOrder::StartUp() {
  m_strWorkFolder = FolderOf(m_world.hostExecutable);
  m_events.FireAdvertise(kCommandTopic, 1);
  m_events.FireSubscribe(kCommandTopic);
  m_events.FireSubscribe(kHotMonthTopic);  // "TRADE.OTO.MANAGER" comes unasked

  CLockGuard guard(m_csThreads);
  m_hCmdThread = StartThread(L"OrderCommandThread", &CIntelligentOrder::OrderCommandThread);
  m_hWatchThread = StartThread(L"OrderWatchThread", &CIntelligentOrder::OrderWatchThread);
  m_hMsgThread = StartThread(L"ProcessMsgLoop", &CIntelligentOrder::ProcessMsgLoop);
  m_hPnLThread = StartThread(L"ProcessCalPositionProfit", &CIntelligentOrder::ProcessCalPositionProfit);
}

void CIntelligentOrder::OpenUp() {
  if (const auto permissions = OpenRecord(L"PERMISSIONS.General", nullptr)) {
    m_bReplay = permissions->GetInt(L"LoginType", 0) == kReplayLogin ? 1 : 0;
  }
  m_database.Open(this, m_strWorkFolder, m_bReplay != 0);

  m_pExtendOrderSetup.Take(OpenRecord(L"TRADE.EXTENDORDER.SETUP", nullptr));
  m_pStrategyPosition.Take(OpenRecord(L"STRATEGY.POSITION", nullptr));
  m_pOrderSet.Take(OpenRecord(L"TRADE.ORDERSET", this));
  m_security.SetRecord(OpenRecord(L"Security.Info", this));
  m_pSystemTime.Take(OpenRecord(L"NordoSystemTime", this));
  m_pAccounts.Take(OpenRecord(L"ACCOUNTS", this));
  ArmMinuteClock();
}

/// The order of these steps is part of the contract with the host.
void CIntelligentOrder::ShutDown() {
  m_pSystemTime.Close();
  m_pAccounts.Close();
  if (const auto thread = TakeThread(&CIntelligentOrder::m_hCmdThread))
    thread->Post({.number = kQuitMessage});
  m_hStopEvent->Set();
  EndThread(TakeThread(&CIntelligentOrder::m_hWatchThread));
  EndThread(TakeThread(&CIntelligentOrder::m_hPnLThread));
  if (const auto thread = TakeThread(&CIntelligentOrder::m_hMsgThread)) {
    thread->Post({.number = kQuitMessage});
    AwaitThread(*thread);  // never forced: a busy one runs on, and keeps alive the strategy that it is in
  }
  m_strategies.DeleteAll();
  KillMinuteClock();
}

void CIntelligentOrder::OnTopicMessage(const std::wstring& topic, int32_t, int32_t second,
                                       const std::wstring& text, const Value& value) {
  if (topic == kCommandTopic) {
    PostText(&CIntelligentOrder::m_hCmdThread, engine_message::kCommand, text,
             static_cast<uintptr_t>(second));
  } else if (topic == kHotMonthTopic || topic == kChildTopic) {
    if (const int32_t* handle = std::get_if<int32_t>(&value)) {
      Guarded([this, handle] { m_groupOrders.RegisterChildOrder(*handle); });
    }
  }
}

void CIntelligentOrder::WriteLog(const std::wstring& text) {
  m_events.FireWriteLog(L"<CIntelligentOrder>" + text);
}

std::unique_ptr<CBaseData> CIntelligentOrder::OpenRecord(const std::wstring& name,
                                                         CBaseDataEventReceiver* receiver) {
  const int32_t handle = m_events.FireOpenRecord(name);
  return handle != 0 ? CBaseData::OpenByHandle(m_world, handle, receiver) : nullptr;
}

Value CIntelligentOrder::SendHostEvent(const std::wstring& topic, int32_t first, int32_t second,
                                       const std::wstring& text, const Value& value) {
  return m_events.FireCommand(topic, first, second, text, value);
}

}  // namespace iorder

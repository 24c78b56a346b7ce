#include <array>
#include <exception>
#include <new>
#include <utility>

#include "engine/engine_message.h"
#include "engine/intelligent_order.h"
#include "engine/profit_monitor.h"
#include "engine/profit_publisher.h"
#include "platform/platform_error.h"
#include "platform/text.h"

namespace iorder {

namespace {

constexpr Milliseconds kWatchPeriod{200};
constexpr Milliseconds kThreadEndLimit{3000};

}  // namespace

std::shared_ptr<IThread> CIntelligentOrder::StartThread(const wchar_t* name,
                                                        void (CIntelligentOrder::*body)()) {
  auto thread = m_world.runtime.CreateThread(name, [this, body] { (this->*body)(); });
  if (thread == nullptr) return nullptr;
  m_threads.push_back(thread);
  thread->Resume();
  return thread;
}

std::shared_ptr<IThread> CIntelligentOrder::TakeThread(ThreadMember member) {
  CLockGuard guard(m_csThreads);
  return std::exchange(this->*member, nullptr);
}

void CIntelligentOrder::EnqueueQuote(const CQuoteData& quote) {
  if (m_quoteQueue.Enqueue(quote)) m_hPnLEvent->Set();
}

bool CIntelligentOrder::AwaitThread(IThread& thread) {
  return m_world.runtime.Wait(thread, kThreadEndLimit);
}

void CIntelligentOrder::EndThread(const std::shared_ptr<IThread>& thread) {
  if (thread == nullptr || AwaitThread(*thread)) return;
  thread->Terminate();
  // Nothing that it may touch goes before it has really left.
  m_world.runtime.Wait(*thread, std::nullopt);
}

void CIntelligentOrder::Post(ThreadMember member, const ThreadMessage& message) {
  std::shared_ptr<IThread> thread;
  {
    CLockGuard guard(m_csThreads);
    thread = this->*member;
  }
  if (thread == nullptr || !thread->Post(message)) TakeText(message);
}

void CIntelligentOrder::PostText(ThreadMember member, uint32_t number, const std::wstring& text,
                                 uintptr_t second) {
  auto copy = std::make_unique<std::wstring>(text);
  Post(member, {.number = number, .first = reinterpret_cast<uintptr_t>(copy.release()), .second = second});
}

void CIntelligentOrder::PostEngineMessage(uint32_t message, CStrategy* strategy, uintptr_t extra) {
  const uintptr_t first = strategy != nullptr ? strategy->ObjectNumber() : 0;
  Post(&CIntelligentOrder::m_hMsgThread, {.number = message, .first = first, .second = extra});
}

void CIntelligentOrder::Guarded(const std::function<void()>& work) {
  try {
    work();
  } catch (const CPlatformError& error) {
    m_events.ReportFault(error.Code(), ToWide(error.what()));
  } catch (const std::bad_alloc& error) {
    m_events.ReportFault(error_code::kOutOfMemory, ToWide(error.what()));
  } catch (const std::exception& error) {
    m_events.ReportFault(error_code::kFailure, ToWide(error.what()));
  }
}

void CIntelligentOrder::OrderCommandThread() {
  for (;;) {
    const ThreadMessage message = m_world.runtime.GetMessage();
    if (message.number == kQuitMessage) return;
    if (message.number != engine_message::kCommand) continue;
    if (const auto text = TakeText(message)) Guarded([&] { ParseOrderCommand(*text); });
  }
}

void CIntelligentOrder::OrderWatchThread() {
  CProfitPublisher publisher(*this, m_strategies);
  while (!m_world.runtime.Wait(*m_hStopEvent, kWatchPeriod)) {
    Guarded([&] {
      m_groupOrders.PassPendingOrders();
      publisher.Run();
    });
  }
}

void CIntelligentOrder::ProcessMsgLoop() {
  WriteLog(L"ProcessMsgLoop");
  for (;;) {
    const ThreadMessage message = m_world.runtime.GetMessage();
    if (message.number == kQuitMessage) return;
    Guarded([&] { HandleEngineMessage(message); });
  }
}

void CIntelligentOrder::HandleEngineMessage(const ThreadMessage& message) {
  if (message.number == engine_message::kReport) {
    if (const auto payload = TakeText(message)) DispatchOrderSetUpdate(*payload);
    return;
  }
  if (message.number == kDelStrategyMessage) {
    if (const auto strategy = m_strategies.FindWithRetired(message.first)) DelStrategy(*strategy);
  } else if (message.number >= kFirstStrategyEvent) {
    if (const auto strategy = m_strategies.Find(message.first)) {
      strategy->OnStrategyEvent(message.number, message.second);
    }
  }
}

void CIntelligentOrder::DelStrategy(CStrategy& strategy) {
  WriteLog(L"DelStrategy. StrategyKey=" + strategy.Key() + L".");
  m_strategies.Retire(strategy);
}

void CIntelligentOrder::ProcessCalPositionProfit() {
  WriteLog(L"ProcessCalPositionProfit.");
  const std::array<IWaitable*, 2> events{m_hStopEvent.get(), m_hPnLEvent.get()};
  constexpr size_t kPnLIndex = 1;
  CProfitMonitor monitor(*this, m_strategies, m_limits, m_quoteQueue);
  while (m_world.runtime.Wait(events, std::nullopt) == kPnLIndex) {
    Guarded([&] { monitor.Run(); });
    if (!m_quoteQueue.IsEmpty()) m_hPnLEvent->Set();  // the next quote has the next pass
  }
  WriteLog(L"ProcessCalPositionProfit End.");
}

}  // namespace iorder

#pragma once

#include <atomic>

#include "platform/host_events.h"
#include "platform/world_runtime.h"
#include "terminal/bus_thread.h"
#include "terminal/event_feed.h"
#include "terminal/market_figures.h"
#include "terminal/order_service.h"
#include "terminal/record_bus.h"
#include "terminal/request_desk.h"

namespace iorder {

/// The host's side of the engine's events: it notes each, and does what the engine asks for. Any engine
/// thread may call; it is never cut off in here.
class CHostSink : public IHostEvents {
 public:
  /// `figures`: those from the market, or none.
  CHostSink(IWorldRuntime& runtime, CEventFeed& feed, CEmbeddedBus& bus, CBusThread& busThread,
            COrderService& orders, CRequestDesk& requests, CMarketFigures* figures,
            Milliseconds subscriptionDelay);

  std::optional<int32_t> Advertise(const std::wstring& topic, int32_t value) override;
  std::optional<int32_t> Subscribe(const std::wstring& topic) override;
  void Unsubscribe(const std::wstring& topic) override;
  std::optional<int32_t> OpenRecord(const std::wstring& name) override;
  Value Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                const Value& value) override;
  void WriteLog(const std::wstring& text) override;
  void ReportFault(uint32_t code, const std::wstring& text) override;

  /// Every call fails from now on: it is noted and nothing is done.
  void SetFailing(bool failing) { m_isFailing = failing; }

 private:
  IWorldRuntime& m_runtime;
  CEventFeed& m_feed;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  COrderService& m_orders;
  CRequestDesk& m_requests;
  CMarketFigures* const m_figures;
  const Milliseconds m_subscriptionDelay;
  std::atomic<bool> m_isFailing = false;
};

}  // namespace iorder

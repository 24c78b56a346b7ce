#include "terminal/host_sink.h"

namespace iorder {

CHostSink::CHostSink(IWorldRuntime& runtime, CEventFeed& feed, CEmbeddedBus& bus, CBusThread& busThread,
                     COrderService& orders, CRequestDesk& requests, CMarketFigures* figures,
                     Milliseconds subscriptionDelay)
    : m_runtime(runtime),
      m_feed(feed),
      m_bus(bus),
      m_busThread(busThread),
      m_orders(orders),
      m_requests(requests),
      m_figures(figures),
      m_subscriptionDelay(subscriptionDelay) {}

std::optional<int32_t> CHostSink::Advertise(const std::wstring& topic, int32_t value) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kAdvertise;
  event.topic = topic;
  event.first = value;
  m_feed.Tell(event);
  return m_isFailing ? std::nullopt : std::optional(0);
}

std::optional<int32_t> CHostSink::Subscribe(const std::wstring& topic) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kSubscribe;
  event.topic = topic;
  m_feed.Tell(event);
  if (m_isFailing) {
    return std::nullopt;
  }
  if (m_figures != nullptr) {
    m_figures->Subscribe(topic);
  }
  if (const std::optional<uint64_t> subscription = m_bus.Subscribe(topic)) {
    m_busThread.Post(m_runtime.Now() + m_subscriptionDelay,
                     [this, topic, number = *subscription] { m_bus.Show(topic, number); });
  }
  return 0;
}

void CHostSink::Unsubscribe(const std::wstring& topic) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kUnsubscribe;
  event.topic = topic;
  m_feed.Tell(event);
  if (m_isFailing) {
    return;
  }
  if (m_figures != nullptr) {
    m_figures->Unsubscribe(topic);
  }
  m_bus.Unsubscribe(topic);
}

std::optional<int32_t> CHostSink::OpenRecord(const std::wstring& name) {
  CutOffShield shield(m_runtime);
  std::optional<int32_t> handle = m_isFailing ? std::nullopt : std::optional(m_bus.Open(name));
  if (handle == 0 && m_figures != nullptr && m_figures->Make(name)) {
    handle = m_bus.Open(name);
  }
  TraceEvent event;
  event.kind = TraceKind::kOpenRecord;
  event.record = name;
  event.first = handle.value_or(0);
  m_feed.Tell(event);
  return handle;
}

Value CHostSink::Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                         const Value& value) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kCommand;
  event.topic = topic;
  event.first = first;
  event.second = second;
  event.text = text;
  event.value = &value;
  m_feed.Tell(event);
  if (m_isFailing) {
    return {};
  }
  if (topic == L"TRADE.NEWORDER") {
    m_orders.NewOrder(text);
  } else if (topic == L"TRADE.CANCELORDER") {
    m_orders.CancelOrder(text);
  } else if (topic == L"GLACETTE.REQUEST") {
    return m_requests.Answer(text, first, second, value);
  }
  return {};
}

void CHostSink::WriteLog(const std::wstring& text) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kLog;
  event.text = text;
  m_feed.Tell(event);
}

void CHostSink::ReportFault(uint32_t code, const std::wstring& text) {
  CutOffShield shield(m_runtime);
  TraceEvent event;
  event.kind = TraceKind::kFault;
  event.code = code;
  event.text = text;
  m_feed.Tell(event);
}

}  // namespace iorder

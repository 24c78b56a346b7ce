#include "terminal/event_feed.h"

namespace iorder {

void CEventFeed::Add(ITerminalListener& listener) {
  m_listeners.emplace_back(&listener, listener.WantsInputs());
  m_inputsWanted = m_inputsWanted || m_listeners.back().second;
}

void CEventFeed::Tell(TraceEvent event) {
  if (m_listeners.empty() || (IsInput(event.kind) && !m_inputsWanted)) {
    return;
  }
  event.thread = m_runtime.CurrentThreadName();
  CLockGuard guard(m_section);
  event.time = m_runtime.Now();
  event.local = m_runtime.ToLocal(event.time);
  for (const auto& [listener, wantsInputs] : m_listeners) {
    if (wantsInputs || !IsInput(event.kind)) {
      listener->OnEvent(event);
    }
  }
}

void CEventFeed::Aside(const std::function<void(const DateTime& local)>& tell) {
  CutOffShield shield(m_runtime);
  CLockGuard guard(m_section);
  tell(m_runtime.LocalTime());
}

void CEventFeed::OnFire(const std::wstring& record, int32_t originator, const std::wstring& payload,
                        bool replace) {
  TraceEvent event;
  event.kind = replace ? TraceKind::kReplace : TraceKind::kUpdate;
  event.record = record;
  event.first = originator;
  event.text = payload;
  Tell(event);
}

}  // namespace iorder

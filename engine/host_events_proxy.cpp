#include "engine/host_events_proxy.h"

namespace iorder {

int32_t CProxy_INordoManagerEvents::Advise(IHostEvents* sink) {
  CLockGuard guard(m_cs);
  m_sinks.push_back(sink);
  return static_cast<int32_t>(m_sinks.size());
}

bool CProxy_INordoManagerEvents::Unadvise(int32_t cookie) {
  CLockGuard guard(m_cs);
  if (cookie < 1 || cookie > std::ssize(m_sinks)) return false;
  m_sinks[static_cast<size_t>(cookie) - 1] = nullptr;
  return true;
}

void CProxy_INordoManagerEvents::DisconnectAll() {
  CLockGuard guard(m_cs);
  m_sinks.clear();
}

template <typename Call>
void CProxy_INordoManagerEvents::ForEachSink(Call call) {
  size_t slots = 0;
  {
    CLockGuard guard(m_cs);
    slots = m_sinks.size();
  }
  for (size_t i = 0; i < slots; ++i) {
    IHostEvents* sink = nullptr;
    {
      CLockGuard guard(m_cs);
      if (i < m_sinks.size()) sink = m_sinks[i];
    }
    if (sink != nullptr) call(*sink);
  }
}

int32_t CProxy_INordoManagerEvents::FireAdvertise(const std::wstring& topic, int32_t value) {
  int32_t reply = 0;
  ForEachSink([&](IHostEvents& sink) { reply = sink.Advertise(topic, value).value_or(0); });
  return reply;
}

int32_t CProxy_INordoManagerEvents::FireSubscribe(const std::wstring& topic) {
  int32_t reply = 0;
  ForEachSink([&](IHostEvents& sink) { reply = sink.Subscribe(topic).value_or(0); });
  return reply;
}

void CProxy_INordoManagerEvents::FireUnsubscribe(const std::wstring& topic) {
  ForEachSink([&](IHostEvents& sink) { sink.Unsubscribe(topic); });
}

int32_t CProxy_INordoManagerEvents::FireOpenRecord(const std::wstring& name) {
  int32_t reply = 0;
  ForEachSink([&](IHostEvents& sink) { reply = sink.OpenRecord(name).value_or(0); });
  return reply;
}

Value CProxy_INordoManagerEvents::FireCommand(const std::wstring& topic, int32_t first, int32_t second,
                                              const std::wstring& text, const Value& value) {
  Value reply;
  ForEachSink([&](IHostEvents& sink) { reply = sink.Command(topic, first, second, text, value); });
  return reply;
}

void CProxy_INordoManagerEvents::FireWriteLog(const std::wstring& text) {
  ForEachSink([&](IHostEvents& sink) { sink.WriteLog(text); });
}

void CProxy_INordoManagerEvents::ReportFault(uint32_t code, const std::wstring& text) {
  ForEachSink([&](IHostEvents& sink) { sink.ReportFault(code, text); });
}

}  // namespace iorder

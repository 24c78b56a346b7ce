#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/host_events.h"

namespace iorder {

/// The engine's outgoing events: keeps the sinks that the host has connected and calls each of them, in the
/// order in which they were connected. The reply of the last sink counts; without a sink nothing happens and
/// the replies are 0 or none.
///
/// All threads fire. The lock covers only the fetching of a sink; the host is called outside it, so events of
/// several threads can be in the host at once.
class CProxy_INordoManagerEvents {
 public:
  explicit CProxy_INordoManagerEvents(IRuntime& runtime) : m_cs(runtime, "event sinks") {}

  /// Connects a sink; the cookie is above 0. The sink must live until no event can be on its way to it any
  /// more.
  int32_t Advise(IHostEvents* sink);
  /// Clears the slot of a cookie. False for one that was never given out.
  bool Unadvise(int32_t cookie);
  /// From here on nothing reaches the host.
  void DisconnectAll();

  int32_t FireAdvertise(const std::wstring& topic, int32_t value);
  int32_t FireSubscribe(const std::wstring& topic);
  void FireUnsubscribe(const std::wstring& topic);
  /// 0 if the call failed or there is no such record.
  int32_t FireOpenRecord(const std::wstring& name);
  Value FireCommand(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                    const Value& value);
  void FireWriteLog(const std::wstring& text);
  void ReportFault(uint32_t code, const std::wstring& text);

 private:
  template <typename Call>
  void ForEachSink(Call call);

  CCriticalSection m_cs;
  std::vector<IHostEvents*> m_sinks IORDER_GUARDED_BY(m_cs);
};

}  // namespace iorder

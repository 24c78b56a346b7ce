#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"
#include "terminal/record_bus.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// Hands every event to the listeners, one at a time, with its time and thread. Any thread may tell; the lock
/// is held while the listeners hear, so that all hear the same order. Whether anybody listens, and to what,
/// changes nothing in a run in virtual time.
class CEventFeed : public IBusObserver {
 public:
  explicit CEventFeed(IWorldRuntime& runtime)
      : m_runtime(runtime), m_section(runtime.CreateWatcherLock("trace")) {}

  /// Before the day begins; the listener outlives the terminal.
  void Add(ITerminalListener& listener);

  /// Fills in time and thread, and passes the event on.
  void Tell(TraceEvent event);

  /// Runs `tell` between two events, as a listener hears them, with the local time: for who hears of the
  /// engine on another way. It must not call back, and it must not raise.
  void Aside(const std::function<void(const DateTime& local)>& tell);

  void OnFire(const std::wstring& record, int32_t originator, const std::wstring& payload,
              bool replace) override;

 private:
  IWorldRuntime& m_runtime;
  CCriticalSection m_section;
  std::vector<std::pair<ITerminalListener*, bool>> m_listeners;  ///< and whether each wants inputs
  bool m_inputsWanted = false;
};

}  // namespace iorder

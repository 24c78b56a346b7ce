#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/host_events.h"
#include "platform/world.h"
#include "platform/world_runtime.h"
#include "terminal/day.h"
#include "terminal/day_player.h"
#include "terminal/terminal_listener.h"
#include "terminal/terminal_parts.h"

namespace iorder {

/// A terminal in memory that plays one day to an engine. Who runs it makes runtime and terminal, adds
/// listeners, makes the engine on GetWorld, connects Events to it, and calls Play inside IWorldRuntime::Run.
/// The engine goes before the terminal, the terminal before the runtime.
///
///     CEmbeddedTerminal terminal(runtime, day);
///     terminal.AddListener(trace);
///     runtime.Run([&] { terminal.Play(engine); });
class CEmbeddedTerminal {
 public:
  /// `day` outlives the terminal.
  CEmbeddedTerminal(IWorldRuntime& runtime, const Day& day);

  World& GetWorld() { return m_world; }
  /// The sink for the engine's events.
  IHostEvents& Events() { return m_parts.sink; }
  /// Before Play; the listener outlives the terminal.
  void AddListener(ITerminalListener& listener) { m_parts.feed.Add(listener); }

  /// As CEventFeed::Aside; from any thread of the runtime.
  void Aside(const std::function<void(const DateTime& local)>& tell) { m_parts.feed.Aside(tell); }

  /// Plays the day to its end, on the thread "host". Raises nothing: what is wrong with the day and showed
  /// only as it was played is in Error afterwards.
  void Play(INordoManager& manager);
  /// One line "FILE:LINE: what", if the day couldn't be played to its end.
  const std::optional<std::string>& Error() const { return m_error; }

  std::vector<SentOrderPtr> Orders() { return m_parts.orders.Orders(); }
  std::vector<SentCancel> Cancels() { return m_parts.orders.Cancels(); }
  /// From any thread, while the day is played.
  size_t LinesPlayed() const { return m_player.LinesPlayed(); }
  size_t RowsPlayed() const { return m_player.RowsPlayed(); }

 private:
  TerminalParts m_parts;
  World m_world;
  CDayPlayer m_player;
  std::optional<std::string> m_error;
};

}  // namespace iorder

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/group_order_watcher.h"
#include "platform/world_runtime.h"
#include "terminal/day.h"
#include "terminal/embedded_terminal.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// On which clock a day runs.
struct RunOptions {
  bool native = false;           ///< real threads and a real clock, in place of the virtual ones
  double speed = 1;              ///< of the real clock: so many seconds of the day pass in one
  std::optional<uint64_t> seed;  ///< of the virtual runtime, in place of the day's own
};

/// One day, played to a new engine in a terminal and a runtime of its own. Several runs may go on at the same
/// time, each on the thread that made it; they may share the day.
class CDayRun {
 public:
  /// The listeners hear what happens. Day and listeners outlive the run.
  CDayRun(const Day& day, const RunOptions& options, const std::vector<ITerminalListener*>& listeners);

  /// Before Run: the listener, which is one of the listeners, hears of group orders too. It outlives the run.
  void WatchGroupOrders(CHappeningListener& listener);

  /// Plays the day to its end. Gives what went wrong with the run itself (a deadlock, a cycle in the order of
  /// locks), one text each; empty is good. A mistake in the day that shows only as it is played is an
  /// InputError.
  std::vector<std::string> Run();

  /// Rows of the tick files so far; from any thread.
  size_t RowsPlayed() const { return m_terminal.RowsPlayed(); }

 private:
  std::unique_ptr<IWorldRuntime> m_runtime;
  CEmbeddedTerminal m_terminal;
  std::optional<CGroupOrderWatcher> m_groupOrders;
};

}  // namespace iorder

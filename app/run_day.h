#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "terminal/day.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// On which clock a day runs.
struct RunOptions {
  bool native = false;           ///< real threads and a real clock, in place of the virtual ones
  double speed = 1;              ///< of the real clock: so many seconds of the day pass in one
  std::optional<uint64_t> seed;  ///< of the virtual runtime, in place of the day's own
};

/// Plays a day to a new engine in a terminal and a runtime of its own. The listeners hear what happens. Gives
/// what went wrong with the run itself (a deadlock, a cycle in the order of locks), one text each; empty is
/// good. A mistake in the day that shows only as it is played is an InputError.
///
/// Several runs may go on at the same time, on threads of their own; they may share the day.
std::vector<std::string> RunDay(const Day& day, const RunOptions& options,
                                const std::vector<ITerminalListener*>& listeners);

}  // namespace iorder

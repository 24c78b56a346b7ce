#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime.h"

namespace iorder {

/// At one and the same moment, what the engine has waited for comes first, then the lines of a day, then the
/// rows of a tick file (a seeded runtime draws instead).
enum class Precedence { kEngine = 0, kDayLine = 1, kTick = 2 };

/// A runtime as the world around the engine drives it: it also says when the world itself acts, and it can be
/// made to misbehave.
class IWorldRuntime : public IRuntime {
 public:
  /// Runs `main` as the thread "host" and returns when it has returned. Threads that are left by then are cut
  /// off. What went wrong below (a deadlock, a cycle in the order of locks) is in the result, one text each;
  /// empty is good.
  virtual std::vector<std::string> Run(const std::function<void()>& main) = 0;

  virtual DateTime ToUtc(TimePoint time) = 0;

  /// A lock for what only watches. In virtual time entering it gives no other thread a turn, so that a run is
  /// the same whoever watches it; who holds it must not block.
  virtual std::unique_ptr<ILock> CreateWatcherLock(const char* name) = 0;

  /// Sleeps until `time`; a time that has passed returns at once. In virtual time a call that nothing else
  /// comes before costs no switch of threads.
  virtual void SleepUntil(TimePoint time, Precedence precedence) = 0;
  /// Waits for `event` until `time`, or without a limit. True if the event came.
  virtual bool WaitUntil(IEvent& event, std::optional<TimePoint> time, Precedence precedence) = 0;

  /// The next `times` calls of CreateThread give none. 0 takes it back.
  virtual void FailThreads(int times) = 0;
  /// The next firing of the waitable timer whose name ends in `nameEnd` comes `late` after its time.
  virtual void DelayTimer(std::wstring_view nameEnd, Milliseconds late) = 0;
  /// The threads of this name don't wake from any wait until `time` has passed from now.
  virtual void HoldThread(std::wstring_view name, Milliseconds time) = 0;
};

}  // namespace iorder

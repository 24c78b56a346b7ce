#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "platform/critical_section.h"
#include "platform/world_runtime.h"

namespace iorder {

/// The thread "bus": it does what the bus does by itself, above all the firing of events, one job after the
/// other.
///
/// Run may be called from one thread at a time, Post from any.
class CBusThread {
 public:
  explicit CBusThread(IWorldRuntime& runtime);

  /// Creates the thread and lets it begin.
  void Start();
  /// Waits for the job that is under way; no other begins any more. The thread itself ends with the runtime's
  /// run.
  void Stop();
  /// Does `job` on the thread, behind what is due there, and returns when it has ended. What it raises is
  /// raised again.
  void Run(std::function<void()> job);
  /// Does `job` on the thread at `due`, behind the jobs of that time.
  void Post(TimePoint due, std::function<void()> job);

 private:
  struct DueJob {
    TimePoint due;
    std::function<void()> job;
  };

  void Loop();
  std::optional<TimePoint> NextDue();
  std::optional<DueJob> TakeDue();
  std::function<void()> TakeHandedOver();

  IWorldRuntime& m_runtime;
  std::unique_ptr<IEvent> m_wake;
  std::unique_ptr<IEvent> m_done;
  std::shared_ptr<IThread> m_thread;
  CCriticalSection m_section;
  std::deque<DueJob> m_due IORDER_GUARDED_BY(m_section);
  std::function<void()> m_handedOver IORDER_GUARDED_BY(m_section);
  bool m_isOver IORDER_GUARDED_BY(m_section) = false;
  std::exception_ptr m_raised;  ///< written before m_done is set, read after it
};

}  // namespace iorder

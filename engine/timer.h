#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/critical_section.h"
#include "platform/runtime.h"

namespace iorder {

/// Numbered periodic timers, each with a thread of its own, so that a slow callback holds up no other timer.
/// The interval is the first delay and the period; whoever wants one shot kills the timer in its callback.
/// While a callback runs, further firings of its timer collapse into one.
///
/// Any thread may call, the timer's own callback too. The lock covers the tables, and the re-arming in
/// ChangeTimer; callbacks run outside it.
class CTimer {
 public:
  using Callback = std::function<void(int32_t id)>;

  /// `onThreadFailure` is shown the text when no thread can be had for a timer.
  CTimer(IRuntime& runtime, std::function<void(const std::wstring& text)> onThreadFailure);
  /// Ends all, if that wasn't done before.
  ~CTimer();
  CTimer(const CTimer&) = delete;
  CTimer& operator=(const CTimer&) = delete;

  /// Ends the threads that are left by force and returns when they are gone; from then on no timer is set.
  void EndAll();

  /// 0 if the id runs already: it is left as it is. Else 1, also when no thread could be had. 0 after
  /// EndAll.
  int32_t SetTimer(int32_t id, int32_t intervalMs, Callback callback);
  /// Counts the whole new interval from now. 0 if the id doesn't run or can't be cancelled.
  int32_t ChangeTimer(int32_t id, int32_t intervalMs);
  /// Returns without waiting. A running callback comes to its end; the id is free at once.
  void KillTimer(int32_t id);

 private:
  struct Entry {
    int32_t lId = 0;
    int32_t lIntervalMs = 0;
    Callback pfnCallback;
    std::unique_ptr<IEvent> hStop;
    std::unique_ptr<IWaitableTimer> hTimer;
    std::shared_ptr<IThread> hThread;
  };
  using EntryPtr = std::shared_ptr<Entry>;

  std::wstring KeyOf(int32_t id) const;
  std::shared_ptr<IThread> CreateThread(const EntryPtr& entry);
  /// Takes a thread out of the tables, none if there is none left.
  std::shared_ptr<IThread> TakeThread();
  void RunTimer(const EntryPtr& entry);
  void Forget(const EntryPtr& entry);

  IRuntime& m_runtime;
  const uint32_t m_objectNumber;
  std::function<void(const std::wstring& text)> m_onThreadFailure;
  CCriticalSection m_cs;
  bool m_isEnded IORDER_GUARDED_BY(m_cs) = false;
  std::map<std::wstring, EntryPtr> m_mapActive IORDER_GUARDED_BY(m_cs);
  /// Told to stop, but still there. A key may have several of them.
  std::multimap<std::wstring, EntryPtr> m_mapEnding IORDER_GUARDED_BY(m_cs);
};

}  // namespace iorder

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/date_time.h"

namespace iorder {

/// Raised inside a thread that was ended by force, at its next platform call that can block; it unwinds the
/// thread's stack and ends in the runtime. What runs during the unwinding is shielded (see CutOffShield). It
/// is no std::exception, so that a handler for errors doesn't hold it up. Whoever writes `catch (...)` must
/// let it pass.
struct ThreadCutOff {};

/// One message of a thread's queue: a number and two words whose meaning belongs to the number.
struct ThreadMessage {
  uint32_t number = 0;
  uintptr_t first = 0;
  uintptr_t second = 0;
};

/// The number of the message that asks a thread with a message loop to end.
inline constexpr uint32_t kQuitMessage = 18;

/// 128 random bits that name something uniquely.
struct Guid {
  uint8_t bytes[16] = {};
};

/// Why the platform refused something: its error code, and its words for it if it has any.
struct PlatformError {
  int32_t code = 0;
  std::wstring description;
};

/// Something that a thread can wait for with IRuntime::Wait.
class IWaitable {
 public:
  virtual ~IWaitable() = default;
};

/// How an event returns to unsignalled: by Reset, or by releasing one waiting thread.
enum class EventReset { kManual, kAuto };

/// An event object. All operations may come from any thread and never fail.
class IEvent : public IWaitable {
 public:
  virtual void Set() = 0;
  virtual void Reset() = 0;
};

/// A timer that signals itself. It resets when it releases a waiting thread, so that firings nobody waited
/// for collapse into one. All operations may come from any thread.
class IWaitableTimer : public IWaitable {
 public:
  /// Counts from now: signals after `first`, then every `period` (0: once). Takes back an earlier arming and
  /// its signal.
  virtual bool Arm(Milliseconds first, Milliseconds period) = 0;
  /// Stops the timer; its signal stays as it is. False if the platform refuses.
  virtual bool Cancel() = 0;
};

/// A thread. It can be waited for: it is signalled once its body has returned or was cut off.
/// Dropping the handle doesn't touch the thread.
class IThread : public IWaitable {
 public:
  virtual const std::wstring& Name() const = 0;
  /// Lets a new thread begin. A second call does nothing.
  virtual void Resume() = 0;
  /// Appends a message to the thread's queue; from any thread. False once the thread has ended.
  virtual bool Post(const ThreadMessage& message) = 0;
  /// Takes the oldest message without waiting, from any thread: what a message owns can so be freed when its
  /// thread has ended.
  virtual std::optional<ThreadMessage> TakeMessage() = 0;
  /// Ends the thread by force: it is unwound with ThreadCutOff at its next platform call that can block
  /// (Wait, GetMessage, Sleep, a lock's Enter), or at the one that it is blocked in. Returns at once; wait
  /// for the thread before anything that it may touch is freed. A thread that hasn't begun never begins.
  virtual void Terminate() = 0;
};

/// A re-entrant lock; use it through CCriticalSection.
class ILock {
 public:
  virtual ~ILock() = default;
  virtual void Enter() = 0;
  virtual void Leave() noexcept = 0;
};

/// What the engine asks of the machine: threads, events, timers, locks, clocks, ids. There is no other way to
/// any of them. `native` answers with real threads and the machine's clock, `virtual` with fibers and a clock
/// of its own.
///
/// All operations may come from any thread of the runtime. Everything that a runtime gives out must be gone
/// before the runtime goes.
class IRuntime {
 public:
  virtual ~IRuntime() = default;

  /// A new thread that waits for Resume, or none if the platform can't give one. `body` runs on it once. The
  /// name shows in traces and reports. An exception that leaves `body` (other than ThreadCutOff) ends the
  /// process.
  virtual std::shared_ptr<IThread> CreateThread(std::wstring name, std::function<void()> body) = 0;
  /// Why the last CreateThread gave none. 8 is the platform's code for "not enough memory".
  virtual PlatformError LastError() { return {.code = 8, .description = {}}; }
  virtual std::unique_ptr<IEvent> CreateEvent(EventReset reset, bool signalled) = 0;
  /// `name` is unique among living timers.
  virtual std::unique_ptr<IWaitableTimer> CreateWaitableTimer(std::wstring name) = 0;
  /// `name` says what the lock guards; locks of the same role share a name, and the order of locks is kept by
  /// name.
  virtual std::unique_ptr<ILock> CreateLock(const char* name) = 0;

  /// Waits until one of `what` is signalled and returns its index, the lowest if there are several; that one
  /// is reset if it resets itself. None when `limit` has passed first (a limit of 0 only looks); without a
  /// limit it waits for ever.
  virtual std::optional<size_t> Wait(std::span<IWaitable* const> what, std::optional<Milliseconds> limit) = 0;
  /// The same for one.
  bool Wait(IWaitable& what, std::optional<Milliseconds> limit) {
    IWaitable* const one[] = {&what};
    return Wait(one, limit).has_value();
  }
  /// The oldest message of the calling thread's queue; waits for one.
  virtual ThreadMessage GetMessage() = 0;
  virtual void Sleep(Milliseconds time) = 0;

  /// The name of the calling thread.
  virtual const std::wstring& CurrentThreadName() = 0;

  virtual DateTime LocalTime() = 0;
  virtual DateTime UtcTime() = 0;
  virtual TimePoint Now() = 0;
  /// The moment at which the local clock shows `local` (its dayOfWeek isn't read): the earlier one if it does
  /// so twice, the moment of the change if it never does. A day behind the end of its month counts on.
  virtual TimePoint FromLocal(const DateTime& local) = 0;
  virtual DateTime ToLocal(TimePoint time) = 0;

  virtual Guid NewGuid() = 0;
  /// A small number for an object whose address would otherwise show in texts: 1, 2, 3 and so on, never given
  /// twice.
  virtual uint32_t NewObjectNumber() = 0;

  /// A 64-bit value that stands for an object when it travels to the host, until ReleaseReference. Its low 32
  /// bits alone may be sent too.
  virtual int64_t MakeReference(void* object) = 0;
  /// The object, or none for a value that stands for nothing.
  virtual void* ResolveReference(int64_t reference) = 0;
  virtual void ReleaseReference(int64_t reference) = 0;

  /// While a shield is up on the calling thread, ThreadCutOff isn't raised there: waits return as timed out
  /// instead. Use CutOffShield.
  virtual void RaiseShield() noexcept = 0;
  virtual void LowerShield() noexcept = 0;
};

/// Keeps ThreadCutOff out of a piece of code that must run to its end, a destructor above all.
class CutOffShield {
 public:
  explicit CutOffShield(IRuntime& runtime) : m_runtime(runtime) { m_runtime.RaiseShield(); }
  ~CutOffShield() { m_runtime.LowerShield(); }
  CutOffShield(const CutOffShield&) = delete;
  CutOffShield& operator=(const CutOffShield&) = delete;

 private:
  IRuntime& m_runtime;
};

}  // namespace iorder

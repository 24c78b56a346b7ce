#pragma once

#include <cstddef>
#include <vector>

namespace iorder {

/// A stack of 256 KiB for a fiber (1 MiB under a sanitizer, whose frames are larger), with a page below it
/// that may not be touched. Empty if the system had no memory for it.
class CFiberStack {
 public:
  CFiberStack() = default;
  static CFiberStack Allocate() noexcept;
  ~CFiberStack();
  CFiberStack(CFiberStack&& other) noexcept;
  CFiberStack& operator=(CFiberStack&& other) noexcept;

  explicit operator bool() const noexcept { return m_mapping != nullptr; }
  void* Bottom() const noexcept;
  void* Top() const noexcept;

 private:
  void* m_mapping = nullptr;
};

/// Keeps the stacks of ended fibers for the next ones: a fresh one costs a hundred times more.
class CFiberStackPool {
 public:
  CFiberStack Take();
  void Give(CFiberStack stack);

 private:
  std::vector<CFiberStack> m_free;
};

/// One flow of control among several on one OS thread. What differs between platforms in switching is all in
/// here: a Windows build puts the platform's own fibers behind the same class.
///
/// A fiber stays on the OS thread that it first ran on. The exceptions that are being handled belong to the
/// fiber, so that a switch inside a handler is fine.
class CFiber {
 public:
  using Entry = void (*)(void* argument);

  /// Stands for the flow of control that the OS thread has anyway.
  CFiber() noexcept = default;
  /// Begins with `entry` when it is first switched to; `entry` doesn't return but ends in LeaveTo.
  CFiber(CFiberStack stack, Entry entry, void* argument) noexcept;
  ~CFiber();
  CFiber(const CFiber&) = delete;
  CFiber& operator=(const CFiber&) = delete;

  /// Goes on with `next`; returns when another fiber switches to this one, which must be the running one.
  void SwitchTo(CFiber& next) noexcept;
  /// The same for the last time.
  [[noreturn]] void LeaveTo(CFiber& next) noexcept;
  /// The stack of a fiber that isn't running and will never be again.
  CFiberStack TakeStack() noexcept;

 private:
  struct Passage;
  struct Trampoline;

  /// What the C++ runtime knows of exceptions in flight; it keeps this per OS thread.
  struct ExceptionState {
    void* caught = nullptr;
    unsigned int uncaught = 0;
  };

  void Jump(CFiber& next, bool isLast) noexcept;
  void Arrive(const Passage& passage, void* fromContext, void* fakeStack) noexcept;

  CFiberStack m_stack;
  Entry m_entry = nullptr;
  void* m_argument = nullptr;
  void* m_context = nullptr;
  ExceptionState m_exceptions;
  // For the sanitizers, who must be told of each switch.
  const void* m_stackBottom = nullptr;
  size_t m_stackSize = 0;
  void* m_tsanFiber = nullptr;
};

}  // namespace iorder

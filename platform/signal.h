#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/runtime.h"

namespace iorder {

class CSignal;
class CWaiter;

/// One waiter's place in one signal's list.
struct WaitNode {
  CWaiter* waiter = nullptr;
  CSignal* signal = nullptr;  ///< none once the signal has gone
  size_t index = 0;           ///< of the signal among those that the waiter waits for
  WaitNode* previous = nullptr;
  WaitNode* next = nullptr;
};

/// What every waitable object is inside, in both runtimes: a state, and those who wait for it in order of
/// arrival. Nothing here locks or switches: the virtual runtime needs no lock, the native one holds its own.
class CSignal {
 public:
  enum class Kind : uint8_t { kEvent, kTimer, kThread, kMessage };

  /// `name` may be none; it outlives the signal.
  CSignal(Kind kind, const std::wstring* name, EventReset reset, bool isRaised) noexcept
      : m_name(name), m_kind(kind), m_reset(reset), m_isRaised(isRaised) {}
  CSignal(const CSignal&) = delete;
  CSignal& operator=(const CSignal&) = delete;

  /// Releases who waits: all of them, or the first one if the signal resets itself.
  void Raise();
  void Clear() noexcept { m_isRaised = false; }
  /// True if the signal is raised, which a signal that resets itself then no longer is.
  bool TryTake();
  bool IsRaised() const noexcept { return m_isRaised; }

  Kind GetKind() const noexcept { return m_kind; }
  /// What a report calls it.
  std::string Describe() const;

 protected:
  /// Who still waits is left waiting for the rest, or for ever.
  virtual ~CSignal() { DropWaiters(); }
  void DropWaiters() noexcept;

  /// A signal that resets itself was taken.
  virtual void OnTaken() {}

  const WaitNode* FirstNode() const noexcept { return m_first; }  // who waits, in order of arrival

 private:
  friend class CWaiter;

  void Link(WaitNode& node) noexcept;
  void Unlink(WaitNode& node) noexcept;

  const std::wstring* m_name;
  WaitNode* m_first = nullptr;
  WaitNode* m_last = nullptr;
  Kind m_kind;
  EventReset m_reset;
  bool m_isRaised;
};

/// A thread as a signal sees it.
class CWaiter {
 public:
  CWaiter() = default;
  CWaiter(const CWaiter&) = delete;
  CWaiter& operator=(const CWaiter&) = delete;

  /// Enters the lists of `what`; the first one that is raised releases the waiter from all of them.
  void BeginWait(std::span<CSignal* const> what);
  /// Leaves the lists, if it is still in them.
  void EndWait() noexcept;
  /// The index of the signal that released the waiter, if one did.
  std::optional<size_t> Released() const noexcept { return m_released; }
  std::span<const WaitNode> Nodes() const noexcept { return m_nodes; }

 protected:
  ~CWaiter() = default;
  virtual void OnReleased() = 0;

 private:
  friend class CSignal;

  std::vector<WaitNode> m_nodes;  // empty outside a wait, but keeps its memory
  std::optional<size_t> m_released;
};

}  // namespace iorder

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "platform/date_time.h"
#include "platform/world_runtime.h"

namespace iorder {

/// Something that happens at a moment of virtual time: the end of a sleep or of a wait's limit, the firing of
/// a timer.
class CDueItem {
 public:
  CDueItem() = default;
  CDueItem(const CDueItem&) = delete;
  CDueItem& operator=(const CDueItem&) = delete;

  virtual void OnDue() = 0;

 protected:
  ~CDueItem() = default;

 private:
  friend class CDueQueue;
  static constexpr size_t kNowhere = std::numeric_limits<size_t>::max();
  size_t m_position = kNowhere;
};

/// What is due, in the order (time, precedence, order of arming): a heap whose items know where they are, so
/// that one can be taken out again.
class CDueQueue {
 public:
  bool IsEmpty() const noexcept { return m_heap.empty(); }
  TimePoint FirstTime() const noexcept { return m_heap.front().time; }
  Precedence FirstPrecedence() const noexcept { return m_heap.front().precedence; }
  CDueItem& First() const noexcept { return *m_heap.front().item; }

  /// `item` isn't in the queue.
  void Add(CDueItem& item, TimePoint time, Precedence precedence);
  /// Does nothing if `item` isn't in the queue.
  void Remove(CDueItem& item) noexcept;

 private:
  struct Entry {
    TimePoint time;
    uint64_t number;
    Precedence precedence;
    CDueItem* item;
  };

  static bool IsBefore(const Entry& left, const Entry& right) noexcept;
  void Put(size_t position, const Entry& entry) noexcept;
  void MoveUp(size_t position, const Entry& entry) noexcept;
  void MoveDown(size_t position, const Entry& entry) noexcept;

  std::vector<Entry> m_heap;
  uint64_t m_lastNumber = 0;
};

}  // namespace iorder

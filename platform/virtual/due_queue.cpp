#include "platform/virtual/due_queue.h"

#include <cassert>

namespace iorder {

bool CDueQueue::IsBefore(const Entry& left, const Entry& right) noexcept {
  if (left.time != right.time) return left.time < right.time;
  if (left.precedence != right.precedence) return left.precedence < right.precedence;
  return left.number < right.number;
}

void CDueQueue::Add(CDueItem& item, TimePoint time, Precedence precedence) {
  assert(item.m_position == CDueItem::kNowhere);
  const Entry entry{time, ++m_lastNumber, precedence, &item};
  m_heap.push_back(entry);
  MoveUp(m_heap.size() - 1, entry);
}

void CDueQueue::Remove(CDueItem& item) noexcept {
  const size_t position = item.m_position;
  if (position == CDueItem::kNowhere) return;
  item.m_position = CDueItem::kNowhere;
  const Entry last = m_heap.back();
  m_heap.pop_back();
  if (position == m_heap.size()) return;
  // The last entry takes the free place and goes where it belongs from there.
  if (position != 0 && IsBefore(last, m_heap[(position - 1) / 2])) {
    MoveUp(position, last);
  } else {
    MoveDown(position, last);
  }
}

void CDueQueue::Put(size_t position, const Entry& entry) noexcept {
  m_heap[position] = entry;
  entry.item->m_position = position;
}

void CDueQueue::MoveUp(size_t position, const Entry& entry) noexcept {
  while (position != 0) {
    const size_t parent = (position - 1) / 2;
    if (!IsBefore(entry, m_heap[parent])) break;
    Put(position, m_heap[parent]);
    position = parent;
  }
  Put(position, entry);
}

void CDueQueue::MoveDown(size_t position, const Entry& entry) noexcept {
  for (;;) {
    size_t child = position * 2 + 1;
    if (child >= m_heap.size()) break;
    if (child + 1 < m_heap.size() && IsBefore(m_heap[child + 1], m_heap[child])) ++child;
    if (!IsBefore(m_heap[child], entry)) break;
    Put(position, m_heap[child]);
    position = child;
  }
  Put(position, entry);
}

}  // namespace iorder

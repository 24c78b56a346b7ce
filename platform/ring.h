#pragma once

#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

namespace iorder {

/// A queue that keeps its memory: once it has grown to its longest, it allocates nothing more.
template <class T>
class CRing {
 public:
  bool IsEmpty() const noexcept { return m_size == 0; }
  size_t Size() const noexcept { return m_size; }

  void PushBack(T item) {
    if (m_size == m_items.size()) Grow();
    At(m_size++) = std::move(item);
  }

  T PopFront() {
    assert(m_size != 0);
    T item = std::move(m_items[m_head]);
    m_head = (m_head + 1) & (m_items.size() - 1);
    --m_size;
    return item;
  }

  /// Takes the item at `index` from the front; the front item goes to its place.
  T PopAt(size_t index) {
    assert(index < m_size);
    std::swap(At(index), At(0));
    return PopFront();
  }

 private:
  T& At(size_t index) { return m_items[(m_head + index) & (m_items.size() - 1)]; }

  void Grow() {
    std::vector<T> items(m_items.empty() ? 8 : m_items.size() * 2);
    for (size_t i = 0; i < m_size; ++i) items[i] = std::move(At(i));
    m_items = std::move(items);
    m_head = 0;
  }

  std::vector<T> m_items;  // as many as a power of two
  size_t m_head = 0;
  size_t m_size = 0;
};

}  // namespace iorder

#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <span>
#include <typeinfo>
#include <vector>

#include "platform/runtime.h"
#include "platform/signal.h"

namespace iorder {

/// The insides of the objects that a thread wants to wait for, all of them of one runtime, whose classes are
/// named. A few cost no allocation.
template <class Event, class Timer, class Thread>
class SignalArray {
 public:
  explicit SignalArray(std::span<IWaitable* const> what) : m_size(what.size()) {
    if (m_size > m_few.size()) m_many.resize(m_size);
    CSignal** const signals = m_many.empty() ? m_few.data() : m_many.data();
    for (size_t i = 0; i < m_size; ++i) signals[i] = SignalOf(*what[i]);
  }

  std::span<CSignal* const> All() const noexcept {
    return {m_many.empty() ? m_few.data() : m_many.data(), m_size};
  }

  static CSignal* SignalOf(IWaitable& waitable) {
    // The classes are final, so that a comparison does what a dynamic cast would do at ten times the cost.
    const std::type_info& type = typeid(waitable);
    if (type == typeid(Event)) return static_cast<Event*>(&waitable);
    if (type == typeid(Timer)) return static_cast<Timer*>(&waitable);
    assert(type == typeid(Thread));
    return static_cast<Thread*>(&waitable);
  }

 private:
  size_t m_size;
  std::array<CSignal*, 8> m_few;
  std::vector<CSignal*> m_many;
};

}  // namespace iorder

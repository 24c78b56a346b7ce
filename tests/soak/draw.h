#pragma once

#include <initializer_list>
#include <iterator>

#include "platform/random.h"

namespace iorder::testing {

/// Draws for a made day.
class CDraw {
 public:
  explicit CDraw(uint64_t seed) : m_random(seed) {}

  /// `least` to `most`; the span fits 32 bits.
  int64_t Between(int64_t least, int64_t most) {
    return least + m_random.Below(static_cast<uint32_t>(most - least + 1));
  }
  bool Chance(int percent) { return Between(1, 100) <= percent; }
  uint64_t Seed() { return m_random.Next(); }

  template <typename Choice>
  Choice Pick(std::initializer_list<Choice> choices) {
    return *std::next(choices.begin(), Between(0, static_cast<int64_t>(choices.size()) - 1));
  }

 private:
  CRandom m_random;
};

}  // namespace iorder::testing

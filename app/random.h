#pragma once

#include <cstdint>

namespace iorder {

/// Random numbers that are the same for the same seed on every machine (SplitMix64).
class CRandom {
 public:
  explicit CRandom(uint64_t seed) : m_state(seed) {}

  uint64_t Next() {
    m_state += 0x9E3779B97F4A7C15u;
    uint64_t bits = m_state;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return bits ^ (bits >> 31);
  }
  /// 0 to `bound` - 1, for a bound from 1 to far below 2^64.
  int64_t Below(int64_t bound) { return static_cast<int64_t>(Next() % static_cast<uint64_t>(bound)); }
  /// `lowest` to `highest`, both included.
  int64_t Between(int64_t lowest, int64_t highest) { return lowest + Below(highest - lowest + 1); }

 private:
  uint64_t m_state;
};

}  // namespace iorder

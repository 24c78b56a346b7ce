#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/runtime.h"

namespace iorder {

/// A stream of random numbers that depends on nothing but its seed: xoshiro256**, its state filled by
/// splitmix64. The distributions of the standard library differ between libraries, so none is used.
class CRandom {
 public:
  explicit CRandom(uint64_t seed) noexcept {
    for (uint64_t& word : m_state) {
      seed += 0x9E3779B97F4A7C15u;
      uint64_t mixed = (seed ^ (seed >> 30)) * 0xBF58476D1CE4E5B9u;
      mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
      word = mixed ^ (mixed >> 31);
    }
  }

  uint64_t Next() noexcept {
    const uint64_t result = RotateLeft(m_state[1] * 5, 7) * 9;
    const uint64_t shifted = m_state[1] << 17;
    m_state[2] ^= m_state[0];
    m_state[3] ^= m_state[1];
    m_state[1] ^= m_state[2];
    m_state[0] ^= m_state[3];
    m_state[2] ^= shifted;
    m_state[3] = RotateLeft(m_state[3], 45);
    return result;
  }

  /// A number from 0 to `bound` - 1; `bound` isn't 0.
  uint32_t Below(uint32_t bound) noexcept { return static_cast<uint32_t>(((Next() >> 32) * bound) >> 32); }

 private:
  static constexpr uint64_t RotateLeft(uint64_t word, int bits) noexcept {
    return (word << bits) | (word >> (64 - bits));
  }

  uint64_t m_state[4];
};

/// 128 random bits, the same for a seed on machines of either byte order.
inline Guid DrawGuid(CRandom& random) noexcept {
  Guid guid;
  for (size_t i = 0; i < sizeof guid.bytes; i += 8) {
    const uint64_t word = random.Next();
    for (size_t k = 0; k < 8; ++k) guid.bytes[i + k] = static_cast<uint8_t>(word >> (8 * k));
  }
  return guid;
}

}  // namespace iorder

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/fatal.h"

/// What the fuzzer calls with each input. It must not keep anything from one input to the next that could
/// change what it does.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace iorder::fuzzing {

inline std::string_view TextOf(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// What must hold for every input. If it doesn't, the process ends, and the fuzzer keeps the input.
inline void Require(bool holds, const std::string& rule) {
  if (!holds) EndProcess("the input breaks a rule: " + rule);
}

}  // namespace iorder::fuzzing

#include "tests/platform/runtime_fixture.h"

#include "platform/native/native_runtime.h"
#include "platform/virtual/virtual_runtime.h"

namespace iorder::test {
namespace {

/// A second of the tests passes in 10 ms.
constexpr double kSpeed = 100;

RuntimeKind Virtual(std::string name, uint64_t seed) {
  return {std::move(name), [seed] {
            return std::make_unique<CVirtualRuntime>(VirtualRuntimeOptions{"Asia/Taipei", kStart, seed});
          }};
}

RuntimeKind Native() {
  return {"Native", [] {
            return std::make_unique<CNativeRuntime>(NativeRuntimeOptions{"Asia/Taipei", kStart, kSpeed});
          }};
}

}  // namespace

std::vector<RuntimeKind> AllKinds() {
  return {Virtual("Virtual", 0), Virtual("VirtualSeed1", 1), Virtual("VirtualSeed2", 2), Native()};
}

}  // namespace iorder::test

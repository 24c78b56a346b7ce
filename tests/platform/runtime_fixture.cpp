#include "tests/platform/runtime_fixture.h"

#include "platform/virtual/virtual_runtime.h"

namespace iorder::test {
namespace {

RuntimeKind Virtual(std::string name, uint64_t seed) {
  return {std::move(name), [seed] {
            return std::make_unique<CVirtualRuntime>(VirtualRuntimeOptions{"Asia/Taipei", kStart, seed});
          }};
}

}  // namespace

std::vector<RuntimeKind> AllKinds() {
  return {Virtual("Virtual", 0), Virtual("VirtualSeed1", 1), Virtual("VirtualSeed2", 2)};
}

}  // namespace iorder::test

#include "tests/support/virtual_world.h"

#include <vector>

namespace iorder::test {

namespace {

constexpr DateTime kBegin{2024, 3, 1, 4, 8, 40, 0, 0};

}  // namespace

CVirtualWorld::CVirtualWorld(uint64_t seed)
    : runtime({.zone = "Asia/Taipei", .start = kBegin, .seed = seed}),
      embeddedBus(runtime, false),
      bus(embeddedBus),
      world{runtime, bus, database, settings, L"C:\\Terminal\\Host.exe"},
      m_begin(runtime.Now()) {}

void CVirtualWorld::Run(const std::function<void()>& main) {
  EXPECT_EQ(runtime.Run(main), std::vector<std::string>());
}

std::shared_ptr<IThread> CVirtualWorld::Start(std::wstring name, std::function<void()> body) {
  auto thread = runtime.CreateThread(std::move(name), std::move(body));
  thread->Resume();
  return thread;
}

int32_t CVirtualWorld::Record(const RecordChange& change) {
  embeddedBus.Apply(change);
  return embeddedBus.Open(change.name);
}

}  // namespace iorder::test

#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/world_runtime.h"

namespace iorder::test {

/// One way to have a runtime: the behaviour tests run on each of them.
struct RuntimeKind {
  std::string name;
  std::function<std::unique_ptr<IWorldRuntime>()> make;
};

inline void PrintTo(const RuntimeKind& kind, std::ostream* out) {
  *out << kind.name;
}

/// Thursday 2021-07-22 08:30 in Taipei.
inline constexpr DateTime kStart{2021, 7, 4, 22, 8, 30, 0, 0};

std::vector<RuntimeKind> AllKinds();

/// What must hold on every runtime. On real threads a moment never comes exactly, so the tests say only what
/// comes before what, and their limits are wide where something must come and short where nothing must.
class RuntimeTest : public testing::TestWithParam<RuntimeKind> {
 protected:
  /// Runs `main` on the host's thread; a run without errors is expected.
  void Run(const std::function<void()>& main) { EXPECT_EQ(m_runtime->Run(main), std::vector<std::string>()); }

  /// A thread that runs already.
  std::shared_ptr<IThread> Start(std::wstring name, std::function<void()> body) {
    auto thread = m_runtime->CreateThread(std::move(name), std::move(body));
    thread->Resume();
    return thread;
  }

  std::unique_ptr<IEvent> AutoEvent() { return m_runtime->CreateEvent(EventReset::kAuto, false); }
  std::unique_ptr<IEvent> ManualEvent() { return m_runtime->CreateEvent(EventReset::kManual, false); }

  /// True if `what` is signalled within a time that is more than enough.
  bool Comes(IWaitable& what) { return m_runtime->Wait(what, Milliseconds(600000)); }
  /// Long enough for another thread to come to rest.
  void Settle() { m_runtime->Sleep(Milliseconds(2000)); }

  std::unique_ptr<IWorldRuntime> m_runtime = GetParam().make();
};

}  // namespace iorder::test

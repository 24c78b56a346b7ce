#include <atomic>

#include "tests/platform/runtime_fixture.h"

namespace iorder::test {
namespace {

class TerminateTest : public RuntimeTest {
 protected:
  /// Notes that the stack it lies on was unwound.
  class Unwound {
   public:
    explicit Unwound(std::atomic<bool>& flag) : m_flag(flag) {}
    ~Unwound() { m_flag = true; }
    Unwound(const Unwound&) = delete;
    Unwound& operator=(const Unwound&) = delete;

   private:
    std::atomic<bool>& m_flag;
  };

  /// A thread that blocks in `wait` is cut off there, and its stack unwound.
  void ExpectCutOffIn(const std::function<void()>& wait) {
    std::atomic<bool> isUnwound = false;
    std::atomic<bool> hasGoneOn = false;
    auto thread = Start(L"victim", [&] {
      const Unwound unwound(isUnwound);
      wait();
      hasGoneOn = true;
    });
    Settle();
    EXPECT_FALSE(isUnwound);
    thread->Terminate();
    thread->Terminate();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_TRUE(isUnwound);
    EXPECT_FALSE(hasGoneOn);
    EXPECT_FALSE(thread->Post({1, 0, 0}));
  }
};

INSTANTIATE_TEST_SUITE_P(Kinds, TerminateTest, testing::ValuesIn(AllKinds()),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(TerminateTest, CutsOffAThreadThatWaits) {
  Run([&] {
    auto event = AutoEvent();
    ExpectCutOffIn([&] { m_runtime->Wait(*event, std::nullopt); });
    // It has left the line: the signal is still there.
    event->Set();
    EXPECT_TRUE(m_runtime->Wait(*event, Milliseconds(0)));
  });
}

TEST_P(TerminateTest, CutsOffAThreadThatSleeps) {
  Run([&] { ExpectCutOffIn([&] { m_runtime->Sleep(std::chrono::hours(10000)); }); });
}

TEST_P(TerminateTest, CutsOffAThreadThatWaitsForAMessage) {
  Run([&] { ExpectCutOffIn([&] { m_runtime->GetMessage(); }); });
}

TEST_P(TerminateTest, CutsOffAThreadThatWaitsForALock) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    lock->Enter();
    ExpectCutOffIn([&] { lock->Enter(); });
    lock->Leave();
    auto next = Start(L"next", [&] {
      lock->Enter();
      lock->Leave();
    });
    EXPECT_TRUE(Comes(*next));
  });
}

TEST_P(TerminateTest, CutsOffABusyThreadAtItsNextCall) {
  Run([&] {
    auto begun = ManualEvent();
    auto go = ManualEvent();
    std::atomic<bool> hasGoneOn = false;
    auto thread = Start(L"victim", [&] {
      {
        const CutOffShield shield(*m_runtime);
        begun->Set();
        m_runtime->Wait(*go, std::nullopt);
      }
      m_runtime->Sleep(Milliseconds(1));
      hasGoneOn = true;
    });
    EXPECT_TRUE(Comes(*begun));
    thread->Terminate();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_FALSE(hasGoneOn);
  });
}

TEST_P(TerminateTest, AThreadThatCutsItselfOffEndsAtItsNextCall) {
  Run([&] {
    std::atomic<int> steps = 0;
    std::shared_ptr<IThread> thread;
    thread = m_runtime->CreateThread(L"victim", [&] {
      thread->Terminate();
      ++steps;
      m_runtime->Sleep(Milliseconds(0));
      ++steps;
    });
    thread->Resume();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(steps, 1);
  });
}

TEST_P(TerminateTest, AThreadThatHasNotBegunNeverBegins) {
  Run([&] {
    std::atomic<int> runs = 0;
    auto held = std::make_shared<int>(0);
    auto thread = m_runtime->CreateThread(L"victim", [&runs, held] { ++runs; });
    thread->Post({3, 0, 0});
    thread->Terminate();
    EXPECT_TRUE(Comes(*thread));
    thread->Resume();
    Settle();
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(thread->Post({4, 0, 0}));
    EXPECT_EQ(thread->TakeMessage().value_or(ThreadMessage{}).number, 3u);
  });
}

TEST_P(TerminateTest, UnderAShieldWaitsEndAsTimedOut) {
  Run([&] {
    auto event = AutoEvent();
    auto ready = AutoEvent();
    std::atomic<int> timedOut = 0;
    std::atomic<bool> isSignalSeen = false;
    std::atomic<bool> hasGoneOn = false;
    auto thread = Start(L"victim", [&] {
      {
        const CutOffShield shield(*m_runtime);
        if (!m_runtime->Wait(*event, std::nullopt)) ++timedOut;
        if (!m_runtime->Wait(*event, std::nullopt)) ++timedOut;
        isSignalSeen = m_runtime->Wait(*ready, std::nullopt);
        m_runtime->Sleep(std::chrono::hours(10000));
        EXPECT_EQ(m_runtime->GetMessage().number, kQuitMessage);
      }
      m_runtime->Wait(*event, Milliseconds(0));
      hasGoneOn = true;
    });
    Settle();
    ready->Set();
    thread->Terminate();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(timedOut, 2);
    EXPECT_TRUE(isSignalSeen);
    EXPECT_FALSE(hasGoneOn);
  });
}

TEST_P(TerminateTest, UnderAShieldALockIsStillTaken) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    std::atomic<bool> hasEntered = false;
    lock->Enter();
    auto thread = Start(L"victim", [&] {
      const CutOffShield shield(*m_runtime);
      lock->Enter();
      hasEntered = true;
      lock->Leave();
    });
    Settle();
    thread->Terminate();
    Settle();
    EXPECT_FALSE(hasEntered);
    lock->Leave();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_TRUE(hasEntered);
  });
}

TEST_P(TerminateTest, DestructorsOfTheUnwoundStackMayUseThePlatform) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    auto never = AutoEvent();
    std::atomic<bool> hasRun = false;
    struct Cleaner {
      const std::function<void()>& clean;
      ~Cleaner() { clean(); }
    };
    const std::function<void()> clean = [&] {
      lock->Enter();
      EXPECT_FALSE(m_runtime->Wait(*never, std::nullopt));
      lock->Leave();
      hasRun = true;
    };
    auto thread = Start(L"victim", [&] {
      const Cleaner cleaner{clean};
      m_runtime->GetMessage();
    });
    Settle();
    thread->Terminate();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_TRUE(hasRun);
  });
}

TEST_P(TerminateTest, ACutOffThreadLeavesTheLocksItHolds) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    struct Guard {
      ILock& lock;
      explicit Guard(ILock& one) : lock(one) { lock.Enter(); }
      ~Guard() { lock.Leave(); }
    };
    auto thread = Start(L"victim", [&] {
      const Guard outer(*lock);
      const Guard inner(*lock);
      m_runtime->Sleep(std::chrono::hours(10000));
    });
    Settle();
    auto next = Start(L"next", [&] { const Guard guard(*lock); });
    Settle();
    thread->Terminate();
    EXPECT_TRUE(Comes(*next));
  });
}

TEST_P(TerminateTest, AHeldThreadCanBeCutOff) {
  Run([&] {
    m_runtime->HoldThread(L"victim", std::chrono::hours(10000));
    ExpectCutOffIn([&] { m_runtime->Sleep(Milliseconds(1)); });
  });
}

TEST_P(TerminateTest, TheEndOfRunCutsOffWhoeverIsLeft) {
  std::atomic<int> unwound = 0;
  struct Counter {
    std::atomic<int>& count;
    ~Counter() { ++count; }
  };
  std::shared_ptr<IThread> sleeper;
  auto lock = m_runtime->CreateLock("lock");
  Run([&] {
    auto event = AutoEvent();
    sleeper = Start(L"sleeper", [&] {
      const Counter counter{unwound};
      m_runtime->Sleep(std::chrono::hours(10000));
    });
    Start(L"reader", [&] {
      const Counter counter{unwound};
      m_runtime->GetMessage();
    });
    Start(L"holder", [&] {
      const Counter counter{unwound};
      lock->Enter();
      try {
        m_runtime->Sleep(std::chrono::hours(10000));
      } catch (const ThreadCutOff&) {
        lock->Leave();
        throw;
      }
    });
    Settle();
    Start(L"locker", [&] {
      const Counter counter{unwound};
      lock->Enter();
      lock->Leave();
      m_runtime->GetMessage();
    });
    m_runtime->CreateThread(L"never begun", [&] { ++unwound; });
    Settle();
  });
  EXPECT_EQ(unwound, 4);
  EXPECT_FALSE(sleeper->Post({1, 0, 0}));
}

}  // namespace
}  // namespace iorder::test

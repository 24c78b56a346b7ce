#include "platform/native/native_runtime.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace iorder::test {
namespace {

constexpr DateTime kStart{2021, 7, 4, 22, 8, 30, 0, 0};

TEST(NativeRuntime, AClockOfItsOwnStandsStillUntilRunAndThenRunsAtItsSpeed) {
  CNativeRuntime runtime({"Asia/Taipei", kStart, 600});
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(runtime.LocalTime(), kStart);
  const auto realBegin = std::chrono::steady_clock::now();
  runtime.Run([&] {
    runtime.Sleep(std::chrono::minutes(1));
    const auto real = std::chrono::steady_clock::now() - realBegin;
    EXPECT_GE(real, std::chrono::milliseconds(99));
    EXPECT_LT(real, std::chrono::seconds(30));
    EXPECT_EQ(runtime.LocalTime().minute,
              31 + (runtime.Now() - runtime.FromLocal(kStart)) / std::chrono::minutes(1) - 1);
  });
}

TEST(NativeRuntime, WithoutAStartTheClockIsTheMachines) {
  CNativeRuntime runtime({"Asia/Taipei", std::nullopt, 1});
  const auto difference = std::chrono::system_clock::now() - runtime.Now();
  EXPECT_LT(std::chrono::abs(difference), std::chrono::seconds(10));
}

TEST(NativeRuntime, ManyThreadsMeetInEverythingAtOnce) {
  CNativeRuntime runtime({"Asia/Taipei", kStart, 100});
  constexpr int kThreads = 8;
  constexpr int kRounds = 300;
  std::atomic<int> received = 0;
  int counted = 0;
  const auto errors = runtime.Run([&] {
    auto lock = runtime.CreateLock("lock");
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    auto timer = runtime.CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(10), Milliseconds(10));
    auto reader = runtime.CreateThread(L"reader", [&] {
      while (runtime.GetMessage().number != kQuitMessage) ++received;
    });
    reader->Resume();
    std::vector<std::shared_ptr<IThread>> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.push_back(runtime.CreateThread(L"worker", [&] {
        IWaitable* const both[] = {event.get(), timer.get()};
        for (int k = 0; k < kRounds; ++k) {
          reader->Post({1, 0, 0});
          event->Set();
          runtime.Wait(both, Milliseconds(100));
          lock->Enter();
          ++counted;
          lock->Leave();
        }
      }));
      threads.back()->Resume();
    }
    for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
    reader->Post({kQuitMessage, 0, 0});
    runtime.Wait(*reader, std::nullopt);
  });
  EXPECT_TRUE(errors.empty());
  EXPECT_EQ(counted, kThreads * kRounds);
  EXPECT_EQ(received, kThreads * kRounds);
}

TEST(NativeRuntime, ThreadsCutOffAtAnyPointLeaveAllInOrder) {
  CNativeRuntime runtime({"Asia/Taipei", kStart, 100});
  const auto errors = runtime.Run([&] {
    struct Guard {
      ILock& lock;
      explicit Guard(ILock& one) : lock(one) { lock.Enter(); }
      ~Guard() { lock.Leave(); }
    };
    auto lock = runtime.CreateLock("lock");
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    for (int i = 0; i < 100; ++i) {
      std::vector<std::shared_ptr<IThread>> threads;
      for (int k = 0; k < 3; ++k) {
        threads.push_back(runtime.CreateThread(L"victim", [&] {
          for (;;) {
            const Guard guard(*lock);
            event->Set();
            runtime.Wait(*event, Milliseconds(1));
          }
        }));
        threads.back()->Resume();
      }
      if (i % 2 == 0) std::this_thread::yield();
      for (const auto& thread : threads) thread->Terminate();
      for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
      const Guard guard(*lock);
    }
  });
  EXPECT_TRUE(errors.empty());
}

}  // namespace
}  // namespace iorder::test

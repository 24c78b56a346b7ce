#include "platform/virtual/virtual_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace iorder::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DateTime kStart{2021, 7, 4, 22, 8, 30, 0, 0};

CVirtualRuntime MakeRuntime(uint64_t seed = 0) {
  return CVirtualRuntime({"Asia/Taipei", kStart, seed});
}

std::shared_ptr<IThread> Start(IRuntime& runtime, std::wstring name, std::function<void()> body) {
  auto thread = runtime.CreateThread(std::move(name), std::move(body));
  thread->Resume();
  return thread;
}

/// What several threads did that meet in locks, events, queues and equal moments, one character a step.
std::string SequenceOf(uint64_t seed) {
  CVirtualRuntime runtime = MakeRuntime(seed);
  std::string steps;
  const auto errors = runtime.Run([&] {
    auto lock = runtime.CreateLock("lock");
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    auto reader = Start(runtime, L"reader", [&] {
      for (ThreadMessage message; (message = runtime.GetMessage()).number != kQuitMessage;) {
        steps += static_cast<char>(message.first);
      }
    });
    std::vector<std::shared_ptr<IThread>> threads;
    for (char name = 'a'; name < 'f'; ++name) {
      threads.push_back(Start(runtime, L"worker", [&, name] {
        for (int i = 0; i < 5; ++i) {
          lock->Enter();
          steps += name;
          lock->Leave();
          reader->Post({1, static_cast<uintptr_t>(name - 'a' + 'A'), 0});
          runtime.Sleep(Milliseconds(100));
          event->Set();
          if (runtime.Wait(*event, Milliseconds(50))) steps += '!';
        }
      }));
    }
    for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
    reader->Post({kQuitMessage, 0, 0});
    runtime.Wait(*reader, std::nullopt);
  });
  EXPECT_THAT(errors, IsEmpty());
  return steps;
}

TEST(VirtualRuntime, TheSameSeedGivesTheSameSequence) {
  for (const uint64_t seed : {0u, 1u, 99u}) {
    const std::string steps = SequenceOf(seed);
    EXPECT_GE(steps.size(), 50u);
    EXPECT_EQ(SequenceOf(seed), steps);
  }
}

TEST(VirtualRuntime, ASeedMeansTheSameOnEveryCompiler) {
  // Any change of these texts changes what a seed means.
  EXPECT_EQ(SequenceOf(0), "abcdeABCDE!aA!bB!cC!dD!eE!aA!bB!cC!dD!eE!aA!bB!cC!dD!eE!aA!bB!cC!dD!eE!!!!!");
  EXPECT_EQ(SequenceOf(1), "dbaDBAeEcC!d!aDA!b!cBC!eE!aA!cC!b!e!dBED!d!a!cDAC!b!eBE!cC!e!a!dEADbB!!!!!");
}

TEST(VirtualRuntime, SeedsTryOtherSequences) {
  std::set<std::string> sequences;
  for (uint64_t seed = 0; seed < 10; ++seed) sequences.insert(SequenceOf(seed));
  EXPECT_GE(sequences.size(), 8u);
}

TEST(VirtualRuntime, WithoutASeedThreadsRunFirstComeFirstServed) {
  CVirtualRuntime runtime = MakeRuntime();
  std::string steps;
  EXPECT_THAT(runtime.Run([&] {
    std::vector<std::shared_ptr<IThread>> threads;
    for (const char name : {'a', 'b', 'c'}) {
      threads.push_back(Start(runtime, L"worker", [&, name] {
        steps += name;
        runtime.Sleep(Milliseconds(0));
        steps += name;
      }));
    }
    for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
  }),
              IsEmpty());
  EXPECT_EQ(steps, "abcabc");
}

TEST(VirtualRuntime, TheClockJumpsToWhatIsDueAndNoFurther) {
  CVirtualRuntime runtime = MakeRuntime();
  const TimePoint begin = runtime.Now();
  EXPECT_EQ(runtime.LocalTime(), kStart);
  EXPECT_THAT(runtime.Run([&] {
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    EXPECT_FALSE(runtime.Wait(*event, Milliseconds(200)));
    EXPECT_EQ(runtime.Now() - begin, Milliseconds(200));
    auto setter = Start(runtime, L"setter", [&] {
      runtime.Sleep(Milliseconds(50));
      event->Set();
    });
    EXPECT_TRUE(runtime.Wait(*event, Milliseconds(200)));
    EXPECT_EQ(runtime.Now() - begin, Milliseconds(250));
    auto timer = runtime.CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(1000), Milliseconds(3000));
    for (const int moment : {1000, 4000, 7000}) {
      EXPECT_TRUE(runtime.Wait(*timer, std::nullopt));
      EXPECT_EQ(runtime.Now() - begin, Milliseconds(250 + moment));
    }
    runtime.Sleep(std::chrono::hours(24));
    EXPECT_TRUE(runtime.Wait(*timer, Milliseconds(0)));
    EXPECT_TRUE(runtime.Wait(*timer, std::nullopt));
    // The next whole period after a day: 86,407,250 isn't one, 86,408,250 is.
    EXPECT_EQ(runtime.Now() - begin, Milliseconds(250 + 1000 + 3000 * 28803));
  }),
              IsEmpty());
  EXPECT_EQ(ToDate8(runtime.LocalTime()), 20210723);
}

TEST(VirtualRuntime, AtOneMomentTheEngineComesFirstThenTheDayThenTheTicks) {
  CVirtualRuntime runtime = MakeRuntime();
  const TimePoint moment = runtime.Now() + Milliseconds(1000);
  std::string steps;
  EXPECT_THAT(runtime.Run([&] {
    std::vector<std::shared_ptr<IThread>> threads;
    const auto at = [&](Precedence precedence, char step) {
      threads.push_back(Start(runtime, L"world", [&, precedence, step] {
        runtime.SleepUntil(moment, precedence);
        steps += step;
      }));
    };
    at(Precedence::kTick, 't');
    at(Precedence::kDayLine, 'd');
    at(Precedence::kTick, 'u');
    threads.push_back(Start(runtime, L"engine", [&] {
      runtime.Sleep(Milliseconds(1000));
      steps += 'e';
      // What one thing sets off comes to rest before the next thing of the moment.
      runtime.Sleep(Milliseconds(0));
      steps += 'f';
    }));
    at(Precedence::kDayLine, 'c');
    for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
  }),
              IsEmpty());
  EXPECT_EQ(steps, "efdctu");
}

TEST(VirtualRuntime, ALineOfThisMomentWaitsUntilTheEngineHasComeToRest) {
  CVirtualRuntime runtime = MakeRuntime();
  std::string steps;
  EXPECT_THAT(runtime.Run([&] {
    auto engine = Start(runtime, L"engine", [&] {
      for (int i = 0; i < 3; ++i) steps += static_cast<char>(runtime.GetMessage().number);
    });
    for (const char line : {'1', '2', '3'}) {
      runtime.SleepUntil(runtime.Now(), Precedence::kDayLine);
      steps += 'L';
      engine->Post({static_cast<uint32_t>(line), 0, 0});
    }
    runtime.Wait(*engine, std::nullopt);
  }),
              IsEmpty());
  EXPECT_EQ(steps, "L1L2L3");
}

TEST(VirtualRuntime, ABlockedLockIsHandedOnInTheOrderOfAsking) {
  CVirtualRuntime runtime = MakeRuntime();
  std::string steps;
  EXPECT_THAT(runtime.Run([&] {
    auto lock = runtime.CreateLock("lock");
    lock->Enter();
    std::vector<std::shared_ptr<IThread>> threads;
    for (const char name : {'a', 'b', 'c'}) {
      threads.push_back(Start(runtime, L"worker", [&, name] {
        lock->Enter();
        steps += name;
        runtime.Sleep(Milliseconds(10));
        lock->Leave();
      }));
    }
    runtime.Sleep(Milliseconds(10));
    lock->Leave();
    lock->Enter();  // nobody overtakes
    steps += 'h';
    lock->Leave();
  }),
              IsEmpty());
  EXPECT_EQ(steps, "abch");
}

TEST(VirtualRuntime, ADeadlockIsToldWithEachThreadsWaitAndLocks) {
  CVirtualRuntime runtime = MakeRuntime();
  bool isUnwound = false;
  bool isOtherGoneFirst = false;
  const auto errors = runtime.Run([&] {
    auto a = runtime.CreateLock("a");
    auto b = runtime.CreateLock("b");
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    auto timer = runtime.CreateWaitableTimer(L"clock");
    struct Unwound {
      bool& flag;
      ~Unwound() { flag = true; }
    };
    auto reader = Start(runtime, L"reader", [&] {
      const Unwound unwound{isOtherGoneFirst};
      runtime.GetMessage();
    });
    auto holder = Start(runtime, L"holder", [&] {
      a->Enter();
      b->Enter();
      IWaitable* const both[] = {event.get(), timer.get()};
      try {
        runtime.Wait(both, std::nullopt);
      } catch (const ThreadCutOff&) {
        b->Leave();
        a->Leave();
        throw;
      }
    });
    runtime.Sleep(Milliseconds(1));
    auto locker = Start(runtime, L"locker", [&] { a->Enter(); });
    auto sleeper = runtime.CreateThread(L"sleeper", [] {});
    const Unwound unwound{isUnwound};
    try {
      runtime.Wait(*reader, std::nullopt);
    } catch (const ThreadCutOff&) {
      EXPECT_TRUE(isOtherGoneFirst);
      throw;
    }
    // The end of the reader lets the host go on; it has nothing left to wait for.
    EXPECT_TRUE(isOtherGoneFirst);
    runtime.Wait(*event, std::nullopt);
    ADD_FAILURE() << "the host went on";
  });
  EXPECT_TRUE(isUnwound);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0],
            "deadlock: every thread waits and nothing is due\n"
            "  thread 'host' waits for thread 'reader'\n"
            "  thread 'reader' waits for a message\n"
            "  thread 'holder' waits for an event or timer 'clock', holds 'a', 'b'\n"
            "  thread 'locker' waits for lock 'a' of thread 'holder'\n"
            "  thread 'sleeper' waits for Resume");
}

TEST(VirtualRuntime, ATimerThatNobodyWaitsForDoesNotHideADeadlock) {
  CVirtualRuntime runtime = MakeRuntime();
  auto timer = runtime.CreateWaitableTimer(L"timer");
  auto event = runtime.CreateEvent(EventReset::kAuto, false);
  const auto errors = runtime.Run([&] {
    timer->Arm(Milliseconds(1000), Milliseconds(1000));
    runtime.Wait(*event, std::nullopt);
  });
  EXPECT_THAT(errors, ElementsAre(HasSubstr("deadlock")));
}

TEST(VirtualRuntime, ALongCycleOfLocksIsToldWithItsWholeWay) {
  CVirtualRuntime runtime = MakeRuntime();
  const auto errors = runtime.Run([&] {
    std::vector<std::unique_ptr<ILock>> locks;
    for (const char* name : {"a", "b", "c", "d"}) locks.push_back(runtime.CreateLock(name));
    for (size_t i = 0; i < 4; ++i) {
      locks[i]->Enter();
      locks[(i + 1) % 4]->Enter();
      locks[(i + 1) % 4]->Leave();
      locks[i]->Leave();
    }
  });
  EXPECT_THAT(errors,
              ElementsAre(AllOf(HasSubstr("'host' takes 'a' while it holds 'd'"),
                                HasSubstr("'b' was taken under 'a'"), HasSubstr("'c' was taken under 'b'"),
                                HasSubstr("'d' was taken under 'c'"))));
}

TEST(VirtualRuntime, TwoLocksOfOneNameNestedAreToldButReentryIsFine) {
  CVirtualRuntime runtime = MakeRuntime();
  const auto errors = runtime.Run([&] {
    auto first = runtime.CreateLock("map");
    auto second = runtime.CreateLock("map");
    first->Enter();
    first->Enter();
    first->Leave();
    first->Leave();
    for (int i = 0; i < 3; ++i) {
      first->Enter();
      second->Enter();
      second->Leave();
      first->Leave();
    }
  });
  EXPECT_THAT(
      errors,
      ElementsAre("lock order: thread 'host' takes 'map' while it holds 'map': two locks of one name"));
}

TEST(VirtualRuntime, ReentryUnderAnotherLockIsNoNewOrder) {
  CVirtualRuntime runtime = MakeRuntime();
  EXPECT_THAT(runtime.Run([&] {
    auto a = runtime.CreateLock("a");
    auto b = runtime.CreateLock("b");
    a->Enter();
    b->Enter();
    a->Enter();
    a->Leave();
    b->Leave();
    a->Leave();
  }),
              IsEmpty());
}

TEST(VirtualRuntime, ManyRolesOfLocksAreKept) {
  CVirtualRuntime runtime = MakeRuntime();
  std::vector<std::string> names;
  for (int i = 0; i < 100; ++i) names.push_back("lock" + std::to_string(i));
  const auto errors = runtime.Run([&] {
    auto first = runtime.CreateLock(names[0].c_str());
    auto second = runtime.CreateLock(names[1].c_str());
    first->Enter();
    second->Enter();
    second->Leave();
    first->Leave();
    std::vector<std::unique_ptr<ILock>> others;
    for (size_t i = 2; i < names.size(); ++i) others.push_back(runtime.CreateLock(names[i].c_str()));
    others.back()->Enter();
    first->Enter();
    first->Leave();
    others.back()->Leave();
    second->Enter();
    others.back()->Enter();
    others.back()->Leave();
    second->Leave();
  });
  EXPECT_THAT(errors, ElementsAre(HasSubstr("'lock0' was taken under 'lock99'")));
}

TEST(VirtualRuntime, AThreadThatEndsWithALockIsTold) {
  CVirtualRuntime runtime = MakeRuntime();
  const auto errors = runtime.Run([&] {
    auto lock = runtime.CreateLock("lock");
    runtime.Wait(*Start(runtime, L"careless",
                        [&] {
                          lock->Enter();
                          lock->Enter();
                        }),
                 std::nullopt);
    lock->Enter();
    lock->Leave();
  });
  EXPECT_THAT(errors, ElementsAre(AllOf(HasSubstr("without leaving a lock"), HasSubstr("'careless'"),
                                        HasSubstr("holds 'lock'"))));
}

TEST(VirtualRuntime, ExceptionsStayWithTheirThreadAcrossSwitches) {
  CVirtualRuntime runtime = MakeRuntime();
  int right = 0;
  EXPECT_THAT(runtime.Run([&] {
    std::vector<std::shared_ptr<IThread>> threads;
    for (int i = 0; i < 20; ++i) {
      threads.push_back(Start(runtime, L"thrower", [&, i] {
        for (int k = 0; k < 25; ++k) {
          try {
            throw i * 1000 + k;
          } catch (int) {
            runtime.Sleep(Milliseconds((i * 7 + k * 3) % 5));
            try {
              throw;
            } catch (int number) {
              right += number == i * 1000 + k && std::uncaught_exceptions() == 0 ? 1 : 0;
            }
          }
        }
      }));
    }
    for (const auto& thread : threads) runtime.Wait(*thread, std::nullopt);
  }),
              IsEmpty());
  EXPECT_EQ(right, 500);
}

TEST(VirtualRuntime, RuntimesOnTwoOsThreadsRunAtOnceAndDoNotTouch) {
  for (int i = 0; i < 20; ++i) {
    const uint64_t seed = static_cast<uint64_t>(i);
    std::string first;
    std::string second;
    std::thread other([&] { second = SequenceOf(seed); });
    first = SequenceOf(seed);
    other.join();
    EXPECT_EQ(first, second);
  }
}

TEST(VirtualRuntime, IdsDependOnTheSeedAlone) {
  const auto ids = [](uint64_t seed) {
    CVirtualRuntime runtime = MakeRuntime(seed);
    std::vector<uint8_t> bytes;
    for (int i = 0; i < 4; ++i) {
      const Guid guid = runtime.NewGuid();
      bytes.insert(bytes.end(), std::begin(guid.bytes), std::end(guid.bytes));
    }
    return bytes;
  };
  EXPECT_EQ(ids(5), ids(5));
  EXPECT_NE(ids(5), ids(6));
}

TEST(VirtualRuntime, NothingIsLeftOfThreadsThatNeverEndedByThemselves) {
  for (const uint64_t seed : {0u, 1u, 2u, 3u}) {
    CVirtualRuntime runtime = MakeRuntime(seed);
    auto token = std::make_shared<int>(0);
    EXPECT_THAT(runtime.Run([&] {
      for (int i = 0; i < 50; ++i) {
        auto thread = runtime.CreateThread(L"left", [&runtime, token] {
          const auto kept = std::make_unique<std::string>(100, 'x');
          auto event = runtime.CreateEvent(EventReset::kAuto, false);
          runtime.Wait(*event, Milliseconds(1000000));
        });
        if (i % 5 != 0) thread->Resume();
      }
      runtime.Sleep(Milliseconds(100));
    }),
                IsEmpty());
    EXPECT_EQ(token.use_count(), 1);
  }
}

TEST(VirtualRuntime, AnEventMayGoWhileAThreadWaitsForIt) {
  CVirtualRuntime runtime = MakeRuntime();
  bool hasTimedOut = false;
  EXPECT_THAT(runtime.Run([&] {
    auto event = runtime.CreateEvent(EventReset::kAuto, false);
    auto thread = Start(runtime, L"waiter", [&, waited = event.get()] {
      hasTimedOut = !runtime.Wait(*waited, Milliseconds(1000));
    });
    runtime.Sleep(Milliseconds(10));
    event.reset();
    runtime.Wait(*thread, std::nullopt);
  }),
              IsEmpty());
  EXPECT_TRUE(hasTimedOut);
}

TEST(VirtualRuntime, TheStackOfAnEndedThreadServesTheNextOne) {
  CVirtualRuntime runtime = MakeRuntime();
  std::set<void*> stacks;
  EXPECT_THAT(runtime.Run([&] {
    for (int i = 0; i < 1000; ++i) {
      runtime.Wait(*Start(runtime, L"short", [&] { stacks.insert(__builtin_frame_address(0)); }),
                   std::nullopt);
    }
  }),
              IsEmpty());
  EXPECT_LE(stacks.size(), 2u);
}

TEST(VirtualRuntime, ALateFiringComesExactlySoMuchLater) {
  CVirtualRuntime runtime = MakeRuntime();
  const TimePoint begin = runtime.Now();
  std::vector<int64_t> moments;
  EXPECT_THAT(runtime.Run([&] {
    auto timer = runtime.CreateWaitableTimer(L"timer 100");
    timer->Arm(Milliseconds(60000), Milliseconds(60000));
    runtime.DelayTimer(L" 100", Milliseconds(90000));
    for (int i = 0; i < 3; ++i) {
      runtime.Wait(*timer, std::nullopt);
      moments.push_back((runtime.Now() - begin).count());
    }
  }),
              IsEmpty());
  // 60,000 comes at 150,000 and takes 120,000 with it.
  EXPECT_THAT(moments, ElementsAre(150000, 180000, 240000));
}

TEST(VirtualRuntime, AnUnknownZoneIsAnError) {
  EXPECT_THROW(CVirtualRuntime({"Nowhere/Town", kStart, 0}), std::runtime_error);
}

using VirtualRuntimeDeathTest = testing::Test;

TEST(VirtualRuntimeDeathTest, AStrayExceptionEndsTheProcessAndNamesTheThread) {
  EXPECT_DEATH(
      {
        CVirtualRuntime runtime = MakeRuntime();
        runtime.Run([&] {
          Start(runtime, L"stray", [] { throw std::runtime_error("lost"); });
          runtime.Sleep(Milliseconds(1));
        });
      },
      "thread 'stray' ended by an exception: lost");
}

TEST(VirtualRuntimeDeathTest, ThreadsThatCannotBeEndedEndTheProcess) {
  EXPECT_DEATH(
      {
        CVirtualRuntime runtime = MakeRuntime();
        auto a = runtime.CreateLock("a");
        auto b = runtime.CreateLock("b");
        runtime.Run([&] {
          const auto body = [&](ILock& first, ILock& second) {
            const CutOffShield shield(runtime);
            first.Enter();
            runtime.Sleep(Milliseconds(1));
            second.Enter();
          };
          auto one = Start(runtime, L"one", [&] { body(*a, *b); });
          auto two = Start(runtime, L"two", [&] { body(*b, *a); });
          runtime.Sleep(Milliseconds(10));
        });
      },
      "threads that can't be ended.*"
      "thread 'one' waits for lock 'b' of thread 'two', holds 'a'.*"
      "thread 'two' waits for lock 'a' of thread 'one', holds 'b'");
}

}  // namespace
}  // namespace iorder::test

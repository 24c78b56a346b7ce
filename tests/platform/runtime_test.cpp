#include <atomic>
#include <vector>

#include "tests/platform/runtime_fixture.h"

namespace iorder::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Kinds, RuntimeTest, testing::ValuesIn(AllKinds()),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(RuntimeTest, AThreadBeginsOnlyWhenResumed) {
  Run([&] {
    std::atomic<int> runs = 0;
    auto thread = m_runtime->CreateThread(L"worker", [&] { ++runs; });
    EXPECT_FALSE(m_runtime->Wait(*thread, Milliseconds(1000)));
    EXPECT_EQ(runs, 0);
    thread->Resume();
    EXPECT_TRUE(Comes(*thread));
    thread->Resume();
    Settle();
    EXPECT_EQ(runs, 1);
  });
}

TEST_P(RuntimeTest, EachThreadKnowsItsName) {
  Run([&] {
    EXPECT_EQ(m_runtime->CurrentThreadName(), L"host");
    std::wstring inside;
    auto thread = Start(L"worker", [&] { inside = m_runtime->CurrentThreadName(); });
    EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(inside, L"worker");
    EXPECT_EQ(thread->Name(), L"worker");
  });
}

TEST_P(RuntimeTest, DroppingTheHandleDoesNotTouchTheThread) {
  Run([&] {
    auto done = ManualEvent();
    Start(L"worker", [&] {
      m_runtime->Sleep(Milliseconds(1000));
      done->Set();
    }).reset();
    EXPECT_TRUE(Comes(*done));
  });
}

TEST_P(RuntimeTest, MessagesComeInTheOrderOfPosting) {
  Run([&] {
    std::vector<uintptr_t> got;
    auto thread = Start(L"worker", [&] {
      for (;;) {
        const ThreadMessage message = m_runtime->GetMessage();
        if (message.number == kQuitMessage) return;
        EXPECT_EQ(message.first, message.second + 1);
        got.push_back(message.second);
      }
    });
    for (uintptr_t i = 0; i < 100; ++i) EXPECT_TRUE(thread->Post({1, i + 1, i}));
    EXPECT_TRUE(thread->Post({kQuitMessage, 0, 0}));
    EXPECT_TRUE(Comes(*thread));
    ASSERT_EQ(got.size(), 100u);
    for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], i);
  });
}

TEST_P(RuntimeTest, GetMessageWaitsForOne) {
  Run([&] {
    std::atomic<bool> hasGot = false;
    auto thread = Start(L"worker", [&] {
      m_runtime->GetMessage();
      hasGot = true;
    });
    Settle();
    EXPECT_FALSE(hasGot);
    thread->Post({5, 0, 0});
    EXPECT_TRUE(Comes(*thread));
    EXPECT_TRUE(hasGot);
  });
}

TEST_P(RuntimeTest, AMessagePostedBeforeTheThreadBeganIsKept) {
  Run([&] {
    uint32_t got = 0;
    auto thread = m_runtime->CreateThread(L"worker", [&] { got = m_runtime->GetMessage().number; });
    EXPECT_TRUE(thread->Post({7, 0, 0}));
    thread->Resume();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(got, 7u);
  });
}

TEST_P(RuntimeTest, PostToAnEndedThreadGivesFalseAndItsMessagesCanStillBeTaken) {
  Run([&] {
    auto thread = m_runtime->CreateThread(L"worker", [] {});
    EXPECT_TRUE(thread->Post({7, 8, 9}));
    EXPECT_TRUE(thread->Post({10, 0, 0}));
    thread->Resume();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_FALSE(thread->Post({11, 0, 0}));
    const auto first = thread->TakeMessage();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->number, 7u);
    EXPECT_EQ(first->first, 8u);
    EXPECT_EQ(first->second, 9u);
    EXPECT_EQ(thread->TakeMessage().value_or(ThreadMessage{}).number, 10u);
    EXPECT_FALSE(thread->TakeMessage());
  });
}

TEST_P(RuntimeTest, AnAutoResetEventReleasesOneThread) {
  Run([&] {
    auto event = AutoEvent();
    std::atomic<int> released = 0;
    const auto body = [&] {
      m_runtime->Wait(*event, std::nullopt);
      ++released;
    };
    auto first = Start(L"first", body);
    auto second = Start(L"second", body);
    Settle();
    event->Set();
    Settle();
    EXPECT_EQ(released, 1);
    EXPECT_FALSE(m_runtime->Wait(*event, Milliseconds(0)));
    event->Set();
    EXPECT_TRUE(Comes(*first));
    EXPECT_TRUE(Comes(*second));
    EXPECT_EQ(released, 2);
  });
}

TEST_P(RuntimeTest, AnAutoResetEventKeepsOneSignal) {
  Run([&] {
    auto event = AutoEvent();
    event->Set();
    event->Set();
    EXPECT_TRUE(m_runtime->Wait(*event, Milliseconds(0)));
    EXPECT_FALSE(m_runtime->Wait(*event, Milliseconds(0)));
    event->Set();
    event->Reset();
    EXPECT_FALSE(m_runtime->Wait(*event, Milliseconds(0)));
  });
}

TEST_P(RuntimeTest, AManualResetEventReleasesAllUntilReset) {
  Run([&] {
    auto event = ManualEvent();
    const auto body = [&] { m_runtime->Wait(*event, std::nullopt); };
    auto first = Start(L"first", body);
    auto second = Start(L"second", body);
    Settle();
    event->Set();
    EXPECT_TRUE(Comes(*first));
    EXPECT_TRUE(Comes(*second));
    EXPECT_TRUE(m_runtime->Wait(*event, std::nullopt));
    event->Reset();
    EXPECT_FALSE(m_runtime->Wait(*event, Milliseconds(0)));
  });
}

TEST_P(RuntimeTest, AnEventCanBeMadeSignalled) {
  Run([&] {
    auto automatic = m_runtime->CreateEvent(EventReset::kAuto, true);
    EXPECT_TRUE(m_runtime->Wait(*automatic, Milliseconds(0)));
    EXPECT_FALSE(m_runtime->Wait(*automatic, Milliseconds(0)));
    auto manual = m_runtime->CreateEvent(EventReset::kManual, true);
    EXPECT_TRUE(m_runtime->Wait(*manual, Milliseconds(0)));
    EXPECT_TRUE(m_runtime->Wait(*manual, Milliseconds(0)));
  });
}

TEST_P(RuntimeTest, WaitForSeveralGivesTheLowestSignalledIndexAndResetsOnlyThat) {
  Run([&] {
    auto a = AutoEvent();
    auto b = AutoEvent();
    auto c = AutoEvent();
    IWaitable* const all[] = {a.get(), b.get(), c.get()};
    c->Set();
    b->Set();
    EXPECT_EQ(m_runtime->Wait(all, Milliseconds(0)), 1u);
    EXPECT_EQ(m_runtime->Wait(all, Milliseconds(0)), 2u);
    EXPECT_EQ(m_runtime->Wait(all, Milliseconds(0)), std::nullopt);
  });
}

TEST_P(RuntimeTest, WaitForSeveralIsReleasedByAnyOfThem) {
  Run([&] {
    std::vector<std::unique_ptr<IEvent>> events;
    std::vector<IWaitable*> all;
    for (int i = 0; i < 12; ++i) {
      events.push_back(AutoEvent());
      all.push_back(events.back().get());
    }
    for (const size_t index : {11u, 0u, 5u}) {
      std::optional<size_t> got;
      auto thread = Start(L"worker", [&] { got = m_runtime->Wait(all, std::nullopt); });
      Settle();
      events[index]->Set();
      EXPECT_TRUE(Comes(*thread));
      EXPECT_EQ(got, index);
      EXPECT_FALSE(m_runtime->Wait(all, Milliseconds(0)));
    }
  });
}

TEST_P(RuntimeTest, AWaitWithoutASignalEndsAfterItsLimit) {
  Run([&] {
    auto event = AutoEvent();
    const TimePoint begin = m_runtime->Now();
    EXPECT_FALSE(m_runtime->Wait(*event, Milliseconds(3000)));
    EXPECT_GE(m_runtime->Now() - begin, Milliseconds(3000));
    // What timed out is no longer in line for the signal.
    event->Set();
    EXPECT_TRUE(m_runtime->Wait(*event, Milliseconds(0)));
  });
}

TEST_P(RuntimeTest, AWaitMayHaveALimitBeyondAllTime) {
  Run([&] {
    auto event = AutoEvent();
    auto thread = Start(L"worker", [&] {
      m_runtime->Sleep(Milliseconds(500));
      event->Set();
    });
    EXPECT_TRUE(m_runtime->Wait(*event, Milliseconds::max()));
  });
}

TEST_P(RuntimeTest, SleepersWakeInTheOrderOfTheirTimes) {
  Run([&] {
    auto lock = m_runtime->CreateLock("order");
    std::vector<int> order;
    std::vector<std::shared_ptr<IThread>> threads;
    for (const int i : {3, 1, 2}) {
      threads.push_back(Start(L"sleeper", [&, i] {
        m_runtime->Sleep(Milliseconds(i * 6000));
        lock->Enter();
        order.push_back(i);
        lock->Leave();
      }));
    }
    for (const auto& thread : threads) EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  });
}

TEST_P(RuntimeTest, SleepUntilWaitsForTheMomentAndNotForAPastOne) {
  Run([&] {
    const TimePoint moment = m_runtime->Now() + Milliseconds(2000);
    m_runtime->SleepUntil(moment, Precedence::kTick);
    EXPECT_GE(m_runtime->Now(), moment);
    m_runtime->SleepUntil(moment - Milliseconds(5000), Precedence::kTick);
  });
}

TEST_P(RuntimeTest, WaitUntilGivesTheEventOrTheMoment) {
  Run([&] {
    auto event = AutoEvent();
    const TimePoint moment = m_runtime->Now() + Milliseconds(1000);
    EXPECT_FALSE(m_runtime->WaitUntil(*event, moment, Precedence::kDayLine));
    EXPECT_GE(m_runtime->Now(), moment);
    event->Set();
    EXPECT_TRUE(m_runtime->WaitUntil(*event, moment, Precedence::kDayLine));
    auto thread = Start(L"worker", [&] {
      m_runtime->Sleep(Milliseconds(500));
      event->Set();
    });
    EXPECT_TRUE(m_runtime->WaitUntil(*event, std::nullopt, Precedence::kDayLine));
  });
}

TEST_P(RuntimeTest, ATimerFiresAfterItsDelayAndThenEachPeriod) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    const TimePoint begin = m_runtime->Now();
    EXPECT_TRUE(timer->Arm(Milliseconds(1000), Milliseconds(3000)));
    for (int i = 0; i < 4; ++i) {
      EXPECT_TRUE(Comes(*timer));
      EXPECT_GE(m_runtime->Now() - begin, Milliseconds(1000 + 3000 * i));
    }
  });
}

TEST_P(RuntimeTest, ATimerWithoutPeriodFiresOnce) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(1000), Milliseconds(0));
    EXPECT_TRUE(Comes(*timer));
    EXPECT_FALSE(m_runtime->Wait(*timer, Milliseconds(5000)));
  });
}

TEST_P(RuntimeTest, ATimerArmedWithoutDelayIsSignalledAtOnce) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(0), Milliseconds(0));
    EXPECT_TRUE(m_runtime->Wait(*timer, Milliseconds(0)));
    EXPECT_FALSE(m_runtime->Wait(*timer, Milliseconds(0)));
  });
}

TEST_P(RuntimeTest, FiringsThatNobodyWaitedForCollapseIntoOne) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(10), Milliseconds(100000));
    // One firing at 10, the next ones at 100,010 and 200,010.
    const TimePoint begin = m_runtime->Now();
    m_runtime->Sleep(Milliseconds(150000));
    EXPECT_TRUE(m_runtime->Wait(*timer, Milliseconds(0)));
    EXPECT_FALSE(m_runtime->Wait(*timer, Milliseconds(0)));
    EXPECT_TRUE(Comes(*timer));
    EXPECT_GE(m_runtime->Now() - begin, Milliseconds(200010));
  });
}

TEST_P(RuntimeTest, ATimerArmedAgainForgetsTheEarlierArmingAndItsSignal) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(500), Milliseconds(1000));
    m_runtime->Sleep(Milliseconds(1000));
    const TimePoint begin = m_runtime->Now();
    timer->Arm(Milliseconds(60000), Milliseconds(0));
    EXPECT_FALSE(m_runtime->Wait(*timer, Milliseconds(5000)));
    EXPECT_TRUE(Comes(*timer));
    EXPECT_GE(m_runtime->Now() - begin, Milliseconds(60000));
  });
}

TEST_P(RuntimeTest, ATimerCanBeArmedUnderAThreadThatWaitsForIt) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    auto thread = Start(L"worker", [&] { m_runtime->Wait(*timer, std::nullopt); });
    Settle();
    timer->Arm(Milliseconds(1000000000), Milliseconds(0));
    Settle();
    timer->Arm(Milliseconds(1000), Milliseconds(0));
    EXPECT_TRUE(Comes(*thread));
  });
}

TEST_P(RuntimeTest, ACancelledTimerKeepsItsSignalAndFiresNoMore) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    timer->Arm(Milliseconds(100), Milliseconds(1000));
    m_runtime->Sleep(Milliseconds(1500));
    EXPECT_TRUE(timer->Cancel());
    EXPECT_TRUE(m_runtime->Wait(*timer, Milliseconds(0)));
    EXPECT_FALSE(m_runtime->Wait(*timer, Milliseconds(5000)));
  });
}

TEST_P(RuntimeTest, AFiringReleasesOneOfSeveralThreads) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"timer");
    std::atomic<int> released = 0;
    const auto body = [&] {
      m_runtime->Wait(*timer, std::nullopt);
      ++released;
    };
    auto first = Start(L"first", body);
    auto second = Start(L"second", body);
    timer->Arm(Milliseconds(1000), Milliseconds(0));
    m_runtime->Sleep(Milliseconds(10000));
    EXPECT_EQ(released, 1);
    timer->Arm(Milliseconds(1000), Milliseconds(0));
    EXPECT_TRUE(Comes(*first));
    EXPECT_TRUE(Comes(*second));
  });
}

TEST_P(RuntimeTest, AWaitOnTimersAndEventsGivesWhatComesFirst) {
  Run([&] {
    auto event = AutoEvent();
    auto soon = m_runtime->CreateWaitableTimer(L"soon");
    auto late = m_runtime->CreateWaitableTimer(L"late");
    late->Arm(Milliseconds(1000000), Milliseconds(0));
    soon->Arm(Milliseconds(3000), Milliseconds(0));
    IWaitable* const all[] = {event.get(), late.get(), soon.get()};
    EXPECT_EQ(m_runtime->Wait(all, std::nullopt), 2u);
    auto thread = Start(L"worker", [&] { event->Set(); });
    EXPECT_EQ(m_runtime->Wait(all, std::nullopt), 0u);
    EXPECT_TRUE(Comes(*thread));
  });
}

TEST_P(RuntimeTest, ALockIsReentrant) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    lock->Enter();
    lock->Enter();
    lock->Leave();
    std::atomic<bool> hasEntered = false;
    auto thread = Start(L"worker", [&] {
      lock->Enter();
      hasEntered = true;
      lock->Leave();
    });
    Settle();
    EXPECT_FALSE(hasEntered);
    lock->Leave();
    EXPECT_TRUE(Comes(*thread));
    EXPECT_TRUE(hasEntered);
  });
}

TEST_P(RuntimeTest, ALockKeepsOthersOutAlsoWhileItsHolderSleeps) {
  Run([&] {
    auto lock = m_runtime->CreateLock("lock");
    int inside = 0;
    int rounds = 0;
    std::vector<std::shared_ptr<IThread>> threads;
    for (int i = 0; i < 4; ++i) {
      threads.push_back(Start(L"worker", [&] {
        for (int k = 0; k < 50; ++k) {
          lock->Enter();
          EXPECT_EQ(++inside, 1);
          if (k % 10 == 0) m_runtime->Sleep(Milliseconds(5));
          ++rounds;
          --inside;
          lock->Leave();
        }
      }));
    }
    for (const auto& thread : threads) EXPECT_TRUE(Comes(*thread));
    EXPECT_EQ(rounds, 200);
  });
}

TEST_P(RuntimeTest, LocksMayBeLeftInAnyOrder) {
  Run([&] {
    auto a = m_runtime->CreateLock("a");
    auto b = m_runtime->CreateLock("b");
    a->Enter();
    b->Enter();
    a->Leave();
    auto thread = Start(L"worker", [&] {
      a->Enter();
      a->Leave();
    });
    EXPECT_TRUE(Comes(*thread));
    b->Leave();
  });
}

TEST_P(RuntimeTest, LocksTakenInBothOrdersAreAnErrorOfTheRun) {
  const auto errors = m_runtime->Run([&] {
    auto a = m_runtime->CreateLock("a");
    auto b = m_runtime->CreateLock("b");
    const auto nest = [](ILock& outer, ILock& inner) {
      outer.Enter();
      inner.Enter();
      inner.Leave();
      outer.Leave();
    };
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(Comes(*Start(L"one", [&] { nest(*a, *b); })));
      EXPECT_TRUE(Comes(*Start(L"two", [&] { nest(*b, *a); })));
    }
  });
  EXPECT_EQ(errors, (std::vector<std::string>{"lock order: thread 'two' takes 'a' while it holds 'b'; but "
                                              "'b' was taken under 'a' by thread 'one'"}));
}

TEST_P(RuntimeTest, TheClockShowsTheTimeOfTheZone) {
  const TimePoint start = m_runtime->FromLocal(kStart);
  EXPECT_EQ(m_runtime->ToLocal(start), kStart);
  EXPECT_EQ(m_runtime->ToUtc(start), (DateTime{2021, 7, 4, 22, 0, 30, 0, 0}));
  EXPECT_EQ(m_runtime->ToUtc(start - std::chrono::minutes(31)), (DateTime{2021, 7, 3, 21, 23, 59, 0, 0}));
  Run([&] {
    m_runtime->Sleep(Milliseconds(1500));
    const DateTime local = m_runtime->LocalTime();
    EXPECT_EQ(ToDate8(local), 20210722);
    EXPECT_EQ(local.dayOfWeek, 4);
    EXPECT_EQ(local.hour, 8);
    EXPECT_GE(ToDateTime17(local), 20210722083001500);
    EXPECT_EQ(m_runtime->UtcTime().hour, 0);
    EXPECT_GE(m_runtime->Now() - start, Milliseconds(1500));
  });
}

TEST_P(RuntimeTest, GuidsDiffer) {
  const Guid first = m_runtime->NewGuid();
  const Guid second = m_runtime->NewGuid();
  EXPECT_FALSE(std::equal(std::begin(first.bytes), std::end(first.bytes), std::begin(second.bytes)));
}

TEST_P(RuntimeTest, ObjectNumbersAndReferencesAreNeverGivenTwice) {
  EXPECT_EQ(m_runtime->NewObjectNumber(), 1u);
  EXPECT_EQ(m_runtime->NewObjectNumber(), 2u);
  int object = 0;
  const int64_t first = m_runtime->MakeReference(&object);
  const int64_t second = m_runtime->MakeReference(&object);
  EXPECT_NE(first, second);
  EXPECT_EQ(m_runtime->ResolveReference(first), &object);
  EXPECT_EQ(m_runtime->ResolveReference(static_cast<uint32_t>(second)), &object);
  m_runtime->ReleaseReference(first);
  EXPECT_EQ(m_runtime->ResolveReference(first), nullptr);
  EXPECT_EQ(m_runtime->ResolveReference(second), &object);
  EXPECT_EQ(m_runtime->ResolveReference(0), nullptr);
  EXPECT_NE(m_runtime->MakeReference(&object), first);
  m_runtime->ReleaseReference(second);
}

TEST_P(RuntimeTest, TheNextThreadsCanBeMadeToFail) {
  Run([&] {
    m_runtime->FailThreads(2);
    EXPECT_EQ(m_runtime->CreateThread(L"a", [] {}), nullptr);
    EXPECT_EQ(m_runtime->CreateThread(L"b", [] {}), nullptr);
    EXPECT_NE(m_runtime->CreateThread(L"c", [] {}), nullptr);
    m_runtime->FailThreads(5);
    m_runtime->FailThreads(0);
    EXPECT_NE(m_runtime->CreateThread(L"d", [] {}), nullptr);
  });
}

TEST_P(RuntimeTest, OneFiringOfATimerCanBeMadeToComeLate) {
  Run([&] {
    auto timer = m_runtime->CreateWaitableTimer(L"engine 100");
    auto other = m_runtime->CreateWaitableTimer(L"engine 200");
    m_runtime->DelayTimer(L"100", Milliseconds(30000));
    const TimePoint begin = m_runtime->Now();
    timer->Arm(Milliseconds(10000), Milliseconds(20000));
    other->Arm(Milliseconds(10000), Milliseconds(0));
    IWaitable* const both[] = {timer.get(), other.get()};
    EXPECT_EQ(m_runtime->Wait(both, std::nullopt), 1u);
    EXPECT_TRUE(Comes(*timer));
    EXPECT_GE(m_runtime->Now() - begin, Milliseconds(40000));
    // The ones after it keep to the timer's own times.
    EXPECT_TRUE(Comes(*timer));
    EXPECT_GE(m_runtime->Now() - begin, Milliseconds(50000));
    EXPECT_LT(m_runtime->Now() - begin, Milliseconds(70000));
  });
}

TEST_P(RuntimeTest, AHeldThreadWakesFromNoWaitUntilTheHoldIsOver) {
  Run([&] {
    std::vector<TimePoint> woken(3);
    auto event = AutoEvent();
    const TimePoint end = m_runtime->Now() + Milliseconds(60000);
    m_runtime->HoldThread(L"sleeper", Milliseconds(60000));
    auto sleeper = Start(L"sleeper", [&] {
      m_runtime->Sleep(Milliseconds(100));
      woken[0] = m_runtime->Now();
    });
    auto waiter = Start(L"waiter", [&] {
      m_runtime->Wait(*event, std::nullopt);
      woken[1] = m_runtime->Now();
    });
    auto reader = Start(L"reader", [&] {
      m_runtime->GetMessage();
      woken[2] = m_runtime->Now();
    });
    auto free = Start(L"free", [&] { m_runtime->Sleep(Milliseconds(100)); });
    Settle();
    m_runtime->HoldThread(L"waiter", end - m_runtime->Now());
    m_runtime->HoldThread(L"reader", end - m_runtime->Now());
    event->Set();
    reader->Post({1, 0, 0});
    EXPECT_TRUE(Comes(*free));
    EXPECT_LT(m_runtime->Now(), end);
    for (IThread* thread : {sleeper.get(), waiter.get(), reader.get()}) EXPECT_TRUE(Comes(*thread));
    for (const TimePoint moment : woken) EXPECT_GE(moment, end);
  });
}

TEST_P(RuntimeTest, AHoldThatIsTakenBackLetsItsThreadGoAtOnce) {
  Run([&] {
    const TimePoint end = m_runtime->Now() + Milliseconds(600000);
    TimePoint woken;
    auto event = AutoEvent();
    auto waiter = Start(L"waiter", [&] {
      m_runtime->Wait(*event, std::nullopt);
      woken = m_runtime->Now();
    });
    Settle();
    m_runtime->HoldThread(L"waiter", end - m_runtime->Now());
    event->Set();  // it is awake from here on, and stands in the hold
    Settle();
    m_runtime->HoldThread(L"waiter", Milliseconds(0));
    EXPECT_TRUE(Comes(*waiter));
    EXPECT_LT(woken, end);
  });
}

TEST_P(RuntimeTest, AHeldThreadDoesNotEvenLook) {
  Run([&] {
    auto event = m_runtime->CreateEvent(EventReset::kManual, true);
    const TimePoint end = m_runtime->Now() + Milliseconds(5000);
    m_runtime->HoldThread(L"looker", Milliseconds(5000));
    TimePoint looked;
    auto thread = Start(L"looker", [&] {
      m_runtime->Wait(*event, Milliseconds(0));
      looked = m_runtime->Now();
    });
    EXPECT_TRUE(Comes(*thread));
    EXPECT_GE(looked, end);
  });
}

TEST_P(RuntimeTest, WhatTheMainBodyRaisesComesOutOfRun) {
  EXPECT_THROW(m_runtime->Run([&] {
    Start(L"worker", [&] { m_runtime->GetMessage(); });
    throw std::runtime_error("stray");
  }),
               std::runtime_error);
}

}  // namespace
}  // namespace iorder::test

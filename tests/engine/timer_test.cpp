#include "engine/timer.h"

#include <gtest/gtest.h>

#include "platform/platform_error.h"
#include "tests/support/virtual_world.h"
#include "tests/support/wrapped_runtime.h"

namespace iorder::test {
namespace {

using Moments = std::vector<int64_t>;

/// A runtime that can give no threads or timers for a while, and says why.
class CThreadlessRuntime : public CWrappedRuntime {
 public:
  using CWrappedRuntime::CWrappedRuntime;

  std::shared_ptr<IThread> CreateThread(std::wstring name, std::function<void()> body) override {
    if (failures-- > 0) return nullptr;
    return CWrappedRuntime::CreateThread(std::move(name), std::move(body));
  }
  PlatformError LastError() override { return error; }
  std::unique_ptr<IWaitableTimer> CreateWaitableTimer(std::wstring name) override {
    if (!hasTimers) throw CPlatformError(error_code::kFailure, "no timer");
    return CWrappedRuntime::CreateWaitableTimer(std::move(name));
  }

  int failures = 0;
  bool hasTimers = true;
  PlatformError error{.code = 8, .description = {}};
};

class Timer : public testing::Test {
 protected:
  void Run(const std::function<void(CTimer& timer)>& main) {
    m_world.Run([&] {
      CTimer timer(m_runtime, [this](const std::wstring& text) { m_failures.push_back(text); });
      main(timer);
    });
  }
  /// A callback that notes the moments of its firings.
  CTimer::Callback Note() {
    return [this](int32_t) { m_fired.push_back(m_world.Elapsed()); };
  }
  void Sleep(int64_t ms) { m_world.runtime.Sleep(Milliseconds(ms)); }
  void SleepUntil(int64_t ms) { Sleep(ms - m_world.Elapsed()); }

  CVirtualWorld m_world;
  CThreadlessRuntime m_runtime{m_world.runtime};
  Moments m_fired;
  std::vector<std::wstring> m_failures;
};

TEST_F(Timer, TheIntervalIsTheFirstDelayAndThePeriod) {
  Run([this](CTimer& timer) {
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    Sleep(350);
    EXPECT_EQ(m_fired, (Moments{100, 200, 300}));
  });
}

TEST_F(Timer, TheCallbackGetsItsIdOnTheThreadOfItsTimer) {
  Run([this](CTimer& timer) {
    std::vector<std::pair<int32_t, std::wstring>> calls;
    const auto note = [&](int32_t id) { calls.emplace_back(id, m_world.runtime.CurrentThreadName()); };
    timer.SetTimer(7, 100, note);
    timer.SetTimer(8, 150, note);
    Sleep(160);
    EXPECT_EQ(calls, (std::vector<std::pair<int32_t, std::wstring>>{{7, L"timer 7"}, {8, L"timer 8"}}));
  });
}

TEST_F(Timer, SettingARunningIdGivesZeroAndLeavesTheOldTimer) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    bool replaced = false;
    EXPECT_EQ(timer.SetTimer(5, 10, [&replaced](int32_t) { replaced = true; }), 0);
    Sleep(210);
    EXPECT_FALSE(replaced);
    EXPECT_EQ(m_fired, (Moments{100, 200}));
  });
}

TEST_F(Timer, TwoServicesDoNotShareIds) {
  Run([this](CTimer& timer) {
    CTimer other(m_runtime, nullptr);
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    EXPECT_EQ(other.SetTimer(5, 100, Note()), 1);
    other.KillTimer(5);
    Sleep(110);
    EXPECT_EQ(m_fired, Moments{100});
  });
}

TEST_F(Timer, ChangingAnUnknownIdGivesZero) {
  Run([this](CTimer& timer) {
    EXPECT_EQ(timer.ChangeTimer(5, 100), 0);
    timer.SetTimer(5, 100, Note());
    timer.KillTimer(5);
    EXPECT_EQ(timer.ChangeTimer(5, 100), 0);
  });
}

TEST_F(Timer, AChangeCountsTheWholeNewDelayFromNow) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    SleepUntil(190);
    EXPECT_EQ(timer.ChangeTimer(5, 300), 1);
    SleepUntil(1000);
    EXPECT_EQ(m_fired, (Moments{100, 490, 790}));
  });
}

TEST_F(Timer, AChangeMayShortenADelay) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 1000, Note());
    SleepUntil(10);
    EXPECT_EQ(timer.ChangeTimer(5, 100), 1);
    SleepUntil(250);
    EXPECT_EQ(m_fired, (Moments{110, 210}));
  });
}

TEST_F(Timer, ATimerThatCannotBeCancelledIsNotChanged) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    Sleep(10);
    m_runtime.refuseCancel = true;
    EXPECT_EQ(timer.ChangeTimer(5, 1000), 0);
    SleepUntil(250);
    EXPECT_EQ(m_fired, (Moments{100, 200}));
  });
}

TEST_F(Timer, ATimerMayBeChangedFromItsOwnCallback) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [&](int32_t id) {
      m_fired.push_back(m_world.Elapsed());
      EXPECT_EQ(timer.ChangeTimer(id, 1000), 1);
    });
    SleepUntil(2200);
    EXPECT_EQ(m_fired, (Moments{100, 1100, 2100}));
  });
}

TEST_F(Timer, KillingAnUnknownIdDoesNothing) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    timer.KillTimer(6);
    Sleep(110);
    EXPECT_EQ(m_fired, Moments{100});
  });
}

TEST_F(Timer, AKilledTimerFiresNoMore) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    SleepUntil(150);
    timer.KillTimer(5);
    EXPECT_EQ(m_world.Elapsed(), 150);
    SleepUntil(1000);
    EXPECT_EQ(m_fired, Moments{100});
  });
}

TEST_F(Timer, AKillDoesNotWaitForARunningCallbackWhichComesToItsEnd) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [this](int32_t) {
      Sleep(500);
      m_fired.push_back(m_world.Elapsed());
    });
    SleepUntil(200);
    timer.KillTimer(5);
    EXPECT_EQ(m_world.Elapsed(), 200);
    SleepUntil(2000);
    EXPECT_EQ(m_fired, Moments{600});
  });
}

TEST_F(Timer, AKillFollowedAtOnceByASetGivesANewTimer) {
  Run([this](CTimer& timer) {
    Moments old;
    timer.SetTimer(5, 100, [&](int32_t) { old.push_back(m_world.Elapsed()); });
    SleepUntil(50);
    timer.KillTimer(5);
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    SleepUntil(300);
    EXPECT_EQ(old, Moments());
    EXPECT_EQ(m_fired, (Moments{150, 250}));
  });
}

TEST_F(Timer, AnIdIsFreeWhileItsOldCallbackStillRuns) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [this](int32_t) { Sleep(1000); });
    SleepUntil(150);
    timer.KillTimer(5);
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    timer.KillTimer(5);
    EXPECT_EQ(timer.SetTimer(5, 200, Note()), 1);
    SleepUntil(400);
    EXPECT_EQ(m_fired, Moments{350});
  });
}

TEST_F(Timer, AKillFromInsideTheCallbackLeavesNoSecondFiring) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [&](int32_t id) {
      timer.KillTimer(id);
      Sleep(350);  // further firings are due by then
      m_fired.push_back(m_world.Elapsed());
    });
    SleepUntil(2000);
    EXPECT_EQ(m_fired, Moments{450});
  });
}

TEST_F(Timer, ACallbackMayArmItsOwnIdAnew) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [&](int32_t id) {
      timer.KillTimer(id);
      m_fired.push_back(m_world.Elapsed());
      EXPECT_EQ(timer.SetTimer(id, 250, Note()), 1);
    });
    SleepUntil(700);
    EXPECT_EQ(m_fired, (Moments{100, 350, 600}));
  });
}

TEST_F(Timer, FiringsDuringACallbackCollapseIntoOne) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [this](int32_t) {
      m_fired.push_back(m_world.Elapsed());
      if (m_fired.size() == 1) Sleep(350);
    });
    SleepUntil(620);
    EXPECT_EQ(m_fired, (Moments{100, 450, 500, 600}));
  });
}

TEST_F(Timer, ASlowCallbackHoldsUpNoOtherTimer) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, [this](int32_t) { Sleep(10000); });
    timer.SetTimer(6, 100, Note());
    SleepUntil(310);
    EXPECT_EQ(m_fired, (Moments{100, 200, 300}));
  });
}

TEST_F(Timer, ATimerThatIsNeverKilledFiresUntilTheServiceGoes) {
  m_world.Run([this] {
    {
      CTimer timer(m_runtime, nullptr);
      timer.SetTimer(5, 60000, Note());
      Sleep(10 * 60000 + 1);
    }
    EXPECT_EQ(m_fired.size(), 10u);
    Sleep(10 * 60000);
    EXPECT_EQ(m_fired.size(), 10u);
  });
}

TEST_F(Timer, TheEndCutsOffACallbackThatIsRunning) {
  m_world.Run([this] {
    {
      CTimer timer(m_runtime, nullptr);
      timer.SetTimer(5, 100, [this](int32_t) {
        Sleep(10000);
        m_fired.push_back(m_world.Elapsed());
      });
      Sleep(150);
    }
    EXPECT_EQ(m_world.Elapsed(), 150);
    Sleep(20000);
    EXPECT_EQ(m_fired, Moments());
  });
}

TEST_F(Timer, TheEndTakesTimersThatWereKilledAndStillRun) {
  m_world.Run([this] {
    {
      CTimer timer(m_runtime, nullptr);
      timer.SetTimer(5, 100, [this](int32_t) {
        Sleep(10000);
        m_fired.push_back(m_world.Elapsed());
      });
      Sleep(150);
      timer.KillTimer(5);
    }
    Sleep(20000);
    EXPECT_EQ(m_fired, Moments());
  });
}

TEST_F(Timer, NoTimerIsSetOnceAllHaveEnded) {
  Run([this](CTimer& timer) {
    timer.SetTimer(5, 100, Note());
    timer.EndAll();
    EXPECT_EQ(timer.SetTimer(6, 100, Note()), 0);
    EXPECT_EQ(timer.ChangeTimer(5, 100), 0);
    Sleep(1000);
    EXPECT_EQ(m_fired, Moments());
  });
}

TEST_F(Timer, ACallbackThatSetsTimersAsTheServiceGoesLeavesNoneBehind) {
  for (uint64_t seed = 0; seed < 50; ++seed) {
    CVirtualWorld world(seed);
    int fired = 0;
    world.Run([&] {
      {
        CTimer timer(world.runtime, nullptr);
        timer.SetTimer(1, 100, [&](int32_t) {
          for (int32_t id = 2; id < 6; ++id) timer.SetTimer(id, 10, [&fired](int32_t) { ++fired; });
        });
        world.runtime.Sleep(Milliseconds(100));
      }
      const int atTheEnd = fired;
      world.runtime.Sleep(Milliseconds(1000));
      EXPECT_EQ(fired, atTheEnd) << seed;
    });
  }
}

TEST_F(Timer, ATimerThatWaitsForAThreadAsTheServiceGoesNeverBegins) {
  Run([this](CTimer& timer) {
    m_runtime.failures = 1;
    int32_t result = -1;
    const auto setter =
        m_world.runtime.CreateThread(L"setter", [&] { result = timer.SetTimer(5, 1, Note()); });
    setter->Resume();
    Sleep(5);  // its first try has failed, the next comes at 10
    timer.EndAll();
    m_world.runtime.Wait(*setter, std::nullopt);
    EXPECT_EQ(result, 0);
    Sleep(50);
    EXPECT_EQ(m_fired, Moments{});
  });
}

TEST_F(Timer, ATimerWhoseHandlesCantBeHadLeavesItsIdFree) {
  Run([this](CTimer& timer) {
    m_runtime.hasTimers = false;
    EXPECT_THROW(timer.SetTimer(5, 100, Note()), CPlatformError);
    timer.KillTimer(5);
    EXPECT_EQ(timer.ChangeTimer(5, 10), 0);
    m_runtime.hasTimers = true;
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    Sleep(150);
    EXPECT_EQ(m_fired, Moments{100});
  });
}

TEST_F(Timer, AThreadIsTriedForSixTimesTenMillisecondsApart) {
  Run([this](CTimer& timer) {
    m_runtime.failures = 5;
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    EXPECT_EQ(m_world.Elapsed(), 50);
    EXPECT_EQ(m_failures, std::vector<std::wstring>());
    SleepUntil(160);
    EXPECT_EQ(m_fired, Moments{150});
  });
}

TEST_F(Timer, WithoutAThreadTheFailureIsReportedAndOneIsSaidAllTheSame) {
  Run([this](CTimer& timer) {
    m_runtime.failures = 6;
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    EXPECT_EQ(m_world.Elapsed(), 50);
    EXPECT_EQ(m_failures,
              std::vector<std::wstring>{L"Win32 API function 'CreateThread' fails!\r\n\r\nErrorCode : 8"});
    Sleep(1000);
    EXPECT_EQ(m_fired, Moments());
  });
}

TEST_F(Timer, TheReportTellsThePlatformsDescription) {
  Run([this](CTimer& timer) {
    m_runtime.failures = 6;
    m_runtime.error = {.code = 1450, .description = L"No resources."};
    timer.SetTimer(5, 100, Note());
    EXPECT_EQ(m_failures,
              std::vector<std::wstring>{L"Win32 API function 'CreateThread' fails!\r\n\r\nErrorCode : "
                                        L"1450\r\nDecription : No resources."});
  });
}

TEST_F(Timer, AnIdThatGotNoThreadIsFree) {
  Run([this](CTimer& timer) {
    m_runtime.failures = 6;
    timer.SetTimer(5, 100, Note());
    EXPECT_EQ(timer.ChangeTimer(5, 100), 0);
    EXPECT_EQ(timer.SetTimer(5, 100, Note()), 1);
    SleepUntil(160);
    EXPECT_EQ(m_fired, Moments{150});
  });
}

}  // namespace
}  // namespace iorder::test

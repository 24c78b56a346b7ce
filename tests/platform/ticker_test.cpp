#include "platform/ticker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace iorder {
namespace {

using namespace std::chrono_literals;

TEST(Ticker, CallsAgainAndAgainUntilItGoes) {
  std::atomic<int> calls = 0;
  {
    const CTicker ticker(1ms, [&] { ++calls; });
    while (calls < 3) std::this_thread::sleep_for(1ms);
  }
  const int after = calls;
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(calls, after);
}

TEST(Ticker, GoesAtOnceWhateverItsPeriod) {
  std::atomic<int> calls = 0;
  const auto begin = std::chrono::steady_clock::now();
  {
    const CTicker ticker(1h, [&] { ++calls; });
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 1min);
  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace iorder

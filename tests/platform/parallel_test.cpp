#include "platform/parallel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace iorder {
namespace {

TEST(Parallel, CallsEachIndexOnce) {
  for (const size_t jobs : {1u, 3u, 100u}) {
    std::mutex mutex;
    std::vector<size_t> seen;
    RunParallel(50, jobs, [&](size_t index) {
      const std::lock_guard lock(mutex);
      seen.push_back(index);
    });
    std::sort(seen.begin(), seen.end());
    std::vector<size_t> all(50);
    std::iota(all.begin(), all.end(), 0u);
    EXPECT_EQ(seen, all);
  }
}

TEST(Parallel, OneJobGoesInOrder) {
  std::vector<size_t> seen;
  RunParallel(5, 1, [&](size_t index) { seen.push_back(index); });
  EXPECT_EQ(seen, (std::vector<size_t>{0, 1, 2, 3, 4}));
}

TEST(Parallel, NothingToDoCallsNothing) {
  RunParallel(0, 4, [](size_t) { FAIL(); });
}

TEST(Parallel, AnExceptionEndsTheWorkAndComesBack) {
  for (const size_t jobs : {1u, 4u}) {
    std::atomic<int> calls = 0;
    EXPECT_THROW(RunParallel(1'000'000, jobs,
                             [&](size_t) {
                               ++calls;
                               throw std::runtime_error("no");
                             }),
                 std::runtime_error);
    EXPECT_LE(calls, static_cast<int>(jobs));
  }
}

}  // namespace
}  // namespace iorder

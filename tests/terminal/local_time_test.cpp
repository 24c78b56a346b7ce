#include "terminal/local_time.h"

#include <gtest/gtest.h>

namespace iorder::testing {
namespace {

TEST(LocalTime, ADateAsANumberIsItsMidnight) {
  EXPECT_EQ(MidnightOf(20240229), ParseLocalTime("2024-02-29T00:00:00"));
  EXPECT_EQ(MidnightOf(99991231), ParseLocalTime("9999-12-31T00:00:00"));
}

TEST(LocalTime, ANumberThatIsNoDayHasNoMidnight) {
  for (const int64_t date : {int64_t{0}, int64_t{-20240229}, int64_t{20230229}, int64_t{20241301},
                             int64_t{20240100}, int64_t{100000101}, INT64_MAX, INT64_MIN}) {
    EXPECT_FALSE(MidnightOf(date)) << date;
  }
}

}  // namespace
}  // namespace iorder::testing

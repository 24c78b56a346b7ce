#include "records/wrapping.h"

#include <gtest/gtest.h>

#include <limits>

namespace iorder::testing {
namespace {

constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
constexpr int64_t kMost = std::numeric_limits<int64_t>::max();

TEST(Wrapping, WithinTheRangeNothingWraps) {
  EXPECT_EQ(7, WrappedSum(3, 4));
  EXPECT_EQ(-1, WrappedDifference(3, 4));
  EXPECT_EQ(int64_t{-12}, WrappedProduct(int64_t{-3}, int64_t{4}));
  EXPECT_EQ(-12, WrappedProduct(-3, 4));
  EXPECT_EQ(1, WrappedDistance(3, 4));
  EXPECT_EQ(7, WrappedDistance(3, -4));
}

TEST(Wrapping, BeyondTheRangeNumbersGoRound) {
  EXPECT_EQ(kLeast, WrappedSum(kMost, 1));
  EXPECT_EQ(0, WrappedSum(kLeast, kLeast));
  EXPECT_EQ(kMost, WrappedDifference(kLeast, 1));
  EXPECT_EQ(int64_t{-2}, WrappedProduct(kMost, int64_t{2}));
  EXPECT_EQ(0, WrappedProduct(kLeast, int64_t{100}));
  EXPECT_EQ(-2, WrappedProduct(std::numeric_limits<int32_t>::max(), 2));
}

TEST(Wrapping, TheDistanceOfTheSmallestNumberFromZeroIsItself) {
  EXPECT_EQ(kLeast, WrappedDistance(kLeast, 0));
}

TEST(Wrapping, TheDistanceOfTheSmallestNumberFromAnyOtherIsAboveZero) {
  EXPECT_EQ(kMost, WrappedDistance(kLeast, 1));
  EXPECT_EQ(kMost, WrappedDistance(kLeast, -1));
  EXPECT_EQ(kMost - 4, WrappedDistance(kLeast, 5));
  EXPECT_EQ(0, WrappedDistance(kLeast, kLeast));
}

TEST(Wrapping, ADistanceBeyondTheRangeGoesRound) {
  EXPECT_EQ(446744073709551616, WrappedDistance(9000000000000000000, -9000000000000000000));
  EXPECT_EQ(446744073709551616, WrappedDistance(-9000000000000000000, 9000000000000000000));
  EXPECT_EQ(1, WrappedDistance(kLeast, kMost));
}

}  // namespace
}  // namespace iorder::testing

#include "platform/random.h"

#include <gtest/gtest.h>

#include <array>

namespace iorder::test {
namespace {

TEST(Random, TheStreamIsThatOfThePublishedGenerator) {
  // xoshiro256** with its state from splitmix64 of 0.
  CRandom random(0);
  EXPECT_EQ(random.Next(), 11091344671253066420u);
}

TEST(Random, BelowGivesEveryNumberAboutAsOften) {
  CRandom random(1);
  std::array<int, 6> counts{};
  for (int i = 0; i < 60000; ++i) ++counts.at(random.Below(6));
  for (const int count : counts) EXPECT_NEAR(count, 10000, 500);
  EXPECT_EQ(random.Below(1), 0u);
}

TEST(Random, GuidsAreTheSameForASeedEverywhere) {
  CRandom random(0);
  const Guid guid = DrawGuid(random);
  EXPECT_EQ(guid.bytes[0], 0xB4);  // the lowest byte of the first number
  EXPECT_EQ(guid.bytes[7], 0x99);
}

}  // namespace
}  // namespace iorder::test

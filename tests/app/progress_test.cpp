#include "app/progress.h"

#include <gtest/gtest.h>

namespace iorder {
namespace {

TEST(Progress, DurationsReadAsTheyAreSaid) {
  EXPECT_EQ(DurationText(0), "0 s");
  EXPECT_EQ(DurationText(59.4), "59 s");
  EXPECT_EQ(DurationText(59.6), "1 min 00 s");
  EXPECT_EQ(DurationText(185), "3 min 05 s");
  EXPECT_EQ(DurationText(7620), "2 h 07 min");
}

TEST(Progress, CountsAreCutToThreeFiguresOrSo) {
  EXPECT_EQ(CountText(950), "950");
  EXPECT_EQ(CountText(12400), "12.4 k");
  EXPECT_EQ(CountText(3050000), "3.05 M");
}

}  // namespace
}  // namespace iorder

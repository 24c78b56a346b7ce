#include "app/local_moment.h"

#include <gtest/gtest.h>

namespace iorder {
namespace {

TEST(LocalMoment, IsWrittenAsItIsRead) {
  for (const char* text : {"2024-02-29T08:45:00", "1999-12-31T23:59:59.999", "2024-03-04T00:00:00.001"}) {
    ASSERT_TRUE(ParseLocalMoment(text)) << text;
    EXPECT_EQ(ToText(*ParseLocalMoment(text)), text);
  }
  EXPECT_EQ(ParseLocalMoment("2024-03-04T08:45"), ParseLocalMoment("2024-03-04T08:45:00.000"));
  EXPECT_EQ(TimeOfDayText(*ParseLocalMoment("2024-03-04T08:45")), "08:45:00");
}

TEST(LocalMoment, OtherTextsAreNone) {
  for (const char* text : {"", "2024-03-04", "2024-02-30T08:45", "2024-13-01T08:45", "2024-03-04T24:00",
                           "2024-03-04T08:60", "2024-03-04T08:45:60", "2024-03-04T08:45:00.1",
                           "2024-03-04T08:45 ", "24-03-04T08:45", "2024-03-04 08:45", "2024-03-04T8:45"}) {
    EXPECT_FALSE(ParseLocalMoment(text)) << text;
  }
}

}  // namespace
}  // namespace iorder

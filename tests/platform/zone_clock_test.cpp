#include "platform/zone_clock.h"

#include <gtest/gtest.h>

namespace iorder::test {
namespace {

TEST(ZoneClock, TaipeiIsEightHoursAhead) {
  const CZoneClock zone("Asia/Taipei");
  const DateTime local{2021, 7, 4, 22, 3, 4, 5, 678};
  const TimePoint time = zone.FromLocal(local);
  EXPECT_EQ(CZoneClock::ToUtc(time), (DateTime{2021, 7, 3, 21, 19, 4, 5, 678}));
  EXPECT_EQ(zone.ToLocal(time), local);
  EXPECT_EQ(CZoneClock::FromUtc(CZoneClock::ToUtc(time)), time);
}

TEST(ZoneClock, SummerTimeChangesTheOffsetAtItsMoment) {
  const CZoneClock zone("America/New_York");
  // 2021-03-14 07:00 UTC: from 01:59:59 the clock goes to 03:00.
  const TimePoint change = CZoneClock::FromUtc({2021, 3, 0, 14, 7, 0, 0, 0});
  EXPECT_EQ(zone.ToLocal(change - Milliseconds(1)), (DateTime{2021, 3, 0, 14, 1, 59, 59, 999}));
  EXPECT_EQ(zone.ToLocal(change), (DateTime{2021, 3, 0, 14, 3, 0, 0, 0}));
  EXPECT_EQ(zone.ToLocal(change - Milliseconds(1)), (DateTime{2021, 3, 0, 14, 1, 59, 59, 999}));
}

TEST(ZoneClock, AnHourThatComesTwiceIsTheEarlierOne) {
  const CZoneClock zone("America/New_York");
  EXPECT_EQ(zone.FromLocal({2021, 11, 0, 7, 1, 30, 0, 0}),
            CZoneClock::FromUtc({2021, 11, 0, 7, 5, 30, 0, 0}));
}

TEST(ZoneClock, AnHourThatNeverComesIsTheMomentOfTheChange) {
  const CZoneClock zone("America/New_York");
  EXPECT_EQ(zone.FromLocal({2021, 3, 0, 14, 2, 30, 0, 0}), CZoneClock::FromUtc({2021, 3, 0, 14, 7, 0, 0, 0}));
}

TEST(ZoneClock, EveryHourOfAYearGoesThereAndBack) {
  const CZoneClock zone("Europe/Berlin");
  const TimePoint begin = CZoneClock::FromUtc({2021, 1, 0, 1, 0, 0, 0, 0});
  const TimePoint twice = CZoneClock::FromUtc({2021, 10, 0, 31, 1, 0, 0, 0});  // the second 02:00 of that day
  for (int hour = 0; hour < 365 * 24; ++hour) {
    const TimePoint time = begin + std::chrono::hours(hour);
    EXPECT_EQ(zone.FromLocal(zone.ToLocal(time)), time == twice ? time - std::chrono::hours(1) : time);
  }
}

}  // namespace
}  // namespace iorder::test

#include "app/import/taifex_series.h"

#include <gtest/gtest.h>

#include "app/import/taifex_session.h"

namespace iorder {
namespace {

using namespace std::chrono_literals;
using std::chrono::year_month_day;

using Kind = TaifexSeries::Kind;

TaifexExpiry Expiry(std::string_view text) {
  return TaifexExpiry::Parse(text).value();
}

TEST(TaifexSeries, MonthSeriesCarryTheProductTX) {
  EXPECT_EQ((TaifexSeries{Kind::kOption, Expiry("202108"), ToScaled(17000), 'C'}.Symbol()),
            "ND.O.TWF.TX.202108.C.17000");
  EXPECT_EQ((TaifexSeries{Kind::kFuture, Expiry("202108"), 0, 0}.Symbol()), "ND.F.TWF.TX.202108");
}

TEST(TaifexSeries, WeeklySeriesCarryTheWeekInTheProduct) {
  const TaifexSeries put{Kind::kOption, Expiry("202107W4"), ToScaled(17000), 'P'};
  EXPECT_EQ(put.Symbol(), "ND.O.TWF.TX4.202107.P.17000");
  EXPECT_EQ(put.UnderlyingProductSymbol(), "ND.F.TWF.MX4");
  EXPECT_EQ((TaifexSeries{Kind::kFuture, Expiry("202107W4"), 0, 0}.Symbol()), "ND.F.TWF.MX4.202107");
}

TEST(TaifexSeries, AStrikeMayHavePlaces) {
  EXPECT_EQ((TaifexSeries{Kind::kOption, Expiry("202108"), ToScaled(172.5), 'C'}.Symbol()),
            "ND.O.TWF.TX.202108.C.172.5");
}

TEST(TaifexSeries, TheLastTradingDayIsTheThirdWednesdayOrThatOfTheWeek) {
  EXPECT_EQ(Expiry("202108").LastTradingDay(), year_month_day(2021y / 8 / 18));
  EXPECT_EQ(Expiry("202109").LastTradingDay(), year_month_day(2021y / 9 / 15));
  EXPECT_EQ(Expiry("202107W1").LastTradingDay(), year_month_day(2021y / 7 / 7));
  EXPECT_EQ(Expiry("202107W4").LastTradingDay(), year_month_day(2021y / 7 / 28));
  EXPECT_EQ(Expiry("202109W5").LastTradingDay(), year_month_day(2021y / 9 / 29));
}

TEST(TaifexSeries, AnythingElseIsNoExpiry) {
  for (const char* text : {"", "2021", "20210", "202100", "202113", "2021O8", "202108W", "202108W0",
                           "202108W6", "202108F1", "202108/202109", "-20210", "202107W5", "202107W44"}) {
    EXPECT_FALSE(TaifexExpiry::Parse(text)) << text;
  }
}

TEST(TaifexSession, BothEndsBelongToIt) {
  const std::chrono::local_days friday(2021y / 7 / 23);
  const TaifexSessionDate day{TaifexSession::kDay, friday};
  const TaifexSessionDate night{TaifexSession::kNight, friday};
  EXPECT_EQ(TaifexSessionDate::Of(friday + 8h + 45min), day);
  EXPECT_EQ(TaifexSessionDate::Of(friday + 13h + 45min), day);
  EXPECT_EQ(TaifexSessionDate::Of(friday + 15h), night);
  EXPECT_EQ(TaifexSessionDate::Of(friday + 29h), night);
  EXPECT_EQ(TaifexSessionDate::Of(friday + 5h)->date, friday - std::chrono::days(1));
  for (const auto outside : {5h + 1s, 8h + 44min + 59s, 13h + 45min + 1s, 14h + 59min + 59s}) {
    EXPECT_FALSE(TaifexSessionDate::Of(friday + outside)) << outside.count();
  }
}

}  // namespace
}  // namespace iorder

#include "reference/trading_calendar.h"

#include <gmock/gmock.h>

#include "platform/platform_error.h"
#include "tests/reference/reference_fixture.h"

namespace iorder::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kHoliday = L"Holiday";
constexpr const wchar_t* kFuture = L"ND.F.TWF.TX.202403";

/// A calendar in a place and at a moment; a run of the clock is the body of a test.
class CPlace {
 public:
  explicit CPlace(const DateTime& start, const std::string& zone = "Asia/Taipei")
      : m_runtime({.zone = zone, .start = start, .seed = 0}) {
    RecordChange change;
    change.name = kHoliday;
    m_bus.Apply(change);
  }

  CPlace& Set(const std::wstring& date, const std::wstring& text) {
    RecordChange change;
    change.name = kHoliday;
    change.fields = {Field(date, text)};
    m_bus.Apply(change);
    return *this;
  }

  int32_t Count(int32_t end, int32_t start = 0, const std::wstring& symbol = kFuture) {
    int32_t count = -1;
    Run([&] { count = m_calendar.GetTradingDays(symbol, end, start); });
    return count;
  }

  bool IsHoliday(const std::wstring& date, const std::wstring& symbol = kFuture) {
    bool result = false;
    Run([&] { result = m_calendar.IsHoliday(date, symbol, m_host.OpenRecord(kHoliday, nullptr).get()); });
    return result;
  }

  int64_t CalendarDays(int64_t end) {
    int64_t days = -1;
    Run([&] { days = GetCalendarDays(m_runtime, end); });
    return days;
  }

 private:
  void Run(const std::function<void()>& body) { EXPECT_EQ(m_runtime.Run(body), std::vector<std::string>()); }

  CVirtualRuntime m_runtime;
  CEmbeddedBus m_bus{m_runtime, false};
  CRecordingHost m_host{m_runtime, m_bus};
  CTradingCalendar m_calendar{m_host};
};

/// A Wednesday morning.
CPlace OnWednesday() {
  return CPlace({2024, 3, 0, 6, 9, 0, 0, 0});
}

// Whether a date trades. 2024-03-06 is a Wednesday, 2024-03-09 a Saturday.

TEST(IsHoliday, AnOrdinaryDateTradesOnWeekdaysOnly) {
  CPlace place = OnWednesday();
  for (const wchar_t* date : {L"20240304", L"20240305", L"20240306", L"20240307", L"20240308"}) {
    EXPECT_FALSE(place.IsHoliday(date));
  }
  EXPECT_TRUE(place.IsHoliday(L"20240309"));
  EXPECT_TRUE(place.IsHoliday(L"20240310"));
}

TEST(IsHoliday, BeforeTheFirstKnownDateEveryDayTrades) {
  CPlace place = OnWednesday();
  EXPECT_FALSE(place.Set(L"19981227", L"-,GLC.TWF").IsHoliday(L"19981227")) << "a Sunday with a field";
  EXPECT_TRUE(place.IsHoliday(L"19990102")) << "a Saturday";
  EXPECT_TRUE(place.Set(L"19990101", L"-,GLC.TWF").IsHoliday(L"19990101"));
  EXPECT_FALSE(place.IsHoliday(L""));
  EXPECT_FALSE(place.IsHoliday(L"none"));
}

TEST(IsHoliday, AMinusClosesAListedExchange) {
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,GLC.TWF").IsHoliday(L"20240306"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,GLC.SSE|GLC.TWF|GLC.HKF").IsHoliday(L"20240306"));
}

TEST(IsHoliday, AMinusClosesAListedProductAndNoOther) {
  CPlace place = OnWednesday();
  place.Set(L"20240306", L"-,GLC.TWF.TX");
  EXPECT_TRUE(place.IsHoliday(L"20240306", L"ND.F.TWF.TX.202403"));
  EXPECT_FALSE(place.IsHoliday(L"20240306", L"ND.F.TWF.TE.202403"));
  EXPECT_FALSE(place.IsHoliday(L"20240306", L"ND.F.TWF.TXF.202403"));
}

TEST(IsHoliday, AMinusLeavesAnUnmentionedExchangeAlone) {
  CPlace place = OnWednesday();
  place.Set(L"20240306", L"-,GLC.SSE").Set(L"20240309", L"-,GLC.SSE");
  EXPECT_FALSE(place.IsHoliday(L"20240306"));
  EXPECT_TRUE(place.IsHoliday(L"20240309")) << "a weekend stays one";
}

TEST(IsHoliday, APlusOpensAListedExchangeOnASaturday) {
  EXPECT_FALSE(OnWednesday().Set(L"20240309", L"+,GLC.TWF").IsHoliday(L"20240309"));
  EXPECT_FALSE(OnWednesday().Set(L"20240309", L"+,GLC.TWF.TX").IsHoliday(L"20240309"));
}

TEST(IsHoliday, APlusClosesEveryUnmentionedExchange) {
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"+,GLC.SSE").IsHoliday(L"20240306"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"+,").IsHoliday(L"20240306"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"+").IsHoliday(L"20240306"));
}

TEST(IsHoliday, APlusForAnotherProductOfTheExchangeLeavesTheDateOrdinary) {
  CPlace place = OnWednesday();
  place.Set(L"20240306", L"+,GLC.TWF.TE").Set(L"20240309", L"+,GLC.TWF.TE");
  EXPECT_FALSE(place.IsHoliday(L"20240306"));
  EXPECT_TRUE(place.IsHoliday(L"20240309"));
}

TEST(IsHoliday, AnExchangeIsMentionedAnywhereInTheListButListedByWholeEntriesOnly) {
  // TWF stands in TWFX: so the list is about it, but doesn't name it.
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"+,GLC.TWFX").IsHoliday(L"20240306"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,GLC.TWFX").IsHoliday(L"20240306"));
  EXPECT_TRUE(OnWednesday().Set(L"20240309", L"+,XTWF").IsHoliday(L"20240309"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,TWF").IsHoliday(L"20240306"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,glc.TWF").IsHoliday(L"20240306"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-, GLC.TWF").IsHoliday(L"20240306"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,GLC.TWF.TX.202403").IsHoliday(L"20240306"));
}

TEST(IsHoliday, EmptyEntriesAreSkipped) {
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,||GLC.SSE||GLC.TWF|").IsHoliday(L"20240306"));
}

TEST(IsHoliday, OnlyTheSecondPartOfTheTextIsTheList) {
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,GLC.SSE,GLC.TWF").IsHoliday(L"20240306"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,GLC.TWF,GLC.SSE").IsHoliday(L"20240306"));
}

TEST(IsHoliday, AnySignButThoseTwoLeavesTheDateOrdinary) {
  for (const wchar_t* sign : {L"*", L"", L"--", L"+ ", L" -", L"-+", L"GLC.TWF"}) {
    CPlace place = OnWednesday();
    place.Set(L"20240306", std::wstring(sign) + L",GLC.TWF")
        .Set(L"20240309", std::wstring(sign) + L",GLC.TWF");
    EXPECT_FALSE(place.IsHoliday(L"20240306")) << ::testing::PrintToString(sign);
    EXPECT_TRUE(place.IsHoliday(L"20240309")) << ::testing::PrintToString(sign);
  }
}

TEST(IsHoliday, AnUnderlyingsExchangeIsLookedUpWithoutItsPrefix) {
  CPlace place = OnWednesday();
  place.Set(L"20240306", L"-,GLC.TWF");
  EXPECT_TRUE(place.IsHoliday(L"20240306", L"ND.F.U_TWF.TX.202403"));
  EXPECT_FALSE(place.IsHoliday(L"20240306", L"ND.F.u_TWF.TX.202403"));
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"-,GLC.U_TWF").IsHoliday(L"20240306", L"ND.F.U_TWF.TX"))
      << "the list mentions the exchange, but has no entry of it";
}

TEST(IsHoliday, AShortSymbolHasNoExchangeAndEveryListMentionsThat) {
  EXPECT_FALSE(OnWednesday().Set(L"20240306", L"+,GLC.TWF").IsHoliday(L"20240306", L"ND.F"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,GLC.").IsHoliday(L"20240306", L"ND.F"));
  EXPECT_TRUE(OnWednesday().Set(L"20240306", L"-,GLC.TWF.").IsHoliday(L"20240306", L"ND.F.TWF"));
}

TEST(IsHoliday, WithoutTheRecordEveryDayTrades) {
  CVirtualRuntime runtime({.zone = "Asia/Taipei", .start = {2024, 3, 0, 6, 9, 0, 0, 0}, .seed = 0});
  CEmbeddedBus bus(runtime, false);
  CRecordingHost host(runtime, bus);
  EXPECT_FALSE(CTradingCalendar(host).IsHoliday(L"20240309", kFuture, nullptr));
}

// Counting.

TEST(TradingDays, BothEndsCount) {
  EXPECT_EQ(3, OnWednesday().Count(20240308));
  EXPECT_EQ(3, OnWednesday().Count(20240310)) << "the weekend doesn't";
  EXPECT_EQ(5, OnWednesday().Count(20240308, 20240304));
}

TEST(TradingDays, TodayCountsIfItTradesWhateverTheTime) {
  EXPECT_EQ(1, OnWednesday().Count(20240306));
  EXPECT_EQ(1, CPlace({2024, 3, 0, 6, 0, 0, 0, 0}).Count(20240306));
  EXPECT_EQ(1, CPlace({2024, 3, 0, 6, 23, 59, 59, 999}).Count(20240306));
  EXPECT_EQ(0, CPlace({2024, 3, 0, 9, 9, 0, 0, 0}).Count(20240309)) << "a Saturday";
  EXPECT_EQ(0, OnWednesday().Set(L"20240306", L"-,GLC.TWF").Count(20240306));
}

TEST(TradingDays, SpecialDatesCountByTheRecord) {
  CPlace place = OnWednesday();
  place.Set(L"20240307", L"-,GLC.TWF").Set(L"20240309", L"+,GLC.TWF").Set(L"20240311", L"+,GLC.SSE");
  EXPECT_EQ(4, place.Count(20240312)) << "Wednesday, Friday, Saturday, Tuesday";
}

TEST(TradingDays, AnEndUpTo2020GivesNothingAndAsksForNothing) {
  CVirtualRuntime runtime({.zone = "Asia/Taipei", .start = {2019, 12, 0, 2, 9, 0, 0, 0}, .seed = 0});
  CEmbeddedBus bus(runtime, false);
  CRecordingHost host(runtime, bus);
  CTradingCalendar calendar(host);
  EXPECT_EQ(runtime.Run([&] {
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, 20200101, 0));
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, 20191231, 20191201));
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, 0, 0));
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, -1, 0));
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, 20191399, 0)) << "what can't be a date isn't looked at";
    EXPECT_THAT(host.log, IsEmpty()) << "the record, which isn't there, is not asked for";
    EXPECT_EQ(32, calendar.GetTradingDays(kFuture, 20200102, 0));
    EXPECT_EQ(1U, host.log.size());
  }),
            std::vector<std::string>());
}

TEST(TradingDays, AnEndBeforeTheStartGivesNothingAndThatIsKept) {
  CPlace place = OnWednesday();
  EXPECT_EQ(0, place.Count(20240305));
  EXPECT_EQ(0, place.Count(20240301, 20240304));
  EXPECT_EQ(0, place.Set(L"20240305", L"+,GLC.TWF").Count(20240305));
}

TEST(TradingDays, ACountIsKeptForItsProductStartAndEnd) {
  CPlace place = OnWednesday();
  EXPECT_EQ(3, place.Count(20240308));
  place.Set(L"20240307", L"-,GLC.TWF");
  EXPECT_EQ(3, place.Count(20240308));
  EXPECT_EQ(3, place.Count(20240308, 20240306)) << "today and its date are the same start";
  EXPECT_EQ(3, place.Count(20240308, 0, L"ND.F.TWF.TX.202403.C.18000")) << "the first five tokens tell";
  EXPECT_EQ(2, place.Count(20240308, 0, L"ND.F.TWF.TX.202404"));
  EXPECT_EQ(3, place.Count(20240308, 20240305));
  EXPECT_EQ(3, place.Count(20240311));
}

TEST(TradingDays, AStartNotAboveZeroIsToday) {
  EXPECT_EQ(3, OnWednesday().Count(20240308, -20240304));
}

TEST(TradingDays, ADayBehindItsMonthCountsOnButTheWalkEndsAtTheNumber) {
  // The 30th of February is the 1st of March, whose number lies above.
  EXPECT_EQ(2, CPlace({2024, 2, 0, 28, 9, 0, 0, 0}).Count(20240230));
  EXPECT_EQ(4, OnWednesday().Count(20240306, 20240230)) << "from Friday, 1 March";
}

TEST(TradingDays, ADayOfTheWalkHas24HoursWhereTheClockChangesToo) {
  // On Sunday, 10 March, New York's clock goes on an hour: from 23:00 of Saturday one comes to Monday.
  CPlace place({2024, 3, 0, 6, 9, 0, 0, 0}, "America/New_York");
  place.Set(L"20240310", L"+,GLC.TWF");
  EXPECT_EQ(2, place.Count(20240311, 20240308)) << "the open Sunday is passed over";
  EXPECT_EQ(5, place.Count(20240311)) << "from the morning on no day is";
}

// Without the record.

class TradingDaysWithoutRecord : public ReferenceTest {};

TEST_F(TradingDaysWithoutRecord, DaysAreCountedPlainlyAndThatIsLogged) {
  Run([this] {
    CTradingCalendar calendar(m_host);
    EXPECT_EQ(15, calendar.GetTradingDays(kFuture, 20240318, 0)) << "weekends too";
    EXPECT_EQ(15, calendar.GetTradingDays(kFuture, 20240318, 20240304));
    EXPECT_EQ(5, calendar.GetTradingDays(L"ND.F", 20240308, 20240304));
    EXPECT_EQ(5, calendar.GetTradingDays(L"ND.F.TWF.TX.202403.C.18000", 20240308, 20240304));
  });
  EXPECT_THAT(m_host.log, ElementsAre(L"Holiday is null:ND.F.TWF.TX.202403,ND.F.TWF.TX.202403",
                                      L"Holiday is null:ND.F,ND.F...",
                                      L"Holiday is null:ND.F.TWF.TX.202403.C.18000,ND.F.TWF.TX.202403"));
}

TEST_F(TradingDaysWithoutRecord, TheCountStaysWhenTheRecordComes) {
  Run([this] {
    CTradingCalendar calendar(m_host);
    EXPECT_EQ(8, calendar.GetTradingDays(kFuture, 20240311, 0));
    SetField(kHoliday, L"20240305", std::wstring(L"-,GLC.TWF"));
    EXPECT_EQ(8, calendar.GetTradingDays(kFuture, 20240311, 0));
    EXPECT_EQ(6, calendar.GetTradingDays(kFuture, 20240312, 0));
  });
  EXPECT_EQ(1U, m_host.log.size());
}

TEST_F(TradingDaysWithoutRecord, WhatIsLeftOfADayCountsByTheHour) {
  Run([this] {
    CTradingCalendar morning(m_host);
    EXPECT_EQ(2, morning.GetTradingDays(kFuture, 20240305, 0)) << "39 hours";
    Runtime().Sleep(std::chrono::hours(14) + std::chrono::minutes(20));
    CTradingCalendar evening(m_host);
    EXPECT_EQ(2, evening.GetTradingDays(kFuture, 20240305, 0)) << "at 23:00:00 just a day";
    Runtime().Sleep(std::chrono::seconds(1));
    CTradingCalendar late(m_host);
    EXPECT_EQ(1, late.GetTradingDays(kFuture, 20240305, 0)) << "a second less";
  });
}

TEST_F(TradingDaysWithoutRecord, AnEndBeforeTheStartCountsBackwards) {
  Run([this] {
    CTradingCalendar calendar(m_host);
    EXPECT_EQ(0, calendar.GetTradingDays(kFuture, 20240303, 20240304));
    EXPECT_EQ(-2, calendar.GetTradingDays(kFuture, 20240301, 20240304));
    EXPECT_EQ(1, calendar.GetTradingDays(L"ND.F.TWF.TE.202403", 20240303, 0)) << "ten hours are no day";
  });
}

// Dates that can't be.

template <typename Work>
uint32_t CodeOf(const Work& work) {
  try {
    work();
  } catch (const CPlatformError& error) {
    return error.Code();
  }
  return 0;
}

class BadDates : public ReferenceTest {
 protected:
  uint32_t EndCode(int32_t end) {
    return CodeOf([&] { m_calendar.GetTradingDays(kFuture, end, 0); });
  }
  uint32_t StartCode(int32_t start) {
    return CodeOf([&] { m_calendar.GetTradingDays(kFuture, 20240304, start); });
  }
  uint32_t CalendarCode(int64_t end) {
    return CodeOf([&] { GetCalendarDays(m_runtime, end); });
  }
  uint32_t HolidayCode(const std::wstring& date) {
    return CodeOf([&] {
      const auto record = m_host.OpenRecord(kHoliday, nullptr);
      m_calendar.IsHoliday(date, kFuture, record.get());
    });
  }

  CTradingCalendar m_calendar{m_host};
};

TEST_F(BadDates, WhatIsNoDateIsAFailure) {
  SetField(kHoliday, L"x", std::wstring());
  Run([this] {
    for (const int32_t date : {20240001, 20241301, 20240300, 20240332, 2147483647}) {
      EXPECT_EQ(error_code::kFailure, EndCode(date)) << date;
      EXPECT_EQ(error_code::kFailure, StartCode(date)) << date;
      EXPECT_EQ(error_code::kFailure, CalendarCode(date)) << date;
      EXPECT_EQ(error_code::kFailure, HolidayCode(std::to_wstring(date))) << date;
    }
    for (const int32_t date : {1, 101, 18991231}) EXPECT_EQ(error_code::kFailure, StartCode(date)) << date;
    for (const int64_t date : {int64_t{0}, int64_t{-20240304}, std::numeric_limits<int64_t>::min()})
      EXPECT_EQ(error_code::kFailure, CalendarCode(date)) << date;
  });
}

TEST_F(BadDates, WhatTheCalendarDoesntHoldIsABadArgument) {
  SetField(kHoliday, L"x", std::wstring());
  Run([this] {
    EXPECT_EQ(error_code::kInvalidArgument, EndCode(30010101));
    EXPECT_EQ(error_code::kInvalidArgument, StartCode(19691231));
    EXPECT_EQ(error_code::kInvalidArgument, StartCode(19000101));
    EXPECT_EQ(error_code::kInvalidArgument, CalendarCode(999990101));
    EXPECT_EQ(error_code::kInvalidArgument, HolidayCode(L"30010101"));
    EXPECT_EQ(0U, StartCode(19700101));
    EXPECT_EQ(0U, EndCode(30001231));
  });
}

TEST_F(BadDates, ABadDateLeavesNothingBehind) {
  Run([this] {
    EXPECT_EQ(error_code::kFailure, EndCode(20241301));
    EXPECT_EQ(2, m_calendar.GetTradingDays(kFuture, 20240305, 0));
  });
  EXPECT_EQ(1U, m_host.log.size());
}

// Calendar days.

TEST(CalendarDays, AreWholeDaysToTheEndOfTheDate) {
  EXPECT_EQ(0, OnWednesday().CalendarDays(20240306));
  EXPECT_EQ(1, OnWednesday().CalendarDays(20240307));
  EXPECT_EQ(14, OnWednesday().CalendarDays(20240320));
  EXPECT_EQ(366, CPlace({2024, 1, 0, 1, 0, 0, 0, 0}).CalendarDays(20250101));
}

TEST(CalendarDays, TheMidnightThatBeginsTheDateIsNoWholeDayBeforeItsEnd) {
  EXPECT_EQ(0, CPlace({2024, 3, 0, 6, 0, 0, 0, 0}).CalendarDays(20240306));
  EXPECT_EQ(1, CPlace({2024, 3, 0, 5, 23, 59, 59, 0}).CalendarDays(20240306));
  EXPECT_EQ(1, CPlace({2024, 3, 0, 5, 23, 59, 59, 999}).CalendarDays(20240306)) << "whole seconds";
}

TEST(CalendarDays, APastDateCountsBackwardsCutTowardsZero) {
  EXPECT_EQ(0, OnWednesday().CalendarDays(20240305));
  EXPECT_EQ(-1, OnWednesday().CalendarDays(20240304));
}

TEST(CalendarDays, ADayThatTheClockCutsShortIsNone) {
  // From Saturday noon to the end of Sunday, 10 March, are 35 hours in New York, and 36 in Taipei.
  EXPECT_EQ(1, CPlace({2024, 3, 0, 9, 12, 0, 0, 0}, "America/New_York").CalendarDays(20240310));
  EXPECT_EQ(0, CPlace({2024, 3, 0, 9, 23, 59, 59, 0}, "America/New_York").CalendarDays(20240310));
  EXPECT_EQ(1, CPlace({2024, 3, 0, 9, 23, 59, 59, 0}).CalendarDays(20240310));
}

}  // namespace
}  // namespace iorder::testing

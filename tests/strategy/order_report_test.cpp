#include "strategy/order_report.h"

#include <gtest/gtest.h>

#include "strategy/order_result.h"
#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

constexpr ScaledValue kOne = 10'000'000'000;

COrderReport Report(int32_t positionEffect, const wchar_t* side, int32_t execType = exec_type::kFilled) {
  COrderReport report;
  report.lPositionEffect = positionEffect;
  report.strSide = side;
  report.lExecType = execType;
  return report;
}

class OrderReport : public ReferenceTest {
 protected:
  /// The report that a record with these fields is.
  COrderReport Read(const std::vector<FieldChange>& fields) {
    RecordChange change;
    change.name = L"REPORT";
    change.clear = true;
    change.fields = fields;
    m_bus.Apply(change);
    COrderReport report;
    Run([&] { report = COrderReport::Read(*m_host.OpenRecord(L"REPORT", nullptr)); });
    return report;
  }
  std::wstring StampOf(const wchar_t* userKey2) {
    return Read({Field(L"UserKey2", std::wstring(userKey2))}).strBatchStamp;
  }
};

TEST_F(OrderReport, EachFieldIsReadUnderItsName) {
  const COrderReport report =
      Read({Field(L"UserKey2", std::wstring(L"K@1")), Field(L"LevelKey", std::wstring(L"R7")),
            Field(L"Symbol", std::wstring(L"S")), Field(L"Side", std::wstring(L"B")), Field(L"ExecType", 6),
            Field(L"PositionEffect", 1), Field(L"Price", 2 * kOne), Field(L"AvgPrice", 3 * kOne),
            Field(L"OrderType", 25), Field(L"SendQty", 11), Field(L"CumQty", 12), Field(L"LeavesQty", 13),
            Field(L"RecFillQty", 14)});
  EXPECT_EQ(L"K", report.strStrategyKey);
  EXPECT_EQ(L"1", report.strBatchStamp);
  EXPECT_EQ(L"R7", report.strReportID);
  EXPECT_EQ(L"S", report.strSymbol);
  EXPECT_EQ(L"B", report.strSide);
  EXPECT_EQ(6, report.lExecType);
  EXPECT_EQ(1, report.lPositionEffect);
  EXPECT_EQ(2 * kOne, report.llPrice);
  EXPECT_EQ(3 * kOne, report.llAvgPrice);
  EXPECT_EQ(25, report.lOrderType);
  EXPECT_EQ(11, report.lSendQty);
  EXPECT_EQ(12, report.lCumQty);
  EXPECT_EQ(13, report.lLeavesQty);
  EXPECT_EQ(14, report.lRecFillQty);
}

TEST_F(OrderReport, WhatIsMissingHasNoValue) {
  const COrderReport report = Read({});
  EXPECT_EQ(L"", report.strStrategyKey);
  EXPECT_EQ(L"", report.strReportID);
  EXPECT_EQ(L"", report.strSide);
  for (const int32_t number : {report.lExecType, report.lPositionEffect, report.lOrderType, report.lSendQty,
                               report.lCumQty, report.lLeavesQty, report.lRecFillQty}) {
    EXPECT_EQ(NoInt, number);
  }
  EXPECT_EQ(NoValue, report.llPrice);
  EXPECT_EQ(NoValue, report.llAvgPrice);
}

TEST_F(OrderReport, TheStampStandsBetweenTheFirstTwoAtSigns) {
  EXPECT_EQ(L"090000001", StampOf(L"KEY@090000001"));
  EXPECT_EQ(L"090000001", StampOf(L"KEY@090000001@more@yet"));
  EXPECT_EQ(L"", StampOf(L"KEY"));
  EXPECT_EQ(L"", StampOf(L"KEY@"));
  EXPECT_EQ(L"", StampOf(L"KEY@@090000001"));
  EXPECT_EQ(L"7", StampOf(L"@7"));
}

TEST(StrategyKey, StandsInFrontOfTheFirstAtSign) {
  EXPECT_EQ(L"KEY", StrategyKeyOf(L"KEY@1@2"));
  EXPECT_EQ(L"KEY", StrategyKeyOf(L"KEY"));
  EXPECT_EQ(L"", StrategyKeyOf(L"@1"));
  EXPECT_EQ(L"", StrategyKeyOf(L""));
}

TEST(OrderAction, ThePositionEffectDecidesWhereItSaysOpenOrClose) {
  EXPECT_EQ(order_action::kOpen, Report(0, L"S").Action(false));
  EXPECT_EQ(order_action::kClose, Report(1, L"B").Action(false));
}

TEST(OrderAction, TheSideDecidesWhereThePositionEffectSaysNeither) {
  for (const int32_t effect : {2, 7, -1, NoInt}) {
    EXPECT_EQ(order_action::kOpen, Report(effect, L"1").Action(false));
    EXPECT_EQ(order_action::kOpen, Report(effect, L"B").Action(false));
    EXPECT_EQ(order_action::kClose, Report(effect, L"2").Action(false));
    EXPECT_EQ(order_action::kClose, Report(effect, L"S").Action(false));
    for (const wchar_t* unknown : {L"X", L"", L"s", L"SELL", L"22"}) {
      EXPECT_EQ(order_action::kOpen, Report(effect, unknown).Action(false)) << unknown;
    }
  }
}

TEST(OrderAction, OnlyACancellationThatWasAskedForAloudIsACancel) {
  for (const int32_t effect : {0, 1}) {
    EXPECT_EQ(order_action::kCancel, Report(effect, L"B", exec_type::kCancelled).Action(true));
    EXPECT_NE(order_action::kCancel, Report(effect, L"B", exec_type::kCancelled).Action(false));
    EXPECT_NE(order_action::kCancel, Report(effect, L"B", exec_type::kFilled).Action(true));
    EXPECT_NE(order_action::kCancel, Report(effect, L"B", exec_type::kWorking).Action(true));
  }
}

TEST(OrderResult, AnOpenOrderIsReportedCancelledOrRejected) {
  for (int32_t type = -1; type <= 30; ++type) {
    const int32_t expected = type == 8 ? 3 : type == 10 || type == 21 ? -1 : 1;
    EXPECT_EQ(expected, ResultOf(order_action::kOpen, type)) << type;
  }
  EXPECT_EQ(1, ResultOf(order_action::kOpen, NoInt));
}

TEST(OrderResult, ACloseOrderIsFilledWorksOrHasEnded) {
  for (int32_t type = -1; type <= 30; ++type) {
    const int32_t expected = type == 3 ? 2 : type == 0 || type == 6 ? 1 : -2;
    EXPECT_EQ(expected, ResultOf(order_action::kClose, type)) << type;
  }
  EXPECT_EQ(-2, ResultOf(order_action::kClose, NoInt));
}

TEST(OrderResult, ACancelIsCancelled) {
  EXPECT_EQ(3, ResultOf(order_action::kCancel, exec_type::kCancelled));
}

TEST(ExecType, WhatWorksWhatIsFilledAndWhatIsRejectedAreApart) {
  for (int32_t type = -1; type <= 30; ++type) {
    EXPECT_EQ(type == 0 || type == 6, exec_type::IsWorking(type)) << type;
    EXPECT_EQ(type >= 3 && type <= 7, exec_type::IsFill(type)) << type;
    EXPECT_EQ(type == 10 || type == 21, exec_type::IsRejection(type)) << type;
  }
}

TEST(ExecType, AChildEndsInSixStatesAndFailsInTwoOfThem) {
  for (int32_t type = -1; type <= 30; ++type) {
    const bool ends = type == 2 || type == 3 || type == 5 || type == 7 || type == 8 || type == 10;
    EXPECT_EQ(ends, exec_type::EndsChild(type)) << type;
    EXPECT_EQ(type == 5 || type == 8, exec_type::FailsChild(type)) << type;
  }
}

TEST(OrderReportTypes, TheTypes1And25AreMarketOrders) {
  for (int32_t type = -1; type <= 30; ++type) {
    COrderReport report;
    report.lOrderType = type;
    EXPECT_EQ(type == 1 || type == 25, report.IsMarketOrder()) << type;
  }
}

TEST(OrderReportTypes, AFillIsCompleteWhenAllOfItHasCome) {
  COrderReport report;
  report.lCumQty = 3;
  for (const int32_t received : {NoInt, 0, 2, 3, 4}) {
    report.lRecFillQty = received;
    EXPECT_EQ(received == 3, report.IsFillComplete()) << received;
  }
}

}  // namespace
}  // namespace iorder::testing

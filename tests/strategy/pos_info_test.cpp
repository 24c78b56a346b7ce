#include "strategy/pos_info.h"

#include <gtest/gtest.h>

#include <limits>

namespace iorder::testing {
namespace {

constexpr ScaledValue kOne = 10'000'000'000;

COrderReport Open(int32_t filled, ScaledValue average, int32_t leaves = 0) {
  COrderReport report;
  report.lCumQty = filled;
  report.llAvgPrice = average;
  report.lLeavesQty = leaves;
  return report;
}

COrderReport Close(const wchar_t* id, int32_t filled, ScaledValue average, int32_t leaves = 0) {
  COrderReport report = Open(filled, average, leaves);
  report.strReportID = id;
  return report;
}

/// What closed orders come to, and what of it is kept.
void ExpectClosed(const CPosInfo& position, const CPosInfo::CClosed& closed, int64_t quantity,
                  ScaledValue average) {
  EXPECT_EQ(quantity, closed.llQty);
  EXPECT_EQ(average, closed.llAvgPrice);
  EXPECT_EQ(quantity, position.lCloseQty);
}

TEST(PosInfo, ANewPositionHoldsNothingAndHasNoPrices) {
  const CPosInfo position;
  EXPECT_EQ(0, position.NetPosition());
  EXPECT_EQ(0, position.lLeavesQty);
  EXPECT_EQ(NoValue, position.llAvgPrice);
  EXPECT_EQ(NoValue, position.llPrice);
  EXPECT_EQ(NoPrice, position.dbProfit);
  EXPECT_EQ(NoPrice, position.dbWeight);
  EXPECT_FALSE(position.bDirty);
  EXPECT_EQ(NoValue, position.llCloseAvgPrice);
  EXPECT_EQ(0, position.llCloseQtyTotal);
}

TEST(PosInfo, AnOpenReportWithAFillSetsQuantityAndPrice) {
  CPosInfo position;
  position.TakeOpenReport(Open(3, 10 * kOne, 2));
  EXPECT_EQ(3, position.lCumQty);
  EXPECT_EQ(10 * kOne, position.llAvgPrice);
  EXPECT_EQ(2, position.lLeavesQty);
  position.TakeOpenReport(Open(5, NoValue));
  EXPECT_EQ(5, position.lCumQty) << "the last one counts, they aren't added up";
  EXPECT_EQ(NoValue, position.llAvgPrice) << "in any case";
}

TEST(PosInfo, AnOpenReportWithoutAFillSetsOnlyWhatStillWorks) {
  CPosInfo position;
  position.TakeOpenReport(Open(3, 10 * kOne, 2));
  for (const int32_t none : {0, -1, NoInt}) {
    position.TakeOpenReport(Open(none, 12 * kOne, 1));
    EXPECT_EQ(3, position.lCumQty);
    EXPECT_EQ(10 * kOne, position.llAvgPrice);
    EXPECT_EQ(1, position.lLeavesQty);
  }
}

TEST(CloseFold, ThreeOrdersComeToTheirAverageOneBehindTheOther) {
  CPosInfo position;
  position.lCumQty = 9;
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, 10 * kOne)), 2, 10 * kOne);
  ExpectClosed(position, position.FoldClose(Close(L"2", 1, 16 * kOne)), 3, 12 * kOne);
  ExpectClosed(position, position.FoldClose(Close(L"3", 1, 12 * kOne)), 4, 12 * kOne);
  EXPECT_EQ(4, position.llCloseQtyTotal);
  EXPECT_EQ(12 * kOne, position.llCloseAvgPrice);
  EXPECT_EQ(5, position.NetPosition());
}

TEST(CloseFold, EachStepIsTruncated) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10));
  EXPECT_EQ(10, position.FoldClose(Close(L"2", 1, 11)).llAvgPrice) << "31 / 3";
  EXPECT_EQ(10, position.FoldClose(Close(L"3", 1, 13)).llAvgPrice) << "43 / 4, not 44 / 4";
}

TEST(CloseFold, ATruncatedAverageBelowZeroGoesTowardsZero) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, -10));
  EXPECT_EQ(-10, position.FoldClose(Close(L"2", 1, -11)).llAvgPrice) << "-31 / 3";
}

TEST(CloseFold, AFinishedOrderCountsOnceHoweverOftenItIsReported) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne));
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, 10 * kOne)), 2, 10 * kOne);
  ExpectClosed(position, position.FoldClose(Close(L"1", 5, 99 * kOne)), 2, 10 * kOne);
  EXPECT_EQ(2, position.llCloseQtyTotal);
}

TEST(CloseFold, OnlyTheLastFinishedOrderIsKnownAgain) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne));
  position.FoldClose(Close(L"2", 1, 10 * kOne));
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, 10 * kOne)), 5, 10 * kOne);
}

TEST(CloseFold, AnOrderThatWorksIsAForecastThatIsNotKept) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne));
  ExpectClosed(position, position.FoldClose(Close(L"2", 1, 16 * kOne, 1)), 3, 12 * kOne);
  EXPECT_EQ(2, position.llCloseQtyTotal);
  EXPECT_EQ(10 * kOne, position.llCloseAvgPrice);
  EXPECT_EQ(L"1", position.strCloseReportID);
  ExpectClosed(position, position.FoldClose(Close(L"2", 2, 18 * kOne)), 4, 14 * kOne);
  EXPECT_EQ(L"2", position.strCloseReportID);
}

TEST(CloseFold, AFinishedOrderThatWorksAgainIsAForecastOnTopOfItself) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne));
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, 10 * kOne, 1)), 4, 10 * kOne);
  EXPECT_EQ(2, position.llCloseQtyTotal);
}

TEST(CloseFold, WhatALeavesQuantityIsNotZeroIsAForecastBelowZeroToo) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne, -1));
  EXPECT_EQ(0, position.llCloseQtyTotal);
  EXPECT_EQ(2, position.lCloseQty);
}

TEST(CloseFold, ALargePositionDoesNotOverflow) {
  CPosInfo position;
  const ScaledValue price = 20'000 * kOne;
  position.FoldClose(Close(L"1", 1'000'000, price));
  ExpectClosed(position, position.FoldClose(Close(L"2", 1'000'000, 2 * price)), 2'000'000, price / 2 * 3);
}

TEST(CloseFold, WithoutATotalTheAverageStays) {
  CPosInfo position;
  position.FoldClose(Close(L"1", 2, 10 * kOne));
  const CPosInfo::CClosed closed = position.FoldClose(Close(L"2", -2, 30 * kOne, 1));
  EXPECT_EQ(0, closed.llQty);
  EXPECT_EQ(10 * kOne, closed.llAvgPrice);
  EXPECT_EQ(2, position.lCloseQty) << "only a quantity above 0 is taken";
}

TEST(CloseFold, WithoutAPriceThereIsNoAverage) {
  CPosInfo position;
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, NoValue)), 2, NoValue);
}

TEST(CloseFold, WhatWasSoldWithoutAPriceKeepsTheAverageUnknown) {
  CPosInfo position;
  ExpectClosed(position, position.FoldClose(Close(L"1", 2, NoValue)), 2, NoValue);
  ExpectClosed(position, position.FoldClose(Close(L"2", 1, 10 * kOne)), 3, NoValue);
}

TEST(PositionValue, IsTheWayFromTheAverageTimesLotsAndWeight) {
  CPosInfo position;
  position.lCumQty = 4;
  position.lCloseQty = 1;
  position.llAvgPrice = 25 * kOne / 10;
  EXPECT_NEAR(75.0, position.ProfitAt(3 * kOne, 50), 1e-9);
  EXPECT_NEAR(-75.0, position.ProfitAt(2 * kOne, 50), 1e-9);
  EXPECT_EQ(0.0, position.ProfitAt(25 * kOne / 10, 50));
}

TEST(PositionValue, NeedsPriceAverageAndSomethingHeld) {
  CPosInfo position;
  position.lCumQty = 2;
  position.llAvgPrice = kOne;
  EXPECT_TRUE(position.CanBeValued(kOne));
  EXPECT_FALSE(position.CanBeValued(NoValue));
  position.lCloseQty = 2;
  EXPECT_FALSE(position.CanBeValued(kOne));
  position.lCloseQty = 3;
  EXPECT_FALSE(position.CanBeValued(kOne));
  position.lCloseQty = 1;
  position.llAvgPrice = NoValue;
  EXPECT_FALSE(position.CanBeValued(kOne));
}

TEST(PositionCost, IsWhatWasPaidForClosedLotsToo) {
  CPosInfo position;
  EXPECT_EQ(0.0, position.CostAt(50)) << "nothing was opened";
  position.lCumQty = 4;
  EXPECT_EQ(0.0, position.CostAt(50)) << "at no known price";
  position.llAvgPrice = 25 * kOne / 10;
  position.lCloseQty = 3;
  EXPECT_NEAR(500.0, position.CostAt(50), 1e-8);
}

}  // namespace
}  // namespace iorder::testing

#include "engine/profit_limit.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace iorder::test {
namespace {

using Line = std::optional<std::wstring>;

CPnLLimits Profit(int64_t value, double percent = -1.0) {
  CPnLLimits limits;
  limits.m_lProfitEnable = 1;
  limits.m_llProfitValue = value;
  limits.m_dbProfitValueP = percent;
  return limits;
}

CPnLLimits Loss(int64_t value, double percent = -1.0) {
  CPnLLimits limits;
  limits.m_lLossEnable = 1;
  limits.m_llLossValue = value;
  limits.m_dbLossValueP = percent;
  return limits;
}

bool IsReached(const CPnLLimits& limits, double cost, double profit) {
  return ReachedLimit(L"T", limits, cost, profit).has_value();
}

TEST(ProfitLimit, EachSideAndKindHasItsLine) {
  EXPECT_EQ(Line(L"[OpenLottery] CalPositionProfit.P. strStrategyTag=T, dbTotalPnL=75.250000, "
                 L"llProfitValue=75."),
            ReachedLimit(L"T", Profit(75), 1000, 75.25));
  EXPECT_EQ(Line(L"[OpenLottery] CalPositionProfit.PP. strStrategyTag=T, dbTotalPnLP=12.500000, "
                 L"dbProfitValueP=12.250000."),
            ReachedLimit(L"T", Profit(1, 12.25), 1000, 125));
  EXPECT_EQ(
      Line(L"[OpenLottery] CalPositionProfit.L. strStrategyTag=T, dbTotalPnL=75.250000, llLossValue=75."),
      ReachedLimit(L"T", Loss(75), 1000, -75.25));
  EXPECT_EQ(Line(L"[OpenLottery] CalPositionProfit.LP. strStrategyTag=T, dbTotalPnLP=12.500000, "
                 L"dbLossValueP=12.250000."),
            ReachedLimit(L"T", Loss(1, 12.25), 1000, -125));
}

TEST(ProfitLimit, NewLimitsAreNeverReached) {
  EXPECT_FALSE(IsReached({}, 1000, 1e9));
  EXPECT_FALSE(IsReached({}, 1000, -1e9));
}

TEST(ProfitLimit, AnAmountThatIsEqualledIsReached) {
  EXPECT_TRUE(IsReached(Profit(75), 1000, 75));
  EXPECT_FALSE(IsReached(Profit(75), 1000, 74.999));
  EXPECT_TRUE(IsReached(Loss(75), 1000, -75));
  EXPECT_FALSE(IsReached(Loss(75), 1000, -74.999));
}

TEST(ProfitLimit, APercentageThatIsEqualledIsReached) {
  EXPECT_TRUE(IsReached(Profit(-1, 12.5), 1000, 125));
  EXPECT_FALSE(IsReached(Profit(-1, 12.5), 1000, 124.8));
  EXPECT_TRUE(IsReached(Loss(-1, 12.5), 1000, -125));
  EXPECT_FALSE(IsReached(Loss(-1, 12.5), 1000, -124.8));
}

TEST(ProfitLimit, PercentagesAreComparedToTwoPlaces) {
  EXPECT_TRUE(IsReached(Profit(-1, 12.509), 1000, 125)) << "12.50 of each";
  EXPECT_FALSE(IsReached(Profit(-1, 12.51), 1000, 125));
}

TEST(ProfitLimit, APercentageTakesThePlaceOfTheAmount) {
  EXPECT_FALSE(IsReached(Profit(1, 10), 100, 5));
  EXPECT_FALSE(IsReached(Loss(1, 10), 100, -5));
}

TEST(ProfitLimit, APercentageWithoutHundredthsLeavesTheAmount) {
  for (const double percent : {0.004, 0.0, -1.0, -50.0}) {
    EXPECT_TRUE(IsReached(Profit(1, percent), 100, 5)) << percent;
    EXPECT_FALSE(IsReached(Profit(6, percent), 100, 5)) << percent;
    EXPECT_TRUE(IsReached(Loss(1, percent), 100, -5)) << percent;
    EXPECT_FALSE(IsReached(Loss(6, percent), 100, -5)) << percent;
  }
  EXPECT_FALSE(IsReached(Profit(1, 6), 100, 5)) << "and with hundredths it doesn't";
}

TEST(ProfitLimit, AnAmountMustBeAboveZero) {
  for (const int64_t value : {int64_t{0}, int64_t{-1}, int64_t{-1000}}) {
    EXPECT_FALSE(IsReached(Profit(value), 1000, 1e9));
    EXPECT_FALSE(IsReached(Loss(value), 1000, -1e9));
  }
}

TEST(ProfitLimit, EachSideIsWatchedOnlyIfItIsEnabled) {
  CPnLLimits limits = Profit(1);
  limits.m_llLossValue = 1;
  EXPECT_FALSE(IsReached(limits, 1000, -100));
  limits.m_lProfitEnable = 0;
  EXPECT_FALSE(IsReached(limits, 1000, 100));
  limits.m_lLossEnable = -7;
  EXPECT_TRUE(IsReached(limits, 1000, -100)) << "whatever isn't 0";
  EXPECT_FALSE(IsReached(limits, 1000, 100));
}

TEST(ProfitLimit, WithoutACostOfAHundredthNothingIsReached) {
  for (const double cost : {0.004, 0.0099, 0.0, -0.5, -1000.0}) {
    EXPECT_FALSE(IsReached(Profit(1), cost, 100)) << cost;
    EXPECT_FALSE(IsReached(Profit(-1, 1), cost, 100)) << cost;
    EXPECT_FALSE(IsReached(Loss(1), cost, -100)) << cost;
  }
  EXPECT_TRUE(IsReached(Profit(1), 0.0101, 100));
}

TEST(ProfitLimit, WithoutHundredthsOfAProfitNothingIsReached) {
  EXPECT_FALSE(IsReached(Profit(-1, 1), 0.05, 0.009));
  EXPECT_TRUE(IsReached(Profit(-1, 1), 0.05, 0.0101));
  EXPECT_FALSE(IsReached(Loss(-1, 1), 0.05, -0.009));
  EXPECT_TRUE(IsReached(Loss(-1, 1), 0.05, -0.0101));
}

TEST(ProfitLimit, ANumberThatIsNotFiniteReachesNothing) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(IsReached(Profit(1), none, 100));
  EXPECT_FALSE(IsReached(Profit(1), 1000, none));
}

}  // namespace
}  // namespace iorder::test

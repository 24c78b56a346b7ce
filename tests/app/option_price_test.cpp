#include "app/option_price.h"

#include <gtest/gtest.h>

#include <cmath>

namespace iorder {
namespace {

/// The same premium from the mathematics library.
double Reference(double forward, double strike, double deviation) {
  const double d = (forward - strike) / deviation;
  const double distribution = std::erfc(-d / std::sqrt(2.0)) / 2;
  const double density = std::exp(-d * d / 2) / std::sqrt(2 * std::acos(-1.0));
  return deviation * (d * distribution + density);
}

TEST(OptionPrice, AgreesWithTheNormalModel) {
  for (double strike = 500; strike <= 1500; strike += 7.3) {
    EXPECT_NEAR(CallPremium(1000, strike, 100), Reference(1000, strike, 100), 0.003) << strike;
  }
}

TEST(OptionPrice, CallLessPutIsForwardLessStrike) {
  for (double strike = 500; strike <= 1500; strike += 12.5) {
    EXPECT_DOUBLE_EQ(CallPremium(1000, strike, 80) - PutPremium(1000, strike, 80), 1000 - strike);
  }
}

TEST(OptionPrice, TickGrowsWithThePrice) {
  EXPECT_EQ(OptionTick(99), 1);
  EXPECT_EQ(OptionTick(100), 5);
  EXPECT_EQ(OptionTick(500), 10);
  EXPECT_EQ(OptionTick(5000), 50);
  EXPECT_EQ(OptionTick(10000), 100);
}

TEST(OptionPrice, RoundsToTheNearestTickAndNeverToNothing) {
  EXPECT_EQ(RoundToOptionTick(0.0), 1);
  EXPECT_EQ(RoundToOptionTick(9.94), 99);
  EXPECT_EQ(RoundToOptionTick(12.3), 125);
  EXPECT_EQ(RoundToOptionTick(12.2), 120);
  EXPECT_EQ(RoundToOptionTick(70.4), 700);
  EXPECT_EQ(RoundToOptionTick(502.6), 5050);
  EXPECT_EQ(RoundToOptionTick(1234), 12300);
}

}  // namespace
}  // namespace iorder

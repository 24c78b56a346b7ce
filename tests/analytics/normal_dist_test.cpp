#include "analytics/normal_dist.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "tests/analytics/exact_price.h"

namespace iorder {
namespace {

constexpr double kUpperBound = CNormalDist::kUpperBound;
constexpr double kScale = CNormalDist::kScale;

std::string Digits(long double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.15Lg", number);
  return text.data();
}

/// The double below.
double Below(double x) {
  return std::nextafter(x, -HUGE_VAL);
}

const CNormalDist kNormal;

TEST(NormalDistTable, HasTheTellingRowsDigitByDigit) {
  struct {
    size_t i;
    const char* x;
    const char* y;
  } const rows[] = {
      {0, "0", "0.5"},
      {1, "0.00181829180367124", "0.500725393078878"},
      {2, "0.00363658360734247", "0.501450783759477"},
      {100, "0.181829180367124", "0.572141608192548"},
      {550, "1.00006049201918", "0.841359382923532"},
      {1100, "2.00012098403836", "0.977256399306759"},
      {2000, "3.63658360734247", "0.999861861001781"},
      {2860, "5.20031455849973", "0.999999900524235"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.x, Digits(CNormalDist::kTable[row.i].x)) << row.i;
    EXPECT_EQ(row.y, Digits(CNormalDist::kTable[row.i].y)) << row.i;
  }
}

TEST(NormalDistTable, EveryRowIsTheDistributionRoundedTo15Digits) {
  ASSERT_EQ(2861U, std::size(CNormalDist::kTable));
  for (size_t i = 0; i < std::size(CNormalDist::kTable); ++i) {
    const long double x = static_cast<long double>(i) / 549.966731401936L;
    EXPECT_EQ(std::stod(Digits(x)), CNormalDist::kTable[i].x) << i;
    EXPECT_EQ(std::stod(Digits(ExactCdf(x))), CNormalDist::kTable[i].y) << i;
  }
}

TEST(NormalDist, IsAHalfAtZeroOfEitherSign) {
  EXPECT_EQ(0.5, kNormal.Cdf(0.0));
  EXPECT_EQ(0.5, kNormal.Cdf(-0.0));
}

TEST(NormalDist, IsExactlyOneFromTheUpperBoundOn) {
  EXPECT_EQ(1.0, kNormal.Cdf(kUpperBound));
  EXPECT_EQ(1.0, kNormal.Cdf(6.0));
  EXPECT_EQ(1.0, kNormal.Cdf(1e300));
  EXPECT_NEAR(0.9999999, kNormal.Cdf(Below(kUpperBound)), 1e-9);
  EXPECT_LT(kNormal.Cdf(Below(kUpperBound)), 1.0);
}

TEST(NormalDist, IsExactlyZeroFromTheLowerBoundDown) {
  EXPECT_EQ(0.0, kNormal.Cdf(-kUpperBound));
  EXPECT_EQ(0.0, kNormal.Cdf(-6.0));
  EXPECT_EQ(0.0, kNormal.Cdf(-1e300));
  EXPECT_GT(kNormal.Cdf(-Below(kUpperBound)), 0.0);
}

TEST(NormalDist, TheLastArgumentBelowTheBoundStillHasARowBehindItsOwn) {
  EXPECT_EQ(2859, static_cast<int32_t>(Below(kUpperBound) * kScale));
}

TEST(NormalDist, OnAGridPointItIsTheRowsValue) {
  for (size_t i = 0; i + 1 < CNormalDist::kRows; ++i) {
    const CNormalDist::Row& row = CNormalDist::kTable[i];
    EXPECT_DOUBLE_EQ(row.y, kNormal.CdfNonNegative(row.x)) << i;
  }
}

TEST(NormalDist, BetweenTwoRowsItIsTheStraightLine) {
  const CNormalDist::Row* const row = CNormalDist::kTable + 700;
  const double x = row[0].x + 0.25 / kScale;
  EXPECT_NEAR(0.75 * row[0].y + 0.25 * row[1].y, kNormal.Cdf(x), 1e-15);
  // An exact function would give another value.
  EXPECT_GT(std::abs(static_cast<double>(ExactCdf(x)) - kNormal.Cdf(x)), 1e-9);
}

TEST(NormalDist, InterpolatesInTheStatedOrder) {
  for (double x = 0.0001; x < kUpperBound; x += 0.000317) {
    const auto i = static_cast<int32_t>(x * kScale);
    const volatile double w = (x - CNormalDist::kTable[i].x) * kScale;
    const volatile double left = (1 - w) * CNormalDist::kTable[i].y;
    const volatile double right = w * CNormalDist::kTable[i + 1].y;
    EXPECT_EQ(left + right, kNormal.CdfNonNegative(x)) << x;
    EXPECT_EQ(1 - (left + right), kNormal.Cdf(-x)) << x;
  }
}

TEST(NormalDist, TheTwoTailsAddUpToOne) {
  for (double x = 0; x < 6; x += 0.00071) EXPECT_NEAR(1.0, kNormal.Cdf(x) + kNormal.Cdf(-x), 2e-16) << x;
}

TEST(NormalDist, IsNeverFurtherOffThanTheCurvatureOfAnInterval) {
  double greatest = 0;
  for (double x = -6; x < 6; x += 0.00001) {
    greatest = std::max(greatest, std::abs(kNormal.Cdf(x) - static_cast<double>(ExactCdf(x))));
  }
  EXPECT_LE(greatest, CNormalDist::kMaxError);
  EXPECT_GT(greatest, 0.999e-7) << "the bound is tight";
}

TEST(NormalDist, NeverFalls) {
  for (double x = -5.3, before = 0; x < 5.3; x += 0.00013) {
    const double value = kNormal.Cdf(x);
    EXPECT_LE(before, value) << x;
    before = value;
  }
}

TEST(NormalDist, ItsParametersDontMoveIt) {
  CNormalDist moved;
  moved.SetParameters(3.0, 4.0);
  EXPECT_EQ(kNormal.Cdf(0.7), moved.Cdf(0.7));
}

}  // namespace
}  // namespace iorder

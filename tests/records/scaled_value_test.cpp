#include "records/scaled_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace iorder {
namespace {

TEST(ScaledValue, KeepsTenDecimalPlaces) {
  EXPECT_EQ(ToScaled(12.5), 125000000000);
  EXPECT_EQ(ToScaled(0.0000000001), 1);
  EXPECT_EQ(ToScaled(-12.5), -125000000000);
  EXPECT_EQ(ToScaled(0.0), 0);
}

TEST(ScaledValue, TakesUpWhatTheMultiplicationLost) {
  // The product is 2999999.9999999995 as a double: without the rounding term one unit would be lost.
  ASSERT_LT(0.0003 * 1e10, 3000000.0);
  EXPECT_EQ(ToScaled(0.0003), 3000000);
  EXPECT_EQ(ToScaled(-0.0003), -3000000);
}

TEST(ScaledValue, TruncatesBeyondTheRoundingTerm) {
  EXPECT_EQ(ToScaled(0.00000000009), 0);
  EXPECT_EQ(ToScaled(0.000000000096), 1);
  EXPECT_EQ(ToScaled(-0.00000000009), 0);
  EXPECT_EQ(ToScaled(-0.000000000096), -1);
}

TEST(ScaledValue, NoPriceAndNoValueMeanEachOther) {
  EXPECT_EQ(ToScaled(NoPrice), NoValue);
  EXPECT_EQ(FromScaled(NoValue), NoPrice);
}

TEST(ScaledValue, WhatDoesNotFitIsNoValue) {
  EXPECT_EQ(ToScaled(1e9), NoValue);
  EXPECT_EQ(ToScaled(-1e9), NoValue);
  EXPECT_EQ(ToScaled(std::nan("")), NoValue);
  EXPECT_EQ(ToScaled(std::numeric_limits<double>::infinity()), NoValue);
}

TEST(ScaledValue, FromScaledAddsItsTermAwayFromZero) {
  EXPECT_EQ(FromScaled(125000000000), 12.5 + 5e-12);
  EXPECT_EQ(FromScaled(-125000000000), -12.5 - 5e-12);
  EXPECT_EQ(FromScaled(1), 1e-10 + 5e-12);
}

TEST(ScaledValue, FromScaledOfZeroIsBelowZero) {
  EXPECT_EQ(FromScaled(0), -5e-12);
}

TEST(ScaledValue, TruncateCutsTowardsZero) {
  EXPECT_EQ(Truncate(1999.9), 1999);
  EXPECT_EQ(Truncate(-1999.9), -1999);
  EXPECT_EQ(Truncate(NoPrice), NoValue);
  EXPECT_EQ(Truncate(-9223372036854775808.0), NoValue);
}

TEST(ScaledValue, ParsesDecimalsExactly) {
  EXPECT_EQ(ParseScaled("12.5"), 125000000000);
  EXPECT_EQ(ParseScaled("+0.0000000001"), 1);
  EXPECT_EQ(ParseScaled("-.5"), -5000000000);
  EXPECT_EQ(ParseScaled("922337203.6854775807"), std::numeric_limits<int64_t>::max());
  EXPECT_EQ(ParseScaled("-922337203.6854775807"), -std::numeric_limits<int64_t>::max());
}

TEST(ScaledValue, ParsesNoOtherText) {
  for (const char* text : {"", ".", "-", "1.00000000001", "1.2.3", "1e5", " 1", "1 ", "922337203.6854775808",
                           "-922337203.6854775808", "99999999999"}) {
    EXPECT_EQ(ParseScaled(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace iorder

#include "terminal/parity_forward.h"

#include <gtest/gtest.h>

namespace iorder::testing {
namespace {

constexpr ScaledValue kOne = 10'000'000'000;

/// A call and a put of one strike that imply the forward; the put costs `put`.
void Add(ChainPrices& prices, int strike, int forward, int put = 100) {
  prices[strike * kOne] = {(forward - strike + put) * kOne, put * kOne};
}

TEST(ParityForward, IsTheStrikePlusCallLessPut) {
  ChainPrices prices;
  Add(prices, 17000, 17250);
  EXPECT_EQ(17250 * kOne, ParityForward(prices));
}

TEST(ParityForward, OneOldPriceDoesNotCarryItAway) {
  ChainPrices prices;
  Add(prices, 17000, 17249);
  Add(prices, 17200, 17250);
  Add(prices, 17300, 17251);
  Add(prices, 17400, 17400);  // old
  EXPECT_EQ(17250 * kOne + kOne / 2, ParityForward(prices));
  Add(prices, 17500, 17252);
  EXPECT_EQ(17251 * kOne, ParityForward(prices));
}

TEST(ParityForward, TheFiveNearestToTheMoneyCount) {
  ChainPrices prices;
  for (const int strike : {17000, 17100, 17200, 17300, 17400}) Add(prices, strike, 17250);
  for (const int strike : {14000, 14100, 14200, 19800, 19900, 20000}) Add(prices, strike, 17500, 3000);
  EXPECT_EQ(17250 * kOne, ParityForward(prices));
}

TEST(ParityForward, ASixthDoesNotCount) {
  ChainPrices prices;
  for (int i = 0; i < 5; ++i) Add(prices, 17240 + 10 * i, 17241 + 10 * i);
  EXPECT_EQ(17261 * kOne, ParityForward(prices));
  Add(prices, 17000, 17290);
  EXPECT_EQ(17261 * kOne, ParityForward(prices));
}

TEST(ParityForward, AStrikeWithOnePriceTellsNothing) {
  ChainPrices prices;
  EXPECT_EQ(NoValue, ParityForward(prices));
  prices[17000 * kOne].call = 300 * kOne;
  prices[17100 * kOne].put = 300 * kOne;
  EXPECT_EQ(NoValue, ParityForward(prices));
  Add(prices, 17200, 17260);
  EXPECT_EQ(17260 * kOne, ParityForward(prices));
}

TEST(ParityForward, AForwardThatIsNotAboveNothingIsNone) {
  ChainPrices prices;
  prices[100 * kOne] = {1 * kOne, 101 * kOne};
  EXPECT_EQ(NoValue, ParityForward(prices));
}

}  // namespace
}  // namespace iorder::testing

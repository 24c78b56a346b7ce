#include "strategy/strike_selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "platform/platform_error.h"

namespace iorder {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Strikes = std::vector<ScaledValue>;

const Strikes kFive{80, 90, 100, 110, 120};

COpenLotteryInfo Flags(const wchar_t* right) {
  COpenLotteryInfo info;
  info.m_strCP = right;
  return info;
}

COpenLotteryInfo InTheMoney(const wchar_t* right, int32_t nearest, int32_t farthest) {
  COpenLotteryInfo info = Flags(right);
  info.m_lIsITM = 1;
  info.m_lITM_D = nearest;
  info.m_lITM_U = farthest;
  return info;
}

COpenLotteryInfo OutOfTheMoney(const wchar_t* right, int32_t nearest, int32_t farthest) {
  COpenLotteryInfo info = Flags(right);
  info.m_lIsOTM = 1;
  info.m_lOTM_D = nearest;
  info.m_lOTM_U = farthest;
  return info;
}

/// The strikes of kFive that a range keeps for calls, and those for puts.
Strikes CallsIn(const CStrikeRange& range) {
  Strikes kept;
  for (const ScaledValue strike : kFive) {
    if (range.KeepsCall(strike)) kept.push_back(strike);
  }
  return kept;
}
Strikes PutsIn(const CStrikeRange& range) {
  Strikes kept;
  for (const ScaledValue strike : kFive) {
    if (range.KeepsPut(strike)) kept.push_back(strike);
  }
  return kept;
}

void ExpectAtTheMoney(const Strikes& strikes, ScaledValue price, int32_t call, int32_t put) {
  const auto atm = FindAtTheMoney(strikes, price);
  ASSERT_TRUE(atm.has_value()) << price;
  EXPECT_EQ(call, atm->call) << price;
  EXPECT_EQ(put, atm->put) << price;
}

TEST(AtTheMoney, APriceAtAStrikeIsThatStrikeForBoth) {
  ExpectAtTheMoney(kFive, 100, 2, 2);
  ExpectAtTheMoney(kFive, 80, 0, 0);
  ExpectAtTheMoney(kFive, 110, 3, 3);
}

TEST(AtTheMoney, BetweenStrikesCallsTakeTheOneAboveAndPutsTheOneBelow) {
  ExpectAtTheMoney(kFive, 101, 3, 2);
  ExpectAtTheMoney(kFive, 81, 1, 0);
  ExpectAtTheMoney(kFive, 119, 4, 3);
}

TEST(AtTheMoney, TheSearchEndsOneShortOfTheHighestStrike) {
  EXPECT_FALSE(FindAtTheMoney(kFive, 120));
  EXPECT_FALSE(FindAtTheMoney(kFive, 121));
}

TEST(AtTheMoney, APriceBelowAllStrikesHasNone) {
  EXPECT_FALSE(FindAtTheMoney(kFive, 79));
  EXPECT_FALSE(FindAtTheMoney(kFive, NoValue));
}

TEST(AtTheMoney, AChainOfLessThanTwoStrikesHasNone) {
  EXPECT_FALSE(FindAtTheMoney({}, 100));
  EXPECT_FALSE(FindAtTheMoney(Strikes{100}, 100));
}

TEST(AtTheMoney, AStrikeWithoutAValueEndsTheSearch) {
  EXPECT_FALSE(FindAtTheMoney(Strikes{100, NoValue, 120, 130}, 120));
}

TEST(SelectionMode, MinusTwoInEitherBoundChoosesTheFlags) {
  COpenLotteryInfo info;
  EXPECT_EQ(SelectionMode::kFlags, SelectionModeOf(info));
  info.m_lStrikeIn = -1;
  EXPECT_EQ(SelectionMode::kFlags, SelectionModeOf(info));
  info.m_lStrikeOut = -1;
  EXPECT_EQ(SelectionMode::kAll, SelectionModeOf(info));
  info.m_lStrikeIn = -2;
  EXPECT_EQ(SelectionMode::kFlags, SelectionModeOf(info));
}

TEST(SelectionMode, OnlyMinusOneInBothKeepsAll) {
  COpenLotteryInfo info;
  info.m_lStrikeIn = -1;
  info.m_lStrikeOut = 0;
  EXPECT_EQ(SelectionMode::kRange, SelectionModeOf(info));
  info.m_lStrikeIn = 0;
  info.m_lStrikeOut = -1;
  EXPECT_EQ(SelectionMode::kRange, SelectionModeOf(info));
  info.m_lStrikeIn = -3;
  EXPECT_EQ(SelectionMode::kRange, SelectionModeOf(info));
}

TEST(KeptByFlags, NoFlagKeepsNothing) {
  EXPECT_THAT(KeptByFlags(kFive, {3, 2}, Flags(L"C")), IsEmpty());
}

TEST(KeptByFlags, AtTheMoneyIsTheIndexOfTheOwnRight) {
  COpenLotteryInfo info = Flags(L"C");
  info.m_lIsATM = 1;
  EXPECT_THAT(KeptByFlags(kFive, {3, 2}, info), ElementsAre(110));
  info.m_strCP = L"P";
  EXPECT_THAT(KeptByFlags(kFive, {3, 2}, info), ElementsAre(100));
}

TEST(KeptByFlags, InTheMoneyIsDownForCallsAndUpForPuts) {
  EXPECT_THAT(KeptByFlags(kFive, {3, 2}, InTheMoney(L"C", 1, 2)), ElementsAre(90, 100));
  EXPECT_THAT(KeptByFlags(kFive, {3, 2}, InTheMoney(L"P", 1, 2)), ElementsAre(110, 120));
}

TEST(KeptByFlags, OutOfTheMoneyIsUpForCallsAndDownForPuts) {
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"C", 1, 2)), ElementsAre(110, 120));
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"P", 2, 2)), ElementsAre(80));
}

TEST(KeptByFlags, DistancesBelowOneCountAsOne) {
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, InTheMoney(L"C", 0, 0)), ElementsAre(90));
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"C", -7, 0)), ElementsAre(110));
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"C", std::numeric_limits<int32_t>::min(), 1)),
              ElementsAre(110));
}

TEST(KeptByFlags, AFarthestDistanceBelowTheNearestKeepsNothing) {
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"C", 2, 1)), IsEmpty());
}

TEST(KeptByFlags, ADistanceAsLargeAsTheCountIsNotWalked) {
  EXPECT_THAT(KeptByFlags(kFive, {0, 0}, OutOfTheMoney(L"C", 4, std::numeric_limits<int32_t>::max())),
              ElementsAre(120));
  EXPECT_THAT(KeptByFlags(kFive, {2, 2}, OutOfTheMoney(L"C", 5, 9)), IsEmpty());
}

TEST(KeptByFlags, ADistanceThatLeavesTheChainIsAnInvalidArgument) {
  const auto codeOf = [](const CAtTheMoney& atm, const COpenLotteryInfo& info) {
    try {
      KeptByFlags(kFive, atm, info);
    } catch (const CPlatformError& error) {
      return error.Code();
    }
    return uint32_t{0};
  };
  EXPECT_EQ(error_code::kInvalidArgument, codeOf({2, 2}, OutOfTheMoney(L"C", 1, 3)));
  EXPECT_EQ(error_code::kInvalidArgument, codeOf({2, 2}, InTheMoney(L"C", 3, 3)));
  EXPECT_EQ(error_code::kInvalidArgument, codeOf({2, 2}, OutOfTheMoney(L"P", 3, 3)));
  EXPECT_EQ(error_code::kInvalidArgument, codeOf({2, 2}, InTheMoney(L"P", 1, 4)));
  COpenLotteryInfo atTheMoney = Flags(L"C");
  atTheMoney.m_lIsATM = 1;
  EXPECT_EQ(error_code::kInvalidArgument, codeOf({5, 2}, atTheMoney));
}

TEST(RangeAround, CallsGoFromInBelowToOutAbove) {
  EXPECT_THAT(CallsIn(RangeAround(kFive, {2, 1}, 0, 2)), ElementsAre(100, 110, 120));
  EXPECT_THAT(CallsIn(RangeAround(kFive, {2, 1}, 1, 1)), ElementsAre(90, 100, 110));
}

TEST(RangeAround, PutsGoFromOutBelowToInAbove) {
  EXPECT_THAT(PutsIn(RangeAround(kFive, {3, 2}, 0, 2)), ElementsAre(80, 90, 100));
  EXPECT_THAT(PutsIn(RangeAround(kFive, {3, 2}, 1, 0)), ElementsAre(100, 110));
}

TEST(RangeAround, AnIndexBeyondTheChainIsItsEnd) {
  const CStrikeRange range = RangeAround(kFive, {2, 2}, 9, 9);
  EXPECT_EQ(120, range.callOut);
  EXPECT_EQ(80, range.callIn);
  EXPECT_EQ(80, range.putOut);
  EXPECT_EQ(120, range.putIn);
  const int32_t huge = std::numeric_limits<int32_t>::max();
  EXPECT_THAT(CallsIn(RangeAround(kFive, {4, 4}, huge, huge)), ElementsAre(80, 90, 100, 110, 120));
  EXPECT_THAT(PutsIn(RangeAround(kFive, {4, 4}, huge, huge)), ElementsAre(80, 90, 100, 110, 120));
}

TEST(RangeAround, AnAbsentOutBoundRemovesEveryCall) {
  const CStrikeRange range = RangeAround(kFive, {2, 2}, 1, -1);
  EXPECT_EQ(NoValue, range.callOut);
  EXPECT_THAT(CallsIn(range), IsEmpty());
}

TEST(RangeAround, ThePutsOuterBoundHangsOnTheInnerOne) {
  EXPECT_EQ(110, RangeAround(kFive, {2, 2}, 1, -1).putOut);
  EXPECT_EQ(NoValue, RangeAround(kFive, {2, 2}, -1, 1).putOut);
}

TEST(RangeAround, AnAbsentInBoundRemovesEveryPutAndBoundsNoCall) {
  const CStrikeRange range = RangeAround(kFive, {2, 2}, -1, 1);
  EXPECT_EQ(NoValue, range.callIn);
  EXPECT_EQ(NoValue, range.putIn);
  EXPECT_THAT(PutsIn(range), IsEmpty());
  EXPECT_THAT(CallsIn(range), ElementsAre(80, 90, 100, 110));
}

TEST(RangeAround, AnIndexOfMinusOneIsNoBound) {
  EXPECT_EQ(NoValue, RangeAround(kFive, {1, 1}, 2, 0).callIn);
  EXPECT_EQ(80, RangeAround(kFive, {1, 1}, 3, 0).callIn);
  EXPECT_EQ(NoValue, RangeAround(kFive, {1, 1}, 0, 2).putOut);
  EXPECT_EQ(80, RangeAround(kFive, {1, 1}, 0, 3).putOut);
  EXPECT_EQ(NoValue, RangeAround(kFive, {1, 1}, 0, -2).callOut);
  EXPECT_EQ(120, RangeAround(kFive, {1, 1}, 0, -3).callOut);
  EXPECT_EQ(NoValue, RangeAround(kFive, {1, 1}, -2, 0).putIn);
  EXPECT_EQ(120, RangeAround(kFive, {1, 1}, -3, 0).putIn);
}

TEST(RangeAround, AnEmptyChainHasNoBounds) {
  const CStrikeRange range = RangeAround({}, {2, 2}, 1, 1);
  EXPECT_EQ(NoValue, range.callIn);
  EXPECT_EQ(NoValue, range.callOut);
  EXPECT_EQ(NoValue, range.putIn);
  EXPECT_EQ(NoValue, range.putOut);
}

}  // namespace
}  // namespace iorder

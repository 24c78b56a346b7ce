#include "reference/symbol.h"

#include <gtest/gtest.h>

#include <string>

namespace iorder::testing {
namespace {

constexpr const wchar_t* kCall = L"ND.O.TWF.TX.202403.C.18000";

TEST(Symbol, TokensAreTakenByTheirPlace) {
  EXPECT_EQ(L"TWF", GetSymbolExchange(kCall));
  EXPECT_EQ(L"202403", GetSymbolMonth(kCall));
  EXPECT_EQ(L"C", GetSymbolCallPut(kCall));
  EXPECT_EQ(L"18000", GetSymbolStrike(kCall));
  EXPECT_EQ(L"ND.O.TWF.TX.202403", GetSymbolMonthKey(kCall));
  EXPECT_EQ(L"ND.O.TWF.TX", GetSymbolProductKey(kCall));
}

TEST(Symbol, AStrikeKeepsItsDecimalPoint) {
  EXPECT_EQ(L"2.75", GetSymbolStrike(L"ND.O.SHFE.AU.202406.C.2.75"));
  EXPECT_EQ(L".5", GetSymbolStrike(L"ND.O.SHFE.AU.202406.C..5"));
}

TEST(Symbol, OnlyALineFeedEndsAStrike) {
  EXPECT_EQ(L"18000.5 x", GetSymbolStrike(L"ND.O.TWF.TX.202403.C.18000.5 x\nrest"));
}

TEST(Symbol, ASymbolThatIsTooShortGivesEmptyTexts) {
  EXPECT_EQ(L"", GetSymbolExchange(L"ND.O"));
  EXPECT_EQ(L"", GetSymbolMonth(L"ND.O.TWF.TX"));
  EXPECT_EQ(L"", GetSymbolMonthKey(L"ND.O.TWF.TX"));
  EXPECT_EQ(L"", GetSymbolProductKey(L"ND.O.TWF"));
  EXPECT_EQ(L"", GetSymbolCallPut(L"ND.O.TWF.TX.202403"));
  EXPECT_EQ(L"", GetSymbolStrike(L"ND.O.TWF.TX.202403.C"));
  EXPECT_EQ(L"", GetSymbolStrike(L"ND.O.TWF.TX.202403.C."));
}

TEST(Symbol, AnEmptySymbolGivesEmptyTextsEverywhere) {
  EXPECT_EQ(L"", GetSymbolExchange(L""));
  EXPECT_EQ(L"", GetSymbolMonth(L""));
  EXPECT_EQ(L"", GetSymbolCallPut(L""));
  EXPECT_EQ(L"", GetSymbolStrike(L""));
  EXPECT_EQ(L"", GetSymbolMonthKey(L""));
  EXPECT_EQ(L"", GetSymbolProductKey(L""));
}

TEST(Symbol, AKeyOfJustSoManyTokensIsTheWholeSymbol) {
  EXPECT_EQ(L"ND.O.TWF.TX.202403", GetSymbolMonthKey(L"ND.O.TWF.TX.202403"));
  EXPECT_EQ(L"ND.O.TWF.TX", GetSymbolProductKey(L"ND.O.TWF.TX"));
}

TEST(Symbol, AKeyLosesItsTrailingDots) {
  EXPECT_EQ(L"ND.O.TWF.TX.202403", GetSymbolMonthKey(L"ND.O.TWF.TX.202403."));
  EXPECT_EQ(L"ND.O.TWF.TX", GetSymbolProductKey(L"ND.O.TWF.TX.."));
}

TEST(Symbol, TwoDotsInARowCountAsOne) {
  EXPECT_EQ(L"TX", GetSymbolExchange(L"ND.O..TX.202403.C.18000"));
  EXPECT_EQ(L"C", GetSymbolMonth(L"ND.O..TX.202403.C.18000"));
  EXPECT_EQ(L"18000", GetSymbolCallPut(L"ND.O..TX.202403.C.18000"));
  EXPECT_EQ(L"", GetSymbolStrike(L"ND.O..TX.202403.C.18000"));
  EXPECT_EQ(L"TWF", GetSymbolExchange(L"..ND...O.TWF.TX"));
}

TEST(Symbol, JoinedKeysHoldTheFirstThreeFourAndFiveTokens) {
  EXPECT_EQ(L"ND.O.TWF", ExchangeKey(kCall));
  EXPECT_EQ(L"ND.O.TWF.TX", ProductId(kCall));
  EXPECT_EQ(L"ND.O.TWF.TX.202403", SymbolKey(kCall));
  EXPECT_EQ(L"ND.O.TWF.TX", ProductId(L"ND..O.TWF..TX.202403"));
}

TEST(Symbol, JoinedKeysOfAnEmptySymbolAreItsDots) {
  EXPECT_EQ(L"..", ExchangeKey(L""));
  EXPECT_EQ(L"...", ProductId(L""));
  EXPECT_EQ(L"....", SymbolKey(L""));
}

TEST(Symbol, EveryHotIsReplaced) {
  EXPECT_EQ(L"ND.O.X.202403.Y.202403", ReplaceAll(L"ND.O.X.HOT.Y.HOT", L".HOT", L".202403"));
  EXPECT_EQ(L"ND.O.X.HOTTER", ReplaceAll(L"ND.O.X.HOT", L".HOT", L".HOTTER"));
}

TEST(Symbol, ThePutOfACallHasTheSameStrike) {
  EXPECT_EQ(L"ND.O.TWF.TX.202403.P.18000", PutOf(kCall));
}

TEST(Symbol, TheRightIsFoundAnywhereInTheSymbol) {
  EXPECT_TRUE(IsCall(kCall));
  EXPECT_FALSE(IsPut(kCall));
  EXPECT_TRUE(IsPut(L"ND.O.TWF.TX.202403.P.18000"));
  EXPECT_FALSE(IsCall(L"ND.F.TWF.TX.202403"));
  EXPECT_FALSE(IsPut(L"ND.F.TWF.TX.202403"));
  EXPECT_FALSE(IsCall(L"ND.O.TWF.TX.202403.C"));
}

TEST(Symbol, AFutureHasAVolatilityRecordAndAnythingElseARealOne) {
  EXPECT_EQ(L"OPT.Volatility.ND.F.TWF.TX.202403", AnalyticsRecordName(L"ND.F.TWF.TX.202403"));
  EXPECT_EQ(L"OPT.REAL.ND.S.TWSE.2330", AnalyticsRecordName(L"ND.S.TWSE.2330"));
  EXPECT_EQ(L"OPT.REAL.", AnalyticsRecordName(L""));
}

TEST(Tokenizer, ATextThatHasRunOutGivesEmptyTokens) {
  CTokenizer tokens(L";;a;b;;");
  EXPECT_EQ(L"a", tokens.Next(L';'));
  EXPECT_EQ(L"b", tokens.Next(L';'));
  EXPECT_EQ(L"", tokens.Next(L';'));
  EXPECT_EQ(L"", tokens.Next(L';'));
}

TEST(Tokenizer, EachTokenMayHaveItsOwnDelimiter) {
  CTokenizer tokens(L"10:0.5;50:1");
  EXPECT_EQ(L"10", tokens.Next(L':'));
  EXPECT_EQ(L":0.5", tokens.Next(L';'));
}

}  // namespace
}  // namespace iorder::testing

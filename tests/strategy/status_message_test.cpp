#include "strategy/status_message.h"

#include <gtest/gtest.h>

#include <limits>

#include "records/scaled_value.h"

namespace iorder::testing {
namespace {

CStrategyIdentity Sender() {
  CStrategyIdentity identity;
  identity.m_strStrategyType = L"OpenLottery";
  identity.m_strStrategyTag = L"T";
  identity.m_strStrategyID = L"T#1";
  identity.m_strStrategySN = L"7";
  return identity;
}

std::wstring Number(double value, int decimals = 6) {
  CStatusMessage message({}, "M", decimals);
  message.Number("N", value);
  const std::wstring text = message.Finish();
  const size_t begin = text.find(L"\"N\":") + 4;
  return text.substr(begin, text.size() - begin - 2);
}

TEST(StatusMessage, TheEnvelopeStandsInFrontOfTheBodyInItsOrder) {
  CStatusMessage message(Sender(), "Order");
  message.Text("Stamp", L"0").Integer("Result", -101);
  EXPECT_EQ(
      LR"({"StrategyType":"OpenLottery","StrategyTag":"T","StrategyID":"T#1","StrategySN":"7",)"
      LR"("MsgType":"Order","Data":{"Stamp":"0","Result":-101}})",
      message.Finish());
}

TEST(StatusMessage, AMessageWithoutABodyHasNoData) {
  CStatusMessage message(Sender(), "ClearReport");
  EXPECT_EQ(
      LR"({"StrategyType":"OpenLottery","StrategyTag":"T","StrategyID":"T#1","StrategySN":"7",)"
      LR"("MsgType":"ClearReport"})",
      message.Finish());
}

TEST(StatusMessage, TheMessageOfATagNamesNoSingleStrategy) {
  CStatusMessage message("TotalProfit", L"T", 2);
  message.Integer("Cost", 375).Number("PnL", 75.009);
  EXPECT_EQ(
      LR"({"StrategyType":"OpenLottery","StrategyTag":"T","MsgType":"TotalProfit",)"
      LR"("Data":{"Cost":375,"PnL":75.0}})",
      message.Finish());
}

TEST(StatusMessage, KeysStandInTheOrderInWhichTheyCome) {
  CStatusMessage message({}, "M");
  message.Text("Z", L"").Integer("A", 1).Number("M", 1.5);
  EXPECT_EQ(
      LR"({"StrategyType":"","StrategyTag":"","StrategyID":"","StrategySN":"","MsgType":"M",)"
      LR"("Data":{"Z":"","A":1,"M":1.5}})",
      message.Finish());
}

TEST(StatusMessage, TextsAreEscapedAndKeepTheirLetters) {
  CStrategyIdentity identity = Sender();
  identity.m_strStrategyTag = L"\u81FA\"\\\n";
  EXPECT_NE(std::wstring::npos,
            CStatusMessage(identity, "M").Finish().find(L"\"StrategyTag\":\"\u81FA\\\"\\\\\\n\""));
}

TEST(StatusMessage, ADoubleIsCutOffBehindItsPlaces) {
  EXPECT_EQ(L"1.239999", Number(1.2399999));
  EXPECT_EQ(L"1.23", Number(1.239, 2));
  EXPECT_EQ(L"-1.23", Number(-1.239, 2));
  EXPECT_EQ(L"12.5", Number(12.500000000005));
}

TEST(StatusMessage, AWholeDoubleKeepsOnePlace) {
  EXPECT_EQ(L"5.0", Number(5.0));
  EXPECT_EQ(L"0.0", Number(0.0));
  EXPECT_EQ(L"18000.0", Number(18000.0000004));
}

TEST(StatusMessage, NoPriceIsWrittenLikeAnyOtherDouble) {
  EXPECT_EQ(L"9223372036854776000.0", Number(NoPrice));
  EXPECT_EQ(L"9223372036854776000.0", Number(FromScaled(NoValue)));
}

TEST(StatusMessage, AScaledZeroIsALittleBelowZeroAndCutOffToIt) {
  EXPECT_EQ(L"-0.0", Number(FromScaled(0)));
}

TEST(StatusMessage, ANumberThatIsNotFiniteIsNull) {
  EXPECT_EQ(L"null", Number(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(L"null", Number(std::numeric_limits<double>::quiet_NaN()));
}

TEST(StatusMessage, AnIntegerHas64Bits) {
  CStatusMessage message({}, "M");
  message.Integer("A", NoValue).Integer("B", std::numeric_limits<int64_t>::max());
  EXPECT_NE(std::wstring::npos,
            message.Finish().find(LR"({"A":-9223372036854775808,"B":9223372036854775807})"));
}

TEST(StatusMessage, AMomentIsADateAndATimeAsIntegers) {
  CStatusMessage message({}, "M");
  message.Moment("Date", "Time", 20240304084500).Moment("UpdateDate", "UpdateTime", 20240304000005);
  EXPECT_NE(std::wstring::npos,
            message.Finish().find(LR"({"Date":20240304,"Time":84500,"UpdateDate":20240304,"UpdateTime":5})"));
}

}  // namespace
}  // namespace iorder::testing

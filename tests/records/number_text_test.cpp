#include "records/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace iorder {
namespace {

TEST(NumberText, ReadsTheLeadingInteger) {
  EXPECT_EQ(LeadingInt32(L"12"), 12);
  EXPECT_EQ(LeadingInt32(L" \t-7x"), -7);
  EXPECT_EQ(LeadingInt32(L"+5.9"), 5);
  EXPECT_EQ(LeadingInt64(L"30000000000 lots"), 30000000000);
}

TEST(NumberText, GivesZeroWithoutANumber) {
  for (const wchar_t* text : {L"", L"x12", L"-", L"+-5", L"- 5", L"１２"}) {
    EXPECT_EQ(LeadingInt32(text), 0) << text;
    EXPECT_EQ(LeadingInt64(text), 0) << text;
  }
}

TEST(NumberText, StopsAtTheNearestValueThatFits) {
  EXPECT_EQ(LeadingInt32(L"3000000000"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(LeadingInt32(L"-3000000000"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(LeadingInt64(L"9223372036854775808"), std::numeric_limits<int64_t>::max());
  EXPECT_EQ(LeadingInt64(L"-9223372036854775809"), std::numeric_limits<int64_t>::min());
}

TEST(NumberText, ReadsTheLeadingDouble) {
  EXPECT_EQ(LeadingDouble(L"0.5tick"), 0.5);
  EXPECT_EQ(LeadingDouble(L" -1.5e2"), -150.0);
  EXPECT_EQ(LeadingDouble(L"1e"), 1.0);
  EXPECT_EQ(LeadingDouble(L"1,5"), 1.0);
  EXPECT_EQ(LeadingDouble(L"price"), 0.0);
}

TEST(NumberText, ANumberThatFitsNoDoubleIsInfiniteOrZero) {
  EXPECT_EQ(LeadingDouble(L"1e400"), HUGE_VAL);
  EXPECT_EQ(LeadingDouble(L"-2.5e309 lots"), -HUGE_VAL);
  EXPECT_EQ(LeadingDouble(std::wstring(400, L'9')), HUGE_VAL);
  EXPECT_EQ(LeadingDouble(L"0.001e400"), HUGE_VAL);
  EXPECT_EQ(LeadingDouble(L"1e-400"), 0.0);
  EXPECT_EQ(LeadingDouble(L"0." + std::wstring(400, L'0') + L"1"), 0.0);
  EXPECT_EQ(LeadingDouble(std::wstring(400, L'9') + L"e-800"), 0.0);
  EXPECT_EQ(LeadingDouble(L"1e99999999999999999999"), HUGE_VAL);
  EXPECT_EQ(LeadingDouble(L"1e-99999999999999999999"), 0.0);
  EXPECT_EQ(LeadingDouble(L"0e400"), 0.0);
}

TEST(NumberText, SpellsWholeNumbers) {
  EXPECT_EQ(ToDecimal(0), L"0");
  EXPECT_EQ(ToDecimal(-17), L"-17");
  EXPECT_EQ(ToDecimal(std::numeric_limits<int64_t>::min()), L"-9223372036854775808");
}

}  // namespace
}  // namespace iorder

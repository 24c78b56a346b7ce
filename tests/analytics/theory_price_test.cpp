#include "analytics/theory_price.h"

#include <gtest/gtest.h>

namespace iorder {
namespace {

// Prices of a chain at 17250 with a quarter to go, 20 percent, 2 percent rate: worked out without a table.
constexpr double kCall17000 = 811.0965467584;
constexpr double kPut17000 = 562.3434269603;

double Price(std::wstring_view callOrPut) {
  return CalcTheoryPrice(0.2, 17000, 17250, 0.02, 0.25, 0.25, 0, callOrPut);
}

TEST(CalcTheoryPrice, PricesCallsAndPuts) {
  EXPECT_NEAR(kCall17000, Price(L"C"), 0.0035);
  EXPECT_NEAR(kPut17000, Price(L"P"), 0.0035);
}

TEST(CalcTheoryPrice, OnlyACapitalCIsACall) {
  for (const wchar_t* text : {L"c", L"", L"CALL", L" C", L"p"}) EXPECT_EQ(Price(L"P"), Price(text));
}

TEST(CalcTheoryPrice, TakesItsArgumentsInTheirOrder) {
  // Each argument different, so that no two can be exchanged unseen.
  EXPECT_NEAR(6.9373996451, CalcTheoryPrice(0.35, 110, 104, 0.03, 0.8, 0.4, 0.01, L"C"), 2.2e-5);
}

}  // namespace
}  // namespace iorder

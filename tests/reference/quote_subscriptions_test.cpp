#include "reference/quote_subscriptions.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kSymbol = L"ND.F.TWF.TX.202403";
constexpr const wchar_t* kFigures = L"OPT.REAL.ND.O.TWF.TX.202403.C.18000";

class QuoteSubscriptions : public ReferenceTest {
 protected:
  void WithSubscriptions(const std::function<void(CQuoteSubscriptions& subscriptions)>& body) {
    Run([&] {
      CQuoteSubscriptions subscriptions(
          m_host, [this](const std::wstring& symbol) { return m_held.contains(symbol); });
      body(subscriptions);
    });
  }

  std::set<std::wstring> m_held;  ///< what strategies hold
};

TEST_F(QuoteSubscriptions, ASymbolThatNobodyHoldsIsSubscribedWithALogLine) {
  WithSubscriptions([this](CQuoteSubscriptions& subscriptions) {
    subscriptions.SubQuote(kSymbol);
    subscriptions.UnsubQuote(kSymbol);
  });
  EXPECT_THAT(m_host.subscriptions, ElementsAre(L"+ND.F.TWF.TX.202403", L"-ND.F.TWF.TX.202403"));
  EXPECT_THAT(m_host.log, ElementsAre(L"SubQuote. strSymbol=ND.F.TWF.TX.202403.",
                                      L"UnsubQuote. strSymbol=ND.F.TWF.TX.202403."));
}

TEST_F(QuoteSubscriptions, ASymbolThatAStrategyHoldsStaysAsItIs) {
  m_held = {kSymbol};
  WithSubscriptions([](CQuoteSubscriptions& subscriptions) {
    subscriptions.SubQuote(kSymbol);
    subscriptions.UnsubQuote(kSymbol);
  });
  EXPECT_THAT(m_host.subscriptions, IsEmpty());
  EXPECT_THAT(m_host.log, IsEmpty());
}

TEST_F(QuoteSubscriptions, ANameOfAGroupOrderIsSubscribedOnceForGoodAndWithoutALogLine) {
  WithSubscriptions([](CQuoteSubscriptions& subscriptions) {
    subscriptions.EnsureOptionTopic(kFigures);
    subscriptions.EnsureOptionTopic(kFigures);
    subscriptions.SubQuote(kFigures);
    subscriptions.UnsubQuote(kFigures);
  });
  EXPECT_THAT(m_host.subscriptions, ElementsAre(std::wstring(L"+") + kFigures));
  EXPECT_THAT(m_host.log, IsEmpty());
}

TEST_F(QuoteSubscriptions, ANameOfAGroupOrderIsSubscribedThoughAStrategyHoldsIt) {
  m_held = {kFigures};
  WithSubscriptions([](CQuoteSubscriptions& subscriptions) { subscriptions.EnsureOptionTopic(kFigures); });
  EXPECT_THAT(m_host.subscriptions, ElementsAre(std::wstring(L"+") + kFigures));
}

TEST_F(QuoteSubscriptions, AQuoteIsValidWithACodeAboveZero) {
  const std::vector<std::pair<Value, bool>> cases{{Value(1), true},
                                                  {Value(0), false},
                                                  {Value(-1), false},
                                                  {Value(int64_t{1}), false},
                                                  {Value(std::wstring(L"2")), true},
                                                  {Value(), false}};
  WithSubscriptions([&](CQuoteSubscriptions& subscriptions) {
    for (const auto& [code, valid] : cases) {
      SetField(kSymbol, L"MCODE", code);
      EXPECT_EQ(valid, subscriptions.IsQuoteValid(kSymbol)) << code.index();
    }
  });
}

TEST_F(QuoteSubscriptions, ARecordThatDoesntOpenIsNotValid) {
  WithSubscriptions([this](CQuoteSubscriptions& subscriptions) {
    EXPECT_FALSE(subscriptions.IsQuoteValid(kFigures)) << "no such record";
    SetField(kFigures, L"MCODE", Value(1));
    EXPECT_TRUE(subscriptions.IsQuoteValid(kFigures));
  });
}

TEST_F(QuoteSubscriptions, AGroupOrderLearnsWhetherItsFiguresAreThere) {
  WithSubscriptions([this](CQuoteSubscriptions& subscriptions) {
    SetField(kFigures, L"MCODE", Value(0));
    EXPECT_FALSE(subscriptions.EnsureOptionTopic(kFigures));
    SetField(kFigures, L"MCODE", Value(1));
    EXPECT_TRUE(subscriptions.EnsureOptionTopic(kFigures));
  });
}

}  // namespace
}  // namespace iorder::testing

#include <gmock/gmock.h>

#include <memory>

#include "strategy/strategy.h"
#include "tests/strategy/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kSymbol = L"ND.F.TWF.TX.202403";
constexpr const wchar_t* kOther = L"ND.O.TWF.TX.202403.C.18000";

class CPlainStrategy : public CStrategy {
 public:
  using CStrategy::CStrategy;
  using CStrategy::GetContractWeight;
  using CStrategy::GetQuote;
  using CStrategy::GetQuoteField;
  using CStrategy::IsQuoteValid;
  using CStrategy::KeyOf;
  using CStrategy::SubscribeQuote;
  using CStrategy::UnsubscribeQuote;
};

class StrategyQuotes : public ReferenceTest {
 protected:
  void WithStrategy(const std::function<void(CPlainStrategy& strategy)>& body) {
    Run([&] {
      const auto strategy = std::make_shared<CPlainStrategy>(m_engine);
      body(*strategy);
    });
  }

  CRecordingEngine m_engine{m_host};
};

TEST_F(StrategyQuotes, ASymbolIsSubscribedOnce) {
  WithStrategy([this](CPlainStrategy& strategy) {
    const auto first = strategy.SubscribeQuote(kSymbol);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(nullptr, strategy.SubscribeQuote(kSymbol));
    EXPECT_EQ(first, strategy.GetQuote(kSymbol));
    EXPECT_THAT(m_host.subscriptions, ElementsAre(std::wstring(L"+") + kSymbol));
  });
}

TEST_F(StrategyQuotes, AnUnknownSymbolIsUnsubscribedWithoutTheEngine) {
  WithStrategy([this](CPlainStrategy& strategy) {
    strategy.UnsubscribeQuote(kSymbol);
    EXPECT_THAT(m_host.subscriptions, IsEmpty());
  });
}

TEST_F(StrategyQuotes, TheEngineIsAskedWhileTheStrategyDoesNotHoldTheSymbol) {
  WithStrategy([this](CPlainStrategy& strategy) {
    std::vector<bool> held;
    m_engine.onSubscribe = m_engine.onUnsubscribe = [&](const std::wstring& symbol) {
      held.push_back(strategy.HasQuote(symbol));
    };
    strategy.SubscribeQuote(kSymbol);
    EXPECT_TRUE(strategy.HasQuote(kSymbol));
    strategy.UnsubscribeQuote(kSymbol);
    EXPECT_FALSE(strategy.HasQuote(kSymbol));
    EXPECT_THAT(held, ElementsAre(false, false));
  });
}

TEST_F(StrategyQuotes, AnUnknownSymbolHasNoFieldsAndIsNotValid) {
  WithStrategy([](CPlainStrategy& strategy) {
    EXPECT_EQ(nullptr, strategy.GetQuote(kSymbol));
    EXPECT_EQ(NoValue, strategy.GetQuoteField(kSymbol, quote_field::kPrice));
    EXPECT_FALSE(strategy.IsQuoteValid(kSymbol));
    EXPECT_EQ(nullptr, strategy.KeyOf(nullptr));
  });
}

TEST_F(StrategyQuotes, AHandleReadsItsQuoteAndLeadsBackToItsSymbol) {
  SetField(kSymbol, L"MCODE", 1);
  RecordChange quote;
  quote.name = kSymbol;
  quote.numbers = {{quote_field::kPrice, {}}};
  quote.numbers.front().value.value = int64_t{180000000000000};
  m_bus.Apply(quote);
  WithStrategy([](CPlainStrategy& strategy) {
    const auto handle = strategy.SubscribeQuote(kSymbol);
    EXPECT_EQ(180000000000000, strategy.GetQuoteField(kSymbol, quote_field::kPrice));
    EXPECT_EQ(NoValue, strategy.GetQuoteField(kSymbol, quote_field::kOpen));
    EXPECT_TRUE(strategy.IsQuoteValid(kSymbol));
    ASSERT_NE(nullptr, strategy.KeyOf(handle.get()));
    EXPECT_EQ(kSymbol, strategy.KeyOf(handle.get())->strSymbol);
    strategy.UnsubscribeQuote(kSymbol);
    EXPECT_EQ(nullptr, strategy.KeyOf(handle.get()));
  });
}

TEST_F(StrategyQuotes, ARecordThatDoesNotOpenLeavesItsPlaceEmpty) {
  m_bus.FailOpen(kSymbol, true);
  WithStrategy([this](CPlainStrategy& strategy) {
    EXPECT_EQ(nullptr, strategy.SubscribeQuote(kSymbol));
    EXPECT_TRUE(strategy.HasQuote(kSymbol));
    EXPECT_EQ(NoValue, strategy.GetQuoteField(kSymbol, quote_field::kPrice));
    EXPECT_FALSE(strategy.IsQuoteValid(kSymbol));
    m_bus.FailOpen(kSymbol, false);
    EXPECT_EQ(nullptr, strategy.SubscribeQuote(kSymbol)) << "the place is taken";
    strategy.UnsubscribeQuote(kSymbol);
    EXPECT_NE(nullptr, strategy.SubscribeQuote(kSymbol));
  });
}

TEST_F(StrategyQuotes, AStrategyThatEndsGivesBackAllItsSymbols) {
  WithStrategy([](CPlainStrategy& strategy) {
    strategy.SubscribeQuote(kSymbol);
    strategy.SubscribeQuote(kOther);
  });
  EXPECT_THAT(m_host.subscriptions, ElementsAre(std::wstring(L"+") + kSymbol, std::wstring(L"+") + kOther,
                                                std::wstring(L"-") + kSymbol, std::wstring(L"-") + kOther));
}

TEST_F(StrategyQuotes, AWeightIsAWholeNumberAndOneWithoutAText) {
  WithStrategy([this](CPlainStrategy& strategy) {
    EXPECT_EQ(1.0, strategy.GetContractWeight(kOther));
    m_engine.weight = L"50";
    EXPECT_EQ(50.0, strategy.GetContractWeight(kOther));
    m_engine.weight = L"1.5";
    EXPECT_EQ(1.0, strategy.GetContractWeight(kOther));
    m_engine.weight = L"many";
    EXPECT_EQ(0.0, strategy.GetContractWeight(kOther));
  });
}

TEST_F(StrategyQuotes, AStrategyDoesNotDeleteItselfButAsksForIt) {
  WithStrategy([this](CPlainStrategy& strategy) {
    strategy.SetKey(L"K");
    strategy.DelStrategy();
    EXPECT_THAT(m_engine.posted, ElementsAre(kDelStrategyMessage));
    ASSERT_EQ(1U, m_host.log.size());
    EXPECT_TRUE(m_host.log.front().starts_with(L"[OpenLottery]<K.")) << m_host.log.size();
    EXPECT_TRUE(m_host.log.front().ends_with(L"> DelStrategy."));
  });
}

}  // namespace
}  // namespace iorder::testing

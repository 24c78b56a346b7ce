#include <gmock/gmock.h>

#include "strategy/strategy_open_lottery.h"
#include "tests/strategy/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kOption = L"ND.O.SHFE.CU.202404.C.70000";
constexpr const wchar_t* kOther = L"ND.O.SHFE.CU.202404.C.71000";
constexpr ScaledValue kOne = 10'000'000'000;

/// A strategy that has had no batch, so that reports without a stamp are its own; the test delivers them and
/// the quotes.
class PositionProfit : public ReferenceTest {
 protected:
  void WithStrategy(const std::function<void(CStrategyOpenLottery& strategy)>& body) {
    Run([&] {
      const auto strategy = std::make_shared<CStrategyOpenLottery>(m_engine, L"");
      strategy->SetKey(L"K");
      body(*strategy);
    });
  }
  /// Buys lots at an average price.
  void Buy(CStrategyOpenLottery& strategy, const wchar_t* symbol, int32_t lots, ScaledValue average) {
    RecordChange report;
    report.name = L"REPORT";
    report.fields = {Field(L"UserKey2", std::wstring(L"K")),
                     Field(L"LevelKey", std::wstring(symbol)),
                     Field(L"Symbol", std::wstring(symbol)),
                     Field(L"ExecType", 3),
                     Field(L"PositionEffect", 0),
                     Field(L"CumQty", lots),
                     Field(L"AvgPrice", average),
                     Field(L"LeavesQty", 0)};
    m_bus.Apply(report);
    strategy.OnReportUpdate(m_host.OpenRecord(L"REPORT", nullptr).get());
  }
  static int32_t Quote(CStrategyOpenLottery& strategy, const wchar_t* symbol, ScaledValue price,
                       int32_t updateId = 7) {
    CQuoteData quote;
    quote.strSymbol = symbol;
    quote.llPrice = price;
    quote.lTransHandle = updateId;
    return strategy.OnPositionProfit(quote);
  }
  static double Profit(CStrategyOpenLottery& strategy) { return strategy.GetDoubleValue(L"PnL", -7); }
  static double Cost(CStrategyOpenLottery& strategy) { return strategy.GetDoubleValue(L"Cost", -7); }

  /// Notes an event. With the first one a quote comes on another thread, which gets its turn at once; its
  /// valuation is noted too.
  void NoteAndQuote(CStrategyOpenLottery& strategy, const char* event, ScaledValue price) {
    m_events.emplace_back(event);
    if (m_quotes != nullptr) return;
    m_quotes = m_runtime.CreateThread(L"quotes", [this, &strategy, price] {
      Quote(strategy, kOther, price);
      m_events.emplace_back("valued");
    });
    m_quotes->Resume();
    m_runtime.Sleep(Milliseconds(1));
  }
  void AwaitQuote() {
    ASSERT_NE(m_quotes, nullptr);
    m_runtime.Wait(*m_quotes, std::nullopt);
  }

  CRecordingEngine m_engine{m_host};
  std::vector<std::string> m_events;
  std::shared_ptr<IThread> m_quotes;
};

TEST_F(PositionProfit, AWeightThatIsNotUsableCountsAsOneAndIsLookedUpAgain) {
  m_engine.weight = L"0";
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    EXPECT_EQ(1, Quote(strategy, kOption, 11 * kOne));
    EXPECT_NEAR(2.0, Profit(strategy), 1e-9);
    m_engine.weight = L"-3";
    EXPECT_EQ(0, Quote(strategy, kOption, 11 * kOne)) << "it counts as one again";
    m_engine.weight = L"50";
    EXPECT_EQ(1, Quote(strategy, kOption, 11 * kOne));
    EXPECT_NEAR(100.0, Profit(strategy), 1e-9);
    EXPECT_NEAR(1000.0, Cost(strategy), 1e-7);
  });
}

TEST_F(PositionProfit, AQuoteIsValuedOnlyAfterTheWholeCloseOutHasLeft) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Buy(strategy, kOther, 3, 10 * kOne);
    m_engine.onLog = [&](const std::wstring& text) {
      if (text.find(L"NewOrder Fail.") != std::wstring::npos) NoteAndQuote(strategy, "order", 11 * kOne);
    };
    strategy.OnStrategyEvent(lottery_event::kLimitReached, 0);
    m_engine.onLog = nullptr;
    AwaitQuote();
    EXPECT_THAT(m_events, ElementsAre("order", "order", "valued"));
  });
}

TEST_F(PositionProfit, AQuoteIsValuedOnlyAfterTheProfitOfAllPositionsIsTold) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Buy(strategy, kOther, 3, 10 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    Quote(strategy, kOther, 11 * kOne);
    m_host.answer = [&](const Request& request, AnswerDocument*) {
      if (request.topic == L"API_MSG.NewStrategyOrder") NoteAndQuote(strategy, "told", 12 * kOne);
      return Value();
    };
    strategy.PublishProfit();
    m_host.answer = nullptr;
    AwaitQuote();
    EXPECT_THAT(m_events, ElementsAre("told", "told", "valued"));
  });
}

TEST_F(PositionProfit, AWeightThatIsUsableIsKept) {
  m_engine.weight = L"50";
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    m_engine.weight = L"3";
    Quote(strategy, kOption, 12 * kOne);
    EXPECT_NEAR(200.0, Profit(strategy), 1e-9);
  });
}

TEST_F(PositionProfit, AMissingWeightIsOneForGood) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    m_engine.weight = L"50";
    Quote(strategy, kOption, 12 * kOne);
    EXPECT_NEAR(4.0, Profit(strategy), 1e-9);
  });
}

TEST_F(PositionProfit, AQuoteThatChangesNothingGivesZeroUnlessItIsASnapshot) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    EXPECT_EQ(1, Quote(strategy, kOption, 10 * kOne)) << "a first profit of 0 is a change";
    EXPECT_EQ(0, Quote(strategy, kOption, 10 * kOne));
    EXPECT_EQ(1, Quote(strategy, kOption, 10 * kOne, kNoUpdate));
    EXPECT_EQ(1, Quote(strategy, kOption, 11 * kOne));
  });
}

TEST_F(PositionProfit, WhatCanNotBeValuedChangesNothing) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    EXPECT_EQ(0, Quote(strategy, kOption, 11 * kOne)) << "no position";
    Buy(strategy, kOption, 2, NoValue);
    EXPECT_EQ(0, Quote(strategy, kOption, 11 * kOne)) << "no average price";
    Buy(strategy, kOption, 2, 10 * kOne);
    EXPECT_EQ(0, Quote(strategy, kOption, NoValue)) << "no price";
    EXPECT_EQ(0, Quote(strategy, kOther, 11 * kOne)) << "another option";
    EXPECT_EQ(0.0, Profit(strategy));
    EXPECT_EQ(0.0, Cost(strategy));
    m_host.requests.clear();
    strategy.PublishProfit();
    EXPECT_THAT(m_host.requests, IsEmpty());
  });
}

TEST_F(PositionProfit, APositionThatWasNeverValuedCostsButHasNoProfit) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Buy(strategy, kOther, 3, 5 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    EXPECT_NEAR(2.0, Profit(strategy), 1e-9);
    EXPECT_NEAR(35.0, Cost(strategy), 1e-9);
  });
}

TEST_F(PositionProfit, ItIsToldOnceForEachChange) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    Quote(strategy, kOption, 12 * kOne);
    m_host.requests.clear();
    strategy.PublishProfit();
    ASSERT_EQ(2U, m_host.requests.size()) << "to screens and to clients";
    EXPECT_NE(std::wstring::npos, m_host.requests.front().text.find(LR"("Last":12.0,"PnL":4.0}})"));
    strategy.PublishProfit();
    EXPECT_EQ(2U, m_host.requests.size());
  });
}

TEST_F(PositionProfit, AnyOtherDoubleValueIsTheFallback) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    Buy(strategy, kOption, 2, 10 * kOne);
    Quote(strategy, kOption, 11 * kOne);
    for (const wchar_t* name : {L"pnl", L"PNL", L"Costs", L""}) {
      EXPECT_EQ(-7.0, strategy.GetDoubleValue(name, -7.0)) << name;
    }
  });
}

TEST_F(PositionProfit, AReportThatIsNoneIsIgnored) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    strategy.OnReportUpdate(nullptr);
    EXPECT_THAT(m_host.log, IsEmpty());
    EXPECT_THAT(m_host.requests, IsEmpty());
  });
}

}  // namespace
}  // namespace iorder::testing

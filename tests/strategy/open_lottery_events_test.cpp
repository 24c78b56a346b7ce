#include <gmock/gmock.h>

#include "strategy/strategy_open_lottery.h"
#include "tests/strategy/json_text.h"
#include "tests/strategy/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

// An exchange without trading hours: the runs start at once, whatever the clock says.
constexpr const wchar_t* kUnderlying = L"ND.F.SHFE.CU.202404";
constexpr const wchar_t* kOption = L"ND.O.SHFE.CU.202404.C.70000";

/// A strategy over one option, between the engine's threads: the test itself delivers what was posted.
class OpenLotteryEvents : public ReferenceTest {
 protected:
  void SetUp() override {
    SetField(L"Underlying.F.List", L"ND.O.SHFE.CU", std::wstring(L"ND.F.SHFE.CU"));
    m_engine.chain = {kOption};
    SetQuote(kUnderlying, int64_t{70000} * 10'000'000'000);
  }

  /// Last and opening price of a valid quote.
  void SetQuote(const wchar_t* symbol, ScaledValue price) {
    RecordChange quote;
    quote.name = symbol;
    quote.fields = {Field(L"MCODE", 1)};
    for (const int32_t id : {quote_field::kPrice, quote_field::kOpen}) {
      quote.numbers.push_back({.id = id, .value = {}});
      quote.numbers.back().value.value = price;
    }
    m_bus.Apply(quote);
  }
  /// The option opens at 10, which is within the band of the runs.
  void OpenOption() { SetQuote(kOption, int64_t{10} * 10'000'000'000); }

  void WithStrategy(const std::function<void(CStrategyOpenLottery& strategy)>& body) {
    Run([&] {
      const auto strategy = std::make_shared<CStrategyOpenLottery>(m_engine, L"");
      body(*strategy);
    });
  }

  /// A run that starts at once and whose stop time is this minute: afterwards the strategy is in state 2, and
  /// a hit waits for its batch.
  void StartAtOnce(CStrategyOpenLottery& strategy, int cash) {
    const std::string stopTime = std::to_string(ToTime4(m_runtime.LocalTime()));
    auto command = Json(R"({"Symbol":{"Security":"ND.O.SHFE.CU.202404","CP":"C"},"Start":{"Run":1},"Cash":)" +
                        std::to_string(cash) + R"(,"Stop":{"Time":)" + stopTime +
                        R"(},"Condition":{"OpenPrice":{"Dn":1,"Up":50},"StrikePrice":{"In":-1,"Out":-1}},)"
                        R"("OrderPrice":{"Type":0,"Price":2}})");
    strategy.ParseStrategyInfo(command);
  }

  /// What a batch logs.
  std::vector<std::wstring> LogOfBatch(CStrategyOpenLottery& strategy) {
    m_host.log.clear();
    strategy.OnStrategyEvent(lottery_event::kPlaceBatch, 0);
    return m_host.log;
  }

  CRecordingEngine m_engine{m_host};
};

TEST_F(OpenLotteryEvents, ALimitReachedPassesThroughTheIdleStateAndEndsWithTheCancelsOut) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    StartAtOnce(strategy, 0);
    EXPECT_THAT(LogOfBatch(strategy), Contains(EndsWith(L"> DoPlaceOrder. m_lStatus=2.")));
    strategy.OnStrategyEvent(lottery_event::kLimitReached, 0);
    EXPECT_THAT(m_host.log, Contains(EndsWith(L"> DoCancelOrderOpen. m_lStatus=-1.")));
    EXPECT_THAT(LogOfBatch(strategy), Contains(EndsWith(L"> DoPlaceOrder. m_lStatus=6.")));

    strategy.OnStrategyEvent(lottery_event::kStop, 0);
    EXPECT_THAT(LogOfBatch(strategy), ElementsAre(EndsWith(L"> DoPlaceOrder. m_lStatus=-2.")));
    strategy.OnStrategyEvent(lottery_event::kLimitReached, 0);
    EXPECT_THAT(LogOfBatch(strategy), Contains(EndsWith(L"> DoPlaceOrder. m_lStatus=6.")));
  });
}

TEST_F(OpenLotteryEvents, WhileWorkingOrdersAreCancelledForRoomTheStateSaysSo) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    strategy.SetKey(L"K");
    StartAtOnce(strategy, 0);
    RecordChange report;
    report.name = L"REPORT";
    // Before its first batch a strategy takes reports without a stamp.
    report.fields = {Field(L"UserKey2", std::wstring(L"K")), Field(L"LevelKey", std::wstring(L"R1")),
                     Field(L"ExecType", 0), Field(L"PositionEffect", 0)};
    m_bus.Apply(report);
    strategy.OnReportUpdate(m_host.OpenRecord(L"REPORT", nullptr).get());
    std::vector<std::wstring> meanwhile;
    m_engine.onLog = [&](const std::wstring& text) {
      if (text.find(L"CancelOrder Fail.") != std::wstring::npos) meanwhile = LogOfBatch(strategy);
    };
    strategy.OnStrategyEvent(lottery_event::kMakeRoom, 0);
    EXPECT_THAT(meanwhile, ElementsAre(EndsWith(L"> DoPlaceOrder. m_lStatus=5.")));
    EXPECT_THAT(m_host.log, Contains(EndsWith(L"> DoCancelOrderOpen Done. m_lStatus=6.")));
  });
}

TEST_F(OpenLotteryEvents, ALimitReachedInTheIdleStateDoesNothing) {
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    strategy.OnStrategyEvent(lottery_event::kLimitReached, 0);
    EXPECT_THAT(m_host.log, IsEmpty());
    EXPECT_THAT(m_host.requests, IsEmpty());
    EXPECT_THAT(m_host.subscriptions, IsEmpty());
    EXPECT_THAT(m_engine.posted, IsEmpty());
    EXPECT_THAT(LogOfBatch(strategy), ElementsAre(EndsWith(L"> DoPlaceOrder. m_lStatus=-1.")));
  });
}

/// A run in which the option opens only after the scan, so that its update is what judges it.
class OpenLotteryLateOption : public OpenLotteryEvents {
 protected:
  void OpenOptionInARun(const std::function<void(CStrategyOpenLottery& strategy)>& atOpenPriceLogged) {
    WithStrategy([&](CStrategyOpenLottery& strategy) {
      SetField(kOption, L"MCODE", 1);
      StartAtOnce(strategy, 0);
      m_engine.posted.clear();
      m_host.answer = [this](const Request& request, AnswerDocument*) {
        const bool verdict = request.topic == L"MSG.NewStrategyOrder" &&
                             request.text.find(L"\"OpenPriceOK\":1") != std::wstring::npos;
        if (verdict) m_postedWhenTold.push_back(m_engine.posted);
        return Value();
      };
      m_engine.onLog = [&](const std::wstring& text) {
        if (text.find(L"LogOpenPrice.") != std::wstring::npos) atOpenPriceLogged(strategy);
      };
      OpenOption();
      m_bus.Fire(kOption, {});
      m_engine.onLog = nullptr;
    });
  }

  /// What had been posted when the verdict was told; one entry for each telling.
  std::vector<std::vector<uint32_t>> m_postedWhenTold;
};

TEST_F(OpenLotteryLateOption, ItsPassAsksForRoomBeforeItIsTold) {
  OpenOptionInARun([](CStrategyOpenLottery&) {});
  EXPECT_THAT(m_postedWhenTold, ElementsAre(ElementsAre(lottery_event::kMakeRoom)));
  EXPECT_THAT(m_engine.posted, ElementsAre(lottery_event::kMakeRoom));
}

TEST_F(OpenLotteryLateOption, ItsPassAsksForNoRoomIfTheRunHasEndedMeanwhile) {
  OpenOptionInARun(
      // A minute tick in the minute of the stop time.
      [](CStrategyOpenLottery& strategy) { strategy.Start(0); });
  EXPECT_THAT(m_postedWhenTold, ElementsAre(IsEmpty()));
  EXPECT_THAT(m_engine.posted, IsEmpty());
}

TEST_F(OpenLotteryEvents, TheTotalCashIsThatOfTheBatchUntilTheNextReset) {
  OpenOption();
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    EXPECT_EQ(0, strategy.GetLongValue(L"TotalCashOrder", -7));
    StartAtOnce(strategy, 11);
    EXPECT_EQ(0, strategy.GetLongValue(L"TotalCashOrder", -7)) << "no batch yet";
    LogOfBatch(strategy);
    EXPECT_EQ(10, strategy.GetLongValue(L"TotalCashOrder", -7)) << "five lots at 2";
    StartAtOnce(strategy, 11);
    EXPECT_EQ(0, strategy.GetLongValue(L"TotalCashOrder", -7));
  });
}

TEST_F(OpenLotteryEvents, AnyOtherLongValueIsTheFallback) {
  OpenOption();
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    StartAtOnce(strategy, 11);
    LogOfBatch(strategy);
    for (const wchar_t* name : {L"TotalCash", L"totalcashorder", L"TotalCashOrder ", L""}) {
      EXPECT_EQ(-7, strategy.GetLongValue(name, -7)) << name;
    }
  });
}

TEST_F(OpenLotteryEvents, ABatchTakesAllHitsWhetherItCanPayThemOrNot) {
  OpenOption();
  WithStrategy([this](CStrategyOpenLottery& strategy) {
    StartAtOnce(strategy, 0);
    EXPECT_THAT(LogOfBatch(strategy), Contains(EndsWith(L"> DoPlaceOrder. arSymbol.GetCount()=1.")));
    EXPECT_THAT(LogOfBatch(strategy), ElementsAre(EndsWith(L"> DoPlaceOrder. m_lStatus=2."),
                                                  EndsWith(L"> DoPlaceOrder. arSymbol.GetCount()=0.")));
  });
}

}  // namespace
}  // namespace iorder::testing

#include "engine/tag_totals.h"

#include <gmock/gmock.h>

#include "tests/reference/reference_fixture.h"
#include "tests/strategy/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Key;

class CStrategyWithTotals : public CStrategy {
 public:
  using CStrategy::CStrategy;
  double GetDoubleValue(const std::wstring& name, double fallback) override {
    return name == L"Cost" ? cost : name == L"PnL" ? profit : fallback;
  }

  double cost = 0.0;
  double profit = 0.0;
};

class TagTotals : public ReferenceTest {
 protected:
  /// Adds a strategy and gives the tag that it was added to, "-" for none.
  std::wstring Add(CTagTotals& totals, const char* type, const char* tag, double cost, double profit) {
    std::wstring added = L"-";
    Run([&] {
      const auto strategy = std::make_shared<CStrategyWithTotals>(m_engine);
      rapidjson::Document info;
      info.SetObject();
      info.AddMember("StrategyType", rapidjson::StringRef(type), info.GetAllocator());
      info.AddMember("StrategyTag", rapidjson::StringRef(tag), info.GetAllocator());
      strategy->ParseStrategyInfo(info);
      strategy->cost = cost;
      strategy->profit = profit;
      if (const std::wstring* found = totals.Add(*strategy)) added = *found;
    });
    return added;
  }

  CRecordingEngine m_engine{m_host};
};

TEST_F(TagTotals, StrategiesOfOneTagAreAddedUp) {
  CTagTotals totals;
  EXPECT_EQ(L"T", Add(totals, "OpenLottery", "T", 100, 10));
  EXPECT_EQ(L"T", Add(totals, "OpenLottery", "T", 50, -30));
  EXPECT_EQ(L"U", Add(totals, "OpenLottery", "U", 7, 1));
  EXPECT_EQ(150, totals.Of(L"T").dbCost);
  EXPECT_EQ(-20, totals.Of(L"T").dbPnL);
  EXPECT_EQ(7, totals.Of(L"U").dbCost);
  EXPECT_THAT(totals.All(), ElementsAre(Key(L"T"), Key(L"U")));
}

TEST_F(TagTotals, StrategiesOfAnotherTypeCountNowhere) {
  CTagTotals totals;
  EXPECT_EQ(L"-", Add(totals, "Other", "T", 100, 10));
  EXPECT_TRUE(totals.All().empty());
}

TEST_F(TagTotals, AStrategyWithoutMoneyStillShowsItsTag) {
  CTagTotals totals;
  EXPECT_EQ(L"T", Add(totals, "OpenLottery", "T", 0, 0));
  EXPECT_THAT(totals.All(), ElementsAre(Key(L"T")));
}

TEST_F(TagTotals, ATagThatIsNotThereHasNothing) {
  const CTagTotals totals;
  EXPECT_EQ(0.0, totals.Of(L"T").dbCost);
  EXPECT_EQ(0.0, totals.Of(L"T").dbPnL);
}

}  // namespace
}  // namespace iorder::testing

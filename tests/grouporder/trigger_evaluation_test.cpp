#include "grouporder/trigger_evaluation.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

/// An order on field "Delta" with a first check on "Vega" and a second on "Theta", each of 100 and a tenth.
class TriggerEvaluation : public ::testing::Test {
 protected:
  TriggerEvaluation() {
    m_order.strStrategyID = L"G1";
    m_order.strStopName = L"Delta";
    m_order.dbStopFactor = 1.0;
    m_order.strCheckName1 = L"Vega";
    m_order.strCheckName2 = L"Theta";
    m_order.llCheckValue1 = m_order.llCheckValue2 = 100;
    m_order.dbCheckRange1 = m_order.dbCheckRange2 = 0.1;
  }

  void Hold(double delta, double vega, double theta) {
    RecordChange node{.name = L"G1"};
    node.items.push_back({.name = L"item",
                          .fields = {Field(L"Quantity", 1), Field(L"Delta", Scaled(delta)),
                                     Field(L"Vega", Scaled(vega)), Field(L"Theta", Scaled(theta))}});
    m_world.embeddedBus.Apply({.name = L"STRATEGY.POSITION", .nodes = {node}});
  }
  static Value Scaled(double number) { return ToScaled(number); }

  /// With the record "STRATEGY.POSITION" open.
  void With(const std::function<void(CBaseData& positions)>& body) {
    m_world.Run([&] {
      const int32_t handle = m_world.embeddedBus.Open(L"STRATEGY.POSITION");
      body(*CBaseData::OpenByHandle(m_world.world, handle, nullptr));
    });
  }

  CVirtualWorld m_world;
  stcIntlgntOrd m_order{m_world.runtime};
};

TEST_F(TriggerEvaluation, WithoutThePositionRecordTheSignOfTheTargetDecides) {
  m_world.Run([this] {
    m_order.dbStopValue = -3;
    const CStopCheck check = CheckStopCondition(m_order, nullptr);
    EXPECT_FALSE(check.bStop);
    EXPECT_FALSE(check.bPosition);
    EXPECT_EQ(direction::kFall, m_order.lDirection);
    m_order.lMultiplier.fill(7);
    const CBandChecks checks = ApplyCheckConditions(m_order, nullptr);
    EXPECT_FALSE(checks.first.has_value());
    EXPECT_EQ((PerLeg<int32_t>{1, 1, 1, 1}), m_order.lMultiplier);
  });
}

TEST_F(TriggerEvaluation, AStopCheckTellsWhatItSaw) {
  Hold(12.5, 0, 0);
  m_order.dbStopValue = 100;
  m_order.dbStopFactor = -2;
  With([this](CBaseData& positions) {
    const CStopCheck check = CheckStopCondition(m_order, &positions);
    EXPECT_TRUE(check.bPosition);
    EXPECT_FALSE(check.bStop);
    EXPECT_EQ(-25.0, check.dbValue);
  });
}

TEST_F(TriggerEvaluation, AnUnknownDirectionGoesOn) {
  Hold(100, 0, 0);
  m_order.dbStopValue = 100;
  m_order.lDirection = 3;
  With([this](CBaseData& positions) { EXPECT_FALSE(CheckStopCondition(m_order, &positions).bStop); });
}

TEST_F(TriggerEvaluation, BandChecksTellWhatTheySaw) {
  Hold(0, 111, 100);
  m_order.lDirection = direction::kRise;
  With([this](CBaseData& positions) {
    const CBandChecks checks = ApplyCheckConditions(m_order, &positions);
    ASSERT_TRUE(checks.first.has_value());
    EXPECT_EQ(111.0, checks.first->dbValue);
    EXPECT_EQ(100.0, checks.first->dbCentre);
    EXPECT_EQ(10.0, checks.first->dbHalfWidth);
    EXPECT_TRUE(checks.first->bOut);
    EXPECT_EQ(-1, checks.first->lSign);
    ASSERT_TRUE(checks.second.has_value());
    EXPECT_FALSE(checks.second->bOut);
    EXPECT_EQ(-1, checks.second->lSign) << "at the centre";
    EXPECT_EQ((PerLeg<int32_t>{1, 2, 1, 1}), m_order.lMultiplier);
  });
}

TEST_F(TriggerEvaluation, AnyDirectionButRisingDoublesLikeFalling) {
  Hold(0, 50, 50);
  With([this](CBaseData& positions) {
    for (const int32_t way : {direction::kUndecided, direction::kFall, 3}) {
      m_order.lDirection = way;
      ApplyCheckConditions(m_order, &positions);
      EXPECT_EQ((PerLeg<int32_t>{1, 2, 1, 1}), m_order.lMultiplier) << way;
    }
  });
}

TEST_F(TriggerEvaluation, ASumBeyond64BitsGoesRound) {
  RecordChange node{.name = L"G1"};
  for (int i = 0; i < 2; ++i) {
    node.items.push_back({.fields = {Field(L"Delta", int64_t{9000000000000000000})}});
  }
  m_world.embeddedBus.Apply({.name = L"STRATEGY.POSITION", .nodes = {node}});
  With([this](CBaseData& positions) {
    EXPECT_EQ(-44674407.3709551616, CheckStopCondition(m_order, &positions).dbValue);
  });
}

}  // namespace
}  // namespace iorder::test

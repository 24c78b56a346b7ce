// The group orders under examples/, on the day that is made for them: what they do is what the document says
// that they do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cmath>
#include <list>
#include <set>
#include <sstream>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class GroupOrderExample : public testing::Test {
 protected:
  /// Runs a command, on a chain that is subscribed already unless it is cold.
  void Run(const std::string& command, bool isCold = false) {
    const std::string folder = IORDER_EXAMPLES "/commands/";
    const ProgramResult result =
        m_folder.Run("replay " IORDER_EXAMPLES "/days/greeks.day.jsonl --json" +
                     (isCold ? "" : " --command '" + folder + "group-warm-up.json@08:46'") + " --command '" +
                     folder + command + "@08:47'");
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
      rapidjson::Document& object = m_objects.emplace_back();
      object.Parse(line);
      ASSERT_TRUE(object.IsObject()) << line;
      ASSERT_STRNE(object["kind"].GetString(), "fault") << line;
    }
  }
  /// What an order told of one kind.
  std::vector<const rapidjson::Document*> Told(const std::string& kind, const std::string& order) const {
    std::vector<const rapidjson::Document*> told;
    for (const rapidjson::Document& object : m_objects) {
      if (object["kind"].GetString() == kind && object["group_order"].GetString() == order)
        told.push_back(&object);
    }
    return told;
  }
  std::vector<double> Sums(const std::string& order) const {
    std::vector<double> sums;
    for (const auto* const look : Told("look", order)) {
      sums.push_back((*look)["sum"].IsNull() ? 0 : (*look)["sum"].GetDouble());
    }
    return sums;
  }
  /// "buy 2 C.17500" for each order.
  std::vector<std::string> Orders(const std::string& order) const {
    std::vector<std::string> orders;
    for (const auto* const sent : Told("order", order)) {
      const std::string symbol = (*sent)["symbol"].GetString();
      orders.push_back((*sent)["side"].GetString() + (" " + std::to_string((*sent)["lots"].GetInt())) + ' ' +
                       symbol.substr(symbol.size() - 7));
    }
    return orders;
  }
  std::vector<std::string> Texts(const std::string& kind, const std::string& order,
                                 const char* member) const {
    std::vector<std::string> texts;
    for (const auto* const told : Told(kind, order)) texts.push_back((*told)[member].GetString());
    return texts;
  }
  /// Leg that was doubled in each cycle; 0: none.
  std::vector<int> Doubled(const std::string& order) const {
    std::vector<int> legs;
    for (const auto* const cycle : Told("cycle", order))
      legs.push_back((*cycle)["doubled"].IsNull() ? 0 : (*cycle)["doubled"].GetInt());
    return legs;
  }
  /// Where an order stands at the end.
  std::string Stands(const std::string& order) const {
    for (const auto& row : m_objects.back()["group_orders"].GetArray()) {
      if (row["group_order"].GetString() == order) return row["words"].GetString();
    }
    return "";
  }
  /// Each leg has the option whose figure is nearest: no candidate behind it is nearer.
  void ExpectNearest(const std::string& order) const {
    for (const auto* const leg : Told("leg", order)) {
      const double distance = (*leg)["distance"].GetDouble();
      EXPECT_NEAR(distance, std::abs((*leg)["figure"].GetDouble() - (*leg)["wanted"].GetDouble()), 1e-9);
      ASSERT_EQ((*leg)["next"].Size(), 2u);
      EXPECT_LE(distance, (*leg)["next"][0]["distance"].GetDouble());
      EXPECT_LE((*leg)["next"][0]["distance"].GetDouble(), (*leg)["next"][1]["distance"].GetDouble());
      EXPECT_EQ((*leg)["candidates"].GetInt(), 15);
    }
  }

  CProgramFolder m_folder;
  std::list<rapidjson::Document> m_objects;
};

TEST_F(GroupOrderExample, AWarmUpSubscribesAndOrdersNothing) {
  Run("group-warm-up.json", true);
  EXPECT_THAT(Told("order", "WARM-UP"), IsEmpty());
  EXPECT_THAT(Told("leg", "WARM-UP"), SizeIs(2));
  EXPECT_EQ(Stands("WARM-UP"), "no order made, nothing will move it");
}

TEST_F(GroupOrderExample, ADeltaHedgeBuysCallsUntilTheDeltaIsNotNegative) {
  Run("group-delta-hedge.json");
  ExpectNearest("HEDGE");
  EXPECT_THAT(Orders("HEDGE"), ElementsAre("buy 2 C.17500", "buy 2 C.17500"));
  const std::vector<double> sums = Sums("HEDGE");
  ASSERT_THAT(sums, SizeIs(3));
  EXPECT_NEAR(sums[0], -1.71, 0.01);
  EXPECT_LT(sums[1], 0);
  EXPECT_GE(sums[2], 0);
  // Each cycle adds two calls' delta.
  const double call = (*Told("leg", "HEDGE")[0])["figure"].GetDouble();
  EXPECT_NEAR(sums[1] - sums[0], 2 * call, 1e-6);
  EXPECT_NEAR(sums[2] - sums[1], 2 * call, 1e-6);
  EXPECT_EQ(Stands("HEDGE"), "done, target reached");
}

TEST_F(GroupOrderExample, WithoutFiguresThePositionCountsForNothing) {
  Run("group-delta-hedge.json", true);
  EXPECT_THAT(Sums("HEDGE"), ElementsAre(0));
  EXPECT_THAT(Told("cycle", "HEDGE"), IsEmpty());
  EXPECT_EQ(Stands("HEDGE"), "done, target reached");
}

TEST_F(GroupOrderExample, AVannaTargetIsReachedByFourLegs) {
  Run("group-vanna.json");
  ExpectNearest("VANNA");
  EXPECT_THAT(Orders("VANNA"),
              ElementsAre("buy 2 C.17900", "sell 2 P.17100", "sell 1 C.17500", "buy 1 P.17500",
                          "buy 2 C.17900", "sell 2 P.17100", "sell 1 C.17500", "buy 1 P.17500"));
  const std::vector<double> sums = Sums("VANNA");
  ASSERT_THAT(sums, SizeIs(3));
  EXPECT_EQ(sums[0], 0);
  EXPECT_LT(sums[1], 60000);
  EXPECT_GE(sums[2], 60000);
  EXPECT_EQ(Stands("VANNA"), "done, target reached");
}

TEST_F(GroupOrderExample, EachCycleHasGroupsOfItsOwn) {
  Run("group-vanna.json");
  EXPECT_THAT(Texts("order", "VANNA", "group"), ElementsAre("A", "A", "B", "B", "A", "A", "B", "B"));
  const std::vector<std::string> ids = Texts("order", "VANNA", "group_id");
  ASSERT_THAT(ids, SizeIs(8));
  for (const size_t first : {0u, 2u, 4u, 6u}) EXPECT_EQ(ids[first], ids[first + 1]);
  EXPECT_THAT((std::set<std::string>{ids.begin(), ids.end()}), SizeIs(4));
}

TEST_F(GroupOrderExample, WithoutFiguresTheLowestStrikeIsTaken) {
  Run("group-vanna.json", true);
  std::vector<std::string> orders = Orders("VANNA");
  ASSERT_THAT(orders, SizeIs(12));
  EXPECT_THAT(
      (std::vector<std::string>{orders.begin(), orders.begin() + 5}),
      ElementsAre("buy 2 C.16800", "sell 2 P.16800", "sell 1 C.16800", "buy 1 P.16800", "buy 2 C.17900"));
  EXPECT_EQ((*Told("leg", "VANNA")[0])["without_figure"].GetInt(), 15);
  EXPECT_TRUE((*Told("leg", "VANNA")[0])["figure"].IsNull());
  // The call of leg 3 that the first cycle left over is sold before another is.
  EXPECT_EQ(orders[6], "sell 1 C.16800");
  EXPECT_EQ(Stands("VANNA"), "done, target reached");
}

TEST_F(GroupOrderExample, BelowItsBandsWhatIsBoughtIsDoubled) {
  Run("group-bands-below.json");
  ExpectNearest("BELOW");
  EXPECT_THAT(Doubled("BELOW"), ElementsAre(1, 0));
  EXPECT_THAT(Orders("BELOW"),
              ElementsAre("buy 2 C.17500", "sell 1 P.17500", "buy 1 C.17500", "sell 1 P.17500"));
  const auto* const cycle = Told("cycle", "BELOW")[0];
  EXPECT_EQ((*cycle)["checks"][0]["low"].GetDouble(), -50);
  EXPECT_EQ((*cycle)["checks"][0]["high"].GetDouble(), 50);
  EXPECT_LT((*cycle)["checks"][0]["value"].GetDouble(), -50);
  EXPECT_NEAR((*cycle)["checks"][1]["low"].GetDouble(), -0.002, 1e-12);
  EXPECT_LT((*cycle)["checks"][1]["value"].GetDouble(), -0.002);
  // The calls are bought back from those that were sold.
  const auto* const leg = Told("leg", "BELOW")[0];
  EXPECT_EQ((*leg)["offsets"][0]["lots"].GetInt(), 2);
  EXPECT_EQ((*leg)["opens"].GetInt(), 0);
  EXPECT_EQ(Stands("BELOW"), "done, target reached");
}

TEST_F(GroupOrderExample, AboveItsBandsWhatIsSoldIsDoubled) {
  Run("group-bands-above.json");
  ExpectNearest("ABOVE");
  EXPECT_THAT(Doubled("ABOVE"), ElementsAre(1, 0));
  EXPECT_THAT(Orders("ABOVE"),
              ElementsAre("sell 2 C.17500", "buy 1 P.17500", "sell 1 C.17500", "buy 1 P.17500"));
  EXPECT_GT((*Told("cycle", "ABOVE")[0])["checks"][0]["value"].GetDouble(), 50);
  const std::vector<double> sums = Sums("ABOVE");
  ASSERT_THAT(sums, SizeIs(3));
  EXPECT_GT(sums[0], 0);
  EXPECT_GT(sums[1], 0);
  EXPECT_LE(sums[2], 0);
  EXPECT_EQ(Stands("ABOVE"), "done, target reached");
}

}  // namespace
}  // namespace iorder

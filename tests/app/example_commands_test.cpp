// The commands under examples/, each on a made day: what it accepts is what opened within its band on the
// strikes that it keeps, and what it orders stays within its cash.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <map>
#include <set>
#include <sstream>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::IsEmpty;
using testing::Not;

class ExampleCommand : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(m_folder.Run("make-day --seed 1 --out a.day.jsonl").exitCode, 0); }

  /// Runs the command and notes what it accepted, rejected and ordered.
  void Run(const std::string& command) {
    const ProgramResult result =
        m_folder.Run("replay a.day.jsonl --json --command '" IORDER_EXAMPLES "/commands/" + command + "'");
    ASSERT_EQ(result.exitCode, 0);
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
      rapidjson::Document object;
      object.Parse(line);
      ASSERT_TRUE(object.IsObject()) << line;
      const std::string kind = object["kind"].GetString();
      if (kind == "judged") {
        (object["accepted"].GetBool() ? m_accepted : m_rejected).insert(object["symbol"].GetString());
      } else if (kind == "order") {
        m_orderedLots += object["lots"].GetInt64();
        m_orderedPrice = object["price"].GetDouble();
      } else if (kind == "fault") {
        ADD_FAILURE() << line;
      }
    }
  }
  /// The options of one right that opened within a band on the day.
  std::set<std::string> OpenedWithin(const std::string& right, double lowest, double highest) {
    std::istringstream lines(m_folder.Read("a.ticks.csv"));
    std::set<std::string> symbols;
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
      const std::string open = line.substr(line.rfind(',') + 1);
      if (open.empty() || line.find("." + right + ".") == std::string::npos) continue;
      const size_t begin = line.find(',') + 1;
      if (std::stod(open) >= lowest && std::stod(open) <= highest) {
        symbols.insert(line.substr(begin, line.find(',', begin) - begin));
      }
    }
    return symbols;
  }

  CProgramFolder m_folder;
  std::set<std::string> m_accepted;
  std::set<std::string> m_rejected;
  int64_t m_orderedLots = 0;
  double m_orderedPrice = 0;
};

TEST_F(ExampleCommand, CallsInABand) {
  Run("calls-in-a-band.json");
  EXPECT_EQ(m_accepted, OpenedWithin("C", 1, 50));
  EXPECT_THAT(m_accepted, Not(IsEmpty()));
}

TEST_F(ExampleCommand, PutsOutOfTheMoney) {
  Run("puts.json");
  // Of the strikes below the money, the third to the eighth.
  std::set<std::string> within = OpenedWithin("P", 1, 150);
  EXPECT_THAT(m_accepted, Not(IsEmpty()));
  for (const std::string& symbol : m_accepted) EXPECT_TRUE(within.contains(symbol)) << symbol;
  EXPECT_LE(m_accepted.size() + m_rejected.size(), 6u);
}

TEST_F(ExampleCommand, ImmediateStart) {
  Run("immediate-start.json@09:30");
  EXPECT_THAT(m_accepted, Not(IsEmpty()));
  EXPECT_EQ(m_orderedPrice, 4);
  EXPECT_GT(m_orderedLots, 0);
  EXPECT_LE(static_cast<double>(m_orderedLots) * m_orderedPrice, 200);
}

TEST_F(ExampleCommand, SpecialChain) {
  Run("special-chain.json@09:30");
  EXPECT_EQ(m_accepted, OpenedWithin("C", 1, 50));
  EXPECT_EQ(m_orderedPrice, 1.5);
  // 75 a lot: the cash is used up.
  EXPECT_EQ(m_orderedLots, 5000 / 75);
}

TEST_F(ExampleCommand, Stop) {
  const ProgramResult result = m_folder.Run("replay a.day.jsonl --command '" IORDER_EXAMPLES
                                            "/commands/calls-in-a-band.json' --command '" IORDER_EXAMPLES
                                            "/commands/stop.json@10:00'");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output,
              testing::HasSubstr("10:00:00.000  state         OpenLottery_CALLS_1: stopped by command\n"));
}

}  // namespace
}  // namespace iorder

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

using testing::ContainsRegex;
using testing::HasSubstr;
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
  /// What replay prints; the commands are files of the examples.
  std::string Output(std::string arguments) {
    for (size_t place = 0; (place = arguments.find("--command ", place)) != std::string::npos;) {
      place += std::string("--command ").size();
      arguments.insert(place, IORDER_EXAMPLES "/commands/");
    }
    const ProgramResult result = m_folder.Run("replay a.day.jsonl " + arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
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
  Run("nearest-expiry.json@09:30");
  EXPECT_EQ(m_accepted, OpenedWithin("C", 1, 50));
  EXPECT_EQ(m_orderedPrice, 1.5);
  // 75 a lot: the cash is used up.
  EXPECT_EQ(m_orderedLots, 5000 / 75);
}

TEST_F(ExampleCommand, Change) {
  const std::string output = Output("--command immediate-start.json@09:30 --command change.json@10:00");
  // The changed parameters start a new run, on the wider band.
  EXPECT_THAT(output, HasSubstr("10:00:00.000  state         OpenLottery_NOW_1: building the chain\n"));
  EXPECT_THAT(output,
              ContainsRegex("\n10:00:00.050  accepted      TX Mar24 [0-9]+ call opened at 1[0-4][0-9]"));
  EXPECT_THAT(output,
              ContainsRegex("\n10:00:00.050  batch         OpenLottery_NOW_1: the orders cost 400\n"));
}

TEST_F(ExampleCommand, Stop) {
  EXPECT_THAT(Output("--command calls-in-a-band.json --command stop.json@10:00"),
              HasSubstr("10:00:00.000  state         OpenLottery_CALLS_1: stopped by command\n"));
}

TEST_F(ExampleCommand, Delete) {
  EXPECT_THAT(Output("--command calls-in-a-band.json --command delete.json@10:00"),
              HasSubstr("10:00:00.000  strategy      OpenLottery_CALLS_1 is gone\n"));
}

TEST_F(ExampleCommand, Limits) {
  Output("--command limits.json --log a.log");
  EXPECT_THAT(
      m_folder.Read("a.log"),
      HasSubstr("[OpenLottery] Set. strStrategyID=CALLS, strStrategyTag=CALLS, Profit:Enable=1, Value=20000, "
                "ValueP=-1.000000, Loss:Enable=1, Value=-1, ValueP=50.000000."));
}

}  // namespace
}  // namespace iorder

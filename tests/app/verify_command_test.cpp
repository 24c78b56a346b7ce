#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kDay = R"({"day": {"start": "2024-03-04T08:40:00", "end": "08:41:00"}})";
constexpr const char* kHolds = R"({"event": "advertise", "topic": "TRADE.IntelligentOrder"})";
constexpr const char* kFails = R"({"event": "advertise", "topic": "NOWHERE"})";

class Verify : public testing::Test {
 protected:
  CProgramFolder m_folder;

  void Case(const std::string& name, const std::string& expectation, const std::string& day = kDay) {
    m_folder.Write(name + ".day.jsonl", day);
    m_folder.Write(name + ".expect.jsonl", expectation);
  }
  ProgramResult Run(const std::string& arguments) { return m_folder.Run("verify " + arguments); }
};

TEST_F(Verify, CountsWhatPassesAndWhatFails) {
  Case("d/a", kHolds);
  Case("d/b", kFails);
  Case("d/inner/c", kHolds);
  const ProgramResult result = Run("d");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, StartsWith("FAILED d/b.day.jsonl\nd/b.expect.jsonl:1: "));
  EXPECT_THAT(result.output, HasSubstr(kFails));
  EXPECT_THAT(result.output,
              HasSubstr(R"("event": "advertise", "topic": "TRADE.IntelligentOrder", "value": 1})"));
  EXPECT_THAT(result.output, EndsWith("\n2 passed, 1 failed\n"));
}

TEST_F(Verify, AllPassing) {
  Case("a", kHolds);
  const ProgramResult result = Run("a.day.jsonl");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "1 passed, 0 failed\n");
  EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(Verify, RunsEachDayWithEachSeed) {
  Case("d/a", kHolds);
  Case("d/b", kFails);
  const ProgramResult result = Run("d --seeds 3:5 --jobs 2");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, EndsWith("\n3 passed, 3 failed\n"));
  for (const char* const seed : {"3", "4", "5"}) {
    EXPECT_THAT(result.output, HasSubstr(std::string("FAILED d/b.day.jsonl with seed ") + seed + "\n"));
  }
}

TEST_F(Verify, TheOutputDoesNotDependOnTheJobs) {
  for (const char* const name : {"d/a", "d/b", "d/c", "d/e"}) Case(name, kFails);
  const std::string one = Run("d --jobs 1").output;
  EXPECT_EQ(Run("d --jobs 4").output, one);
  EXPECT_THAT(one, StartsWith("FAILED d/a.day.jsonl\n"));
}

TEST_F(Verify, DaysWithoutExpectationAreLeftOutOfAFolder) {
  Case("d/a", kHolds);
  m_folder.Write("d/b.day.jsonl", kDay);
  EXPECT_EQ(Run("d").output, "1 passed, 0 failed\n");
}

TEST_F(Verify, AnExpectationWithoutItsDayIsAnError) {
  Case("d/a", kHolds);
  m_folder.Write("d/b.expect.jsonl", kHolds);
  const ProgramResult result = Run("d");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("d/b.expect.jsonl: has no day beside it, expected d/b.day.jsonl"));
}

TEST_F(Verify, AMistakeThatShowsOnlyAsADayIsPlayedFailsItsCaseAlone) {
  Case("d/a", kHolds,
       std::string(kDay) + "\n" + R"({"at": "08:40:30", "report": {"order": 1, "ExecType": 0}})");
  Case("d/b", kHolds);
  const ProgramResult result = Run("d");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, StartsWith("FAILED d/a.day.jsonl\nthe day: d/a.day.jsonl:2: "));
  EXPECT_THAT(result.output, EndsWith("\n1 passed, 1 failed\n"));
}

TEST_F(Verify, ADayNamedItselfNeedsAnExpectation) {
  m_folder.Write("b.day.jsonl", kDay);
  const ProgramResult result = Run("b.day.jsonl");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors,
            "iorder: b.day.jsonl: has no expectation file, expected b.expect.jsonl beside it\n");
}

TEST_F(Verify, APathWithoutDaysIsAnError) {
  std::filesystem::create_directory(m_folder.File("d"));
  EXPECT_EQ(Run("d").exitCode, 2);
  EXPECT_THAT(Run("d").errors, StartsWith("iorder: d: holds no day with an expectation file"));
  EXPECT_THAT(Run("nowhere").errors, StartsWith("iorder: nowhere: isn't there"));
  EXPECT_THAT(Run("").errors, HasSubstr("PATH is required"));
}

TEST_F(Verify, AMistakeInADayOrExpectationRunsNothing) {
  Case("d/a", kHolds);
  Case("d/b", R"({"evnt": "log"})");
  Case("d/c", kHolds, "{}");
  const ProgramResult result = Run("d");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.output, IsEmpty());
  EXPECT_THAT(result.errors, StartsWith("iorder: d/b.expect.jsonl:1: "));
  EXPECT_THAT(Run("d/c.day.jsonl").errors, StartsWith("iorder: d/c.day.jsonl:1: "));
}

TEST_F(Verify, TheNativeClockSkipsWhatItCannotShow) {
  Case("d/a", kHolds);
  Case("d/b", kFails, std::string(kDay) + "\n{\"note\": \"virtual only: asks for one order of threads\"}\n");
  const ProgramResult result = Run("d --clock native --speed 600");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "1 passed, 0 failed, 1 skipped (virtual only)\n");
  EXPECT_EQ(Run("d").exitCode, 1);
}

/// A strategy that asks for strikes beyond the list: its selection ends in a fault.
constexpr const char* kFaultyDay =
    R"({"day": {"start": "2024-03-04T09:00:00", "end": "09:01:00", "subscriptions": "open"}}
{"settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\nND.O.TWF.TX=ND.F.TWF.TX\n"}
{"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.100", "Type": "O", "SearchName": "100", "product": "TX", "setpriadj": ""}, {"Symbol": "ND.O.TWF.TX.202403.C.110", "Type": "O", "SearchName": "110", "product": "TX", "setpriadj": ""}]}
{"quote": "ND.F.TWF.TX.202403", "price": 105, "open": 105}
{"at": "09:00:10", "command": {"StrategyType": "OpenLottery", "StrategyID": "F", "Action": 1, "Symbol": {"Security": "ND.O.TWF.TX.202403"}, "Start": {"Time": 845, "Run": 1, "DayOfWeek": [1]}, "Stop": {"Time": 1330}, "Condition": {"StrikePrice": {"IsITM": 1, "ITM_D": 1, "ITM_U": 1, "IsOTM": 1, "OTM_D": 1, "OTM_U": 1}}, "OrderPrice": {"Price": 1}}}
)";

TEST_F(Verify, AFaultThatNobodyNamesFails) {
  Case("a", kHolds, kFaultyDay);
  const ProgramResult result = Run("a.day.jsonl");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr("a fault that no line of the expectation file names:\n    {\"at\": "));
  EXPECT_THAT(result.output, HasSubstr("0x80070057"));
}

TEST_F(Verify, AFaultThatIsNamedPasses) {
  for (const char* const line :
       {R"({"event": "fault", "code": "0x80070057"})", R"({"any_order": [{"event": "fault"}]})",
        R"({"count": 1, "of": {"event": "fault"}})"}) {
    Case("a", line, kFaultyDay);
    EXPECT_EQ(Run("a.day.jsonl").output, "1 passed, 0 failed\n") << line;
  }
}

TEST_F(Verify, OptionsThatAreWrong) {
  Case("a", kHolds);
  const std::pair<const char*, const char*> cases[] = {
      {"--seeds 5", "--seeds: '5', expected FIRST:LAST"},
      {"--seeds 5:4", "--seeds: '5:4', expected FIRST:LAST"},
      {"--seeds -1:4", "--seeds: '-1:4', expected FIRST:LAST"},
      {"--seeds 0:99999999", "--seeds: '0:99999999', expected FIRST:LAST"},
      {"--seeds 0:1 --clock native", "--seeds: real threads can't be drawn"},
      {"--jobs 0", "--jobs: '0', expected a whole number from 1 to 1024"},
      {"--clock x", "--clock: 'x', expected virtual or native"},
  };
  for (const auto& [arguments, message] : cases) {
    const ProgramResult result = Run(std::string("a.day.jsonl ") + arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_THAT(result.errors, HasSubstr(message)) << arguments;
    EXPECT_THAT(result.output, IsEmpty()) << arguments;
  }
}

}  // namespace
}  // namespace iorder

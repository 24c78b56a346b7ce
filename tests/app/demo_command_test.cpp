#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Demo, TellsFromTheCommandToTheOrders) {
  const CProgramFolder folder;
  const ProgramResult result = folder.Run("demo");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, IsEmpty());
  EXPECT_THAT(result.output, HasSubstr(R"("StrategyType": "OpenLottery")"));
  EXPECT_THAT(result.output,
              ContainsRegex("The engine looked at [0-9]+ calls that had opened. [0-9]+ of them"));
  EXPECT_THAT(result.output, ContainsRegex("  buy [0-9]+ TX Mar24 [0-9]+ call +at 5 points, account B1/A1"));
  EXPECT_THAT(result.output, HasSubstr("Together they cost 10000."));
}

TEST(Demo, TellsWhatBecameOfTheOrders) {
  const CProgramFolder folder;
  const std::string output = folder.Run("demo").output;
  EXPECT_THAT(output, ContainsRegex("  [0-9:]+  bought +[0-9]+ TX Mar24 [0-9]+ call +at 5 points"));
  EXPECT_THAT(output, ContainsRegex("  13:30:00  sold +[0-9]+ TX Mar24 [0-9]+ call +at [0-9.]+ points"));
  EXPECT_THAT(output, ContainsRegex("That cost [0-9]+ and brought a (loss|profit) of [0-9]+"));
}

TEST(Demo, LeavesNothingBehind) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("demo --seed 3").exitCode, 0);
  EXPECT_THAT(folder.Files(), IsEmpty());
  EXPECT_THAT(folder.TemporaryFiles(), IsEmpty());
}

TEST(Demo, TellsTheSameEachTime) {
  const CProgramFolder folder;
  EXPECT_EQ(folder.Run("demo").output, folder.Run("demo").output);
  EXPECT_NE(folder.Run("demo").output, folder.Run("demo --seed 2").output);
}

}  // namespace
}  // namespace iorder

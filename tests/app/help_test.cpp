#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kCommands[] = {"demo",   "replay",        "verify", "make-day",
                                     "import", "import taifex", "price"};

std::string Help(const std::string& command) {
  const ProgramResult result = CProgramFolder().Run(command + " --help");
  EXPECT_EQ(result.exitCode, 0) << command;
  EXPECT_THAT(result.errors, IsEmpty()) << command;
  return result.output;
}

/// The part of the document about the program, up to the order command.
std::string Document() {
  std::ifstream file(IORDER_DOCS "/commands.md");
  std::ostringstream text;
  text << file.rdbuf();
  const std::string all = text.str();
  return all.substr(0, all.find("\n## The order command"));
}

TEST(Help, NamesEveryCommand) {
  const std::string help = Help("");
  for (const char* const command : {"demo", "replay", "verify", "make-day", "import", "price"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + command + " "));
  }
  EXPECT_THAT(help, HasSubstr("Exit codes: 0 done, 1 "));
}

TEST(Help, EveryCommandHasExamples) {
  for (const std::string command : {"demo", "replay", "verify", "make-day", "import taifex", "price"}) {
    EXPECT_THAT(Help(command), HasSubstr("Examples:\n  iorder " + command)) << command;
  }
}

TEST(Help, EveryOptionStandsInTheDocument) {
  const std::string document = Document();
  ASSERT_THAT(document, StartsWith("# Commands"));
  std::set<std::string> options;
  for (const std::string command : kCommands) {
    const std::string help = Help(command);
    const std::regex option("\n  (?:-h,)?(--[a-z-]+)");
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      options.insert((*found)[1]);
    }
    EXPECT_THAT(document, HasSubstr("iorder " + command)) << command;
  }
  EXPECT_GT(options.size(), 20u);
  for (const std::string& option : options) EXPECT_THAT(document, HasSubstr(option));
}

TEST(Help, TheVersionIsOneLine) {
  const ProgramResult result = CProgramFolder().Run("--version");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, testing::MatchesRegex("iorder [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace iorder

// What the program says of input that it can't take: one line with file, line, what is wrong and what was
// expected; exit code 2; nothing left behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr const char* kHead = R"({"day": {"start": "2024-03-04T08:40:00", "end": "08:50:00"}})"
                              "\n";

class BadInput : public testing::Test {
 protected:
  CProgramFolder m_folder;

  /// Runs `arguments` with --trace and --log and checks all but the text of the message, which it gives.
  std::string Replay(const std::string& arguments) {
    const std::vector<std::string> before = m_folder.Files();
    const ProgramResult result =
        m_folder.Run("replay " + arguments + " --trace t.trace.jsonl.gz --log t.log");
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_EQ(m_folder.Files(), before);
    EXPECT_THAT(m_folder.TemporaryFiles(), IsEmpty());
    EXPECT_THAT(result.errors, StartsWith("iorder: "));
    return result.errors.substr(std::min<size_t>(result.errors.size(), 8));
  }
  std::string ReplayDay(const std::string& lines) {
    m_folder.Write("a.day.jsonl", kHead + lines);
    return Replay("a.day.jsonl");
  }
  std::string ReplayTicks(const std::string& table, const std::string& name = "a.csv") {
    m_folder.Write(name, table);
    return ReplayDay(R"({"ticks": ")" + name + "\"}\n");
  }
};

TEST_F(BadInput, AFileThatIsNotThere) {
  EXPECT_EQ(Replay("a.day.jsonl"), "a.day.jsonl: can't be opened: No such file or directory\n");
  EXPECT_THAT(ReplayDay(R"({"ticks": "b.csv"})"), HasSubstr("b.csv: can't be opened"));
  m_folder.Write("a.day.jsonl", kHead);
  EXPECT_THAT(Replay("a.day.jsonl --command c.json"), StartsWith("c.json: can't be opened"));
}

TEST_F(BadInput, AFolder) {
  std::filesystem::create_directory(m_folder.File("f.day.jsonl"));
  EXPECT_EQ(Replay("f.day.jsonl"), "f.day.jsonl: is a directory; a file was expected\n");
  m_folder.Write("a.day.jsonl", kHead);
  EXPECT_THAT(Replay("a.day.jsonl --command f.day.jsonl"), HasSubstr("is a directory"));
}

TEST_F(BadInput, AnEmptyFile) {
  m_folder.Write("a.day.jsonl", "");
  EXPECT_THAT(Replay("a.day.jsonl"), StartsWith("a.day.jsonl: is empty"));
  EXPECT_THAT(ReplayTicks(""), StartsWith("a.csv: is empty"));
}

TEST_F(BadInput, AnUnknownKey) {
  EXPECT_EQ(ReplayDay(R"({"quote": "X", "prise": 5})"),
            "a.day.jsonl:2: unknown key 'prise' in quote; did you mean 'price'?\n");
}

TEST_F(BadInput, AnUnknownAction) {
  EXPECT_THAT(ReplayDay(R"({"qoute": "X"})"), StartsWith("a.day.jsonl:2: "));
}

TEST_F(BadInput, ATimeThatGoesBack) {
  EXPECT_THAT(ReplayDay("{\"at\": \"08:45:00\", \"note\": \"\"}\n{\"at\": \"08:44:00\", \"note\": \"\"}\n"),
              StartsWith("a.day.jsonl:3: "));
  EXPECT_THAT(ReplayTicks("at,symbol,price\n08:45:00,X,1\n08:44:59,X,1\n"), StartsWith("a.csv:3: "));
}

TEST_F(BadInput, AWrongColumn) {
  EXPECT_EQ(ReplayTicks("at,symbol,prise\n").substr(0, 8), "a.csv:1:");
  EXPECT_THAT(ReplayTicks("at,symbol,prise\n"), HasSubstr("'prise'"));
}

TEST_F(BadInput, ANumberOutOfRange) {
  EXPECT_THAT(ReplayDay(R"({"quote": "X", "qty": 99999999999999999999})"), StartsWith("a.day.jsonl:2: "));
  EXPECT_THAT(ReplayTicks("at,symbol,qty\n08:45:00,X,99999999999999999999\n"), StartsWith("a.csv:2: "));
}

TEST_F(BadInput, ABrokenPackedFile) {
  m_folder.Write("a.day.jsonl.gz", "this isn't packed");
  EXPECT_THAT(Replay("a.day.jsonl.gz"), StartsWith("a.day.jsonl.gz: "));
  m_folder.Write("a.day.jsonl.zst", "this isn't packed");
  EXPECT_THAT(Replay("a.day.jsonl.zst"), StartsWith("a.day.jsonl.zst: "));
  // Cut short in the middle of the rows: that shows only while the day is played.
  ASSERT_EQ(m_folder.Run("make-day --ticks 100000 --out m.day.jsonl.gz").exitCode, 0);
  std::filesystem::resize_file(m_folder.File("m.ticks.csv.gz"), 200'000);
  EXPECT_THAT(Replay("m.day.jsonl.gz"), HasSubstr("m.ticks.csv.gz"));
}

TEST_F(BadInput, AMistakeLateInTheTicksLeavesNothing) {
  std::string table = "at,symbol,price\n";
  for (int i = 0; i < 5000; ++i) table += "08:45:00,X,1\n";
  EXPECT_THAT(ReplayTicks(table + "08:45:00,X,one\n"), StartsWith("a.csv:5002: "));
}

TEST_F(BadInput, ATimeZoneThatIsNone) {
  m_folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "timezone": "Asia/Nowhere"}})");
  EXPECT_THAT(Replay("a.day.jsonl"), AllOf(StartsWith("a.day.jsonl:"), HasSubstr("Asia/Nowhere")));
}

TEST_F(BadInput, ACommandAtAWrongTime) {
  m_folder.Write("a.day.jsonl", kHead);
  m_folder.Write("c.json", "{}");
  EXPECT_THAT(Replay("a.day.jsonl --command c.json@25:00"), HasSubstr("'c.json@25:00', expected FILE@HH:MM"));
  for (const char* const time : {"08:39", "08:50:01"}) {
    EXPECT_EQ(Replay(std::string("a.day.jsonl --command c.json@") + time),
              std::string("--command: 'c.json@") + time +
                  "' lies outside the day, expected a time from 08:40:00 to 08:50:00\n");
  }
}

TEST_F(BadInput, ACommandBeforeADayThatNamesNoEnd) {
  m_folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00"}})");
  m_folder.Write("c.json", "{}");
  EXPECT_EQ(Replay("a.day.jsonl --command c.json@08:39"),
            "--command: 'c.json@08:39' comes before the day, expected a time from 08:40:00, or a day with an "
            "'end' on the next date\n");
  EXPECT_EQ(m_folder.Run("replay a.day.jsonl --command c.json@08:40").exitCode, 0);
}

TEST_F(BadInput, OptionsThatAreWrong) {
  m_folder.Write("a.day.jsonl", kHead);
  const std::pair<const char*, const char*> cases[] = {
      {"--clock sundial", "--clock: 'sundial', expected virtual or native"},
      {"--speed 0 --clock native", "--speed: '0', expected a number above 0 up to 1000"},
      {"--speed fast --clock native", "--speed: 'fast', expected a number"},
      {"--speed 2", "--speed: the virtual clock has no speed, expected --clock native beside it"},
      {"--seed -1", "--seed: '-1', expected a whole number from 0"},
      {"--seed 1 --clock native", "--seed: real threads can't be drawn"},
      {"--colour", "'--colour' isn't known"},
  };
  for (const auto& [arguments, message] : cases) {
    EXPECT_THAT(Replay(std::string("a.day.jsonl ") + arguments), HasSubstr(message)) << arguments;
  }
  EXPECT_THAT(Replay(""), HasSubstr("DAY is required"));
  EXPECT_EQ(m_folder.Run("replay a.day.jsonl --inputs").errors,
            "iorder: --inputs requires --trace (see iorder --help)\n");
}

TEST_F(BadInput, OutputsThatCannotBeWritten) {
  m_folder.Write("a.day.jsonl", kHead);
  for (const char* const option : {"--trace", "--log"}) {
    for (const auto& [target, reason] :
         {std::pair{"nowhere/x", "nowhere/x: can't be written: No such file or directory"},
          std::pair{".", ".: is a folder, expected a file to write"},
          std::pair{"/dev/full", "/dev/full: can't be written"}}) {
      const ProgramResult result = m_folder.Run(std::string("replay a.day.jsonl ") + option + ' ' + target);
      EXPECT_EQ(result.exitCode, 2) << option << ' ' << target;
      EXPECT_THAT(result.errors, HasSubstr(reason)) << option;
      EXPECT_THAT(m_folder.Files(), ElementsAre("a.day.jsonl"));
    }
  }
}

TEST_F(BadInput, AFullDiskAndABrokenPipeAreErrors) {
  m_folder.Write("a.day.jsonl", kHead);
  const std::string program = CProgramFolder::Program();
  const ProgramResult full = m_folder.RunShell(program + " replay a.day.jsonl >/dev/full");
  EXPECT_EQ(full.exitCode, 2);
  EXPECT_EQ(full.errors, "iorder: the output can't be written\n");
  const ProgramResult broken =
      m_folder.RunShell("{ sleep 0.2; " + program + " replay a.day.jsonl; echo $? >&2; } | true");
  EXPECT_EQ(broken.errors, "iorder: the output can't be written\n2\n");
}

TEST_F(BadInput, NoPlaceForTemporaryFiles) {
  const ProgramResult result =
      m_folder.RunShell("export TMPDIR=\"$PWD/nowhere\"; " + CProgramFolder::Program() + " demo");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors,
              MatchesRegex("iorder: [^\n]+no folder for temporary files, TMPDIR names it[^\n]+\n"));
}

TEST_F(BadInput, CommandsThatAreNone) {
  for (const char* const arguments : {"", "rerun", "import", "replay"}) {
    const ProgramResult result = m_folder.Run(arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_THAT(result.errors, MatchesRegex("iorder: [^\n]+\n")) << arguments;
    EXPECT_THAT(result.output, IsEmpty());
  }
}

}  // namespace
}  // namespace iorder

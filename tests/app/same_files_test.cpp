// A run never writes over what it reads, nor two things into one file, however the paths are spelled.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::EndsWith;
using testing::IsEmpty;

class SameFiles : public testing::Test {
 protected:
  SameFiles() {
    m_folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "end": "08:41:00"}})"
                                  "\n"
                                  R"({"ticks": "a.ticks.csv"})"
                                  "\n");
    m_folder.Write("a.ticks.csv", "at,symbol,price\n08:40:30,X,1\n");
    m_folder.Write("c.json", "{}");
  }

  /// What the program says as it refuses; everything stays as it was.
  std::string Refusal(const std::string& options) {
    const std::map<std::string, std::string> before = Contents();
    const ProgramResult result = m_folder.Run("replay a.day.jsonl --command c.json@08:40 " + options);
    EXPECT_EQ(result.exitCode, 2) << options;
    EXPECT_THAT(result.output, IsEmpty()) << options;
    EXPECT_EQ(Contents(), before) << options;
    return result.errors;
  }
  std::map<std::string, std::string> Contents() const {
    std::map<std::string, std::string> contents;
    for (const std::string& name : m_folder.Files()) {
      const bool isFile = std::filesystem::is_regular_file(m_folder.File(name));
      contents[name] = isFile ? m_folder.Read(name) : "no file";
    }
    return contents;
  }

  CProgramFolder m_folder;
};

TEST_F(SameFiles, NoOutputIsTheDay) {
  EXPECT_EQ(Refusal("--trace ./a.day.jsonl"),
            "iorder: ./a.day.jsonl: is the day, which is read; expected another place for the trace\n");
  EXPECT_EQ(Refusal("--log a.day.jsonl"),
            "iorder: a.day.jsonl: is the day, which is read; expected another place for the log\n");
  EXPECT_EQ(
      Refusal("--csv a.day.jsonl"),
      "iorder: a.day.jsonl: is the day, which is read; expected another place for the folder of tables\n");
}

TEST_F(SameFiles, NoOutputIsATickFileOfTheDay) {
  EXPECT_EQ(Refusal("--trace a.ticks.csv"),
            "iorder: a.ticks.csv: is a tick file of the day, which is read; expected another place for the "
            "trace\n");
  EXPECT_THAT(
      Refusal("--log $PWD/a.ticks.csv"),
      EndsWith("a.ticks.csv: is a tick file of the day, which is read; expected another place for the "
               "log\n"));
}

TEST_F(SameFiles, NoOutputIsACommand) {
  EXPECT_EQ(Refusal("--trace c.json"),
            "iorder: c.json: is a command, which is read; expected another place for the trace\n");
  EXPECT_EQ(Refusal("--log c.json"),
            "iorder: c.json: is a command, which is read; expected another place for the log\n");
}

TEST_F(SameFiles, NoTableIsAnInput) {
  for (const std::string table : {"orders.csv", "fills.csv", "positions.csv", "profit.csv"}) {
    m_folder.Write(table, "at,symbol,price\n08:40:30,X,1\n");
    m_folder.Write("a.day.jsonl", R"({"day": {"start": "2024-03-04T08:40:00", "end": "08:41:00"}})"
                                  "\n"
                                  R"({"ticks": ")" +
                                      table + "\"}\n");
    EXPECT_EQ(Refusal("--csv ."), "iorder: ./" + table +
                                      ": is a tick file of the day, which is read; expected another place "
                                      "for a table\n");
  }
  m_folder.Write("t/orders.csv", "{}");
  EXPECT_EQ(Refusal("--command t/orders.csv@08:41 --csv t"),
            "iorder: t/orders.csv: is a command, which is read; expected another place for a table\n");
}

TEST_F(SameFiles, TwoOutputsAreNotOneFile) {
  EXPECT_EQ(Refusal("--trace x --log ./x"),
            "iorder: ./x: is to be the trace too; expected another place for the log\n");
  EXPECT_EQ(Refusal("--trace t/../x --log x"),
            "iorder: x: is to be the trace too; expected another place for the log\n");
  EXPECT_EQ(Refusal("--trace t/orders.csv --csv t"),
            "iorder: t/orders.csv: is to be the trace too; expected another place for a table\n");
  EXPECT_EQ(Refusal("--log t/profit.csv --csv t/"),
            "iorder: t/profit.csv: is to be the log too; expected another place for a table\n");
  EXPECT_EQ(Refusal("--trace t --csv t"),
            "iorder: t: is to be the trace too; expected another place for the folder of tables\n");
}

TEST_F(SameFiles, ALinkIsTheFileThatItLeadsTo) {
  std::filesystem::create_symlink("a.day.jsonl", m_folder.File("link"));
  EXPECT_EQ(Refusal("--trace link"),
            "iorder: link: is the day, which is read; expected another place for the trace\n");
}

TEST_F(SameFiles, AnOutputHasAName) {
  EXPECT_EQ(Refusal("--trace ''"), "iorder: --trace: '', expected a file (see iorder --help)\n");
  EXPECT_EQ(Refusal("--log ''"), "iorder: --log: '', expected a file (see iorder --help)\n");
  EXPECT_EQ(Refusal("--csv ''"), "iorder: --csv: '', expected a folder (see iorder --help)\n");
}

}  // namespace
}  // namespace iorder

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/program_folder.h"
#include "tests/import/source_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kOptions = std::string(kOptionColumns) + "20210726,084500,TXO,202108,17000,P,13.5,2,*\n";
const std::string kFutures = std::string(kFutureColumns) + "20210726,084500,TX,202108,17473,738,,,*\n";
const std::string kImport = "import taifex --options options.csv --futures futures.csv --out real.day.jsonl";

class ImportCommand : public testing::Test {
 protected:
  ImportCommand() {
    m_folder.Write("options.csv", kOptions);
    m_folder.Write("futures.csv", kFutures);
  }

  CProgramFolder m_folder;
};

TEST_F(ImportCommand, MakesADayAndItsTicks) {
  const ProgramResult result = m_folder.Run(kImport + " --account B7/A8");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("2 option series, 1 of them and 1 futures traded, 2 ticks"));
  EXPECT_THAT(m_folder.Files(),
              ElementsAre("futures.csv", "options.csv", "real.day.jsonl", "real.ticks.csv"));
  EXPECT_THAT(m_folder.Read("real.day.jsonl"), HasSubstr(R"("BrokerID":"B7","Account":"A8")"));
}

TEST_F(ImportCommand, BadInputIsOneLineAndExitCode2) {
  m_folder.Write("options.csv", kOptions + "20210726,084400,TXO,202108,17000,P,13.5,2,\n");
  const ProgramResult result = m_folder.Run(kImport);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.output, IsEmpty());
  EXPECT_EQ(result.errors,
            "iorder: options.csv:3: goes back in time to 2021-07-26T08:44:00; "
            "expected no time before 2021-07-26T08:45:00\n");
  EXPECT_THAT(m_folder.Files(), ElementsAre("futures.csv", "options.csv"));
}

TEST_F(ImportCommand, WrongUsageIsExitCode2) {
  for (const char* arguments : {" --session noon", " --account B7", " --account /A8", " --nights"}) {
    const ProgramResult result = m_folder.Run(kImport + arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_THAT(result.errors, StartsWith("iorder: "));
  }
  EXPECT_EQ(m_folder.Run("import").exitCode, 2);
  EXPECT_EQ(m_folder.Run("import taifex").exitCode, 2);
  EXPECT_THAT(m_folder.Files(), ElementsAre("futures.csv", "options.csv"));
}

TEST_F(ImportCommand, NeitherTheDayNorItsTicksAreASource) {
  const auto refusal = [this](const std::string& options) {
    const std::vector<std::string> before = m_folder.Files();
    const ProgramResult result = m_folder.Run("import taifex " + options);
    EXPECT_EQ(result.exitCode, 2) << options;
    EXPECT_EQ(m_folder.Files(), before) << options;
    return result.errors;
  };
  m_folder.Write("real.ticks.csv", kOptions);
  EXPECT_EQ(refusal("--options real.ticks.csv --futures futures.csv --out ./real.day.jsonl"),
            "iorder: ./real.ticks.csv: is the file of the options' trades, which is read; expected another "
            "place for the "
            "day's ticks\n");
  EXPECT_EQ(m_folder.Read("real.ticks.csv"), kOptions);
  m_folder.Write("real.ticks.csv", kFutures);
  EXPECT_EQ(refusal("--options options.csv --futures real.ticks.csv --out real.day.jsonl"),
            "iorder: real.ticks.csv: is the file of the futures' trades, which is read; expected another "
            "place for the "
            "day's ticks\n");
  EXPECT_EQ(m_folder.Read("real.ticks.csv"), kFutures);
  const std::string series = "product,expiry,strike,right\nTXO,202108,17000,P\n";
  m_folder.Write("list.day.jsonl", series);
  EXPECT_EQ(
      refusal("--options options.csv --futures futures.csv --series list.day.jsonl --out list.day.jsonl"),
      "iorder: list.day.jsonl: is the list of series, which is read; expected another place for the day\n");
  EXPECT_EQ(m_folder.Read("list.day.jsonl"), series);
}

}  // namespace
}  // namespace iorder

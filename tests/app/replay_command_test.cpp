#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kExamples = IORDER_EXAMPLES;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class Replay : public testing::Test {
 protected:
  static constexpr const char* kDay = "a.day.jsonl";
  CProgramFolder m_folder;

  void MakeDay(const std::string& options = "--ticks 3000") {
    ASSERT_EQ(m_folder.Run("make-day --seed 1 " + options + " --out a.day.jsonl").exitCode, 0);
  }
  /// Of a run that went well.
  std::string Output(const std::string& arguments) {
    const ProgramResult result = m_folder.Run("replay " + arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments;
    EXPECT_THAT(result.errors, IsEmpty()) << arguments;
    return result.output;
  }
};

TEST_F(Replay, PrintsOrdersAndTheClosingTable) {
  const std::string output = Output(kExamples + "/days/five-strikes.day.jsonl");
  EXPECT_THAT(output,
              HasSubstr("08:47:00.050  order         buy 3 TX Mar24 17700 call at 15, account B1/A1\n"
                        "08:47:00.050  order         buy 2 TX Mar24 17600 call at 15, account B1/A1\n"));
  EXPECT_THAT(output, HasSubstr("08:48:30.000  rejected      TX Mar24 17800 call opened at 9.0\n"));
  EXPECT_THAT(output, testing::EndsWith(
                          "\n"
                          "strategy          state        accepted  orders    lots          cash  ended by\n"
                          "OpenLottery_S1_1  not running         2       2       5          3750  stop time\n"
                          "2 orders, 0 cancels, 0 faults\n"));
}

/// The lines of the document's example that begins with this command, but for the dots.
std::vector<std::string> ExampleInDocument(const std::string& command) {
  std::ifstream file(std::string(IORDER_DOCS) + "/commands.md");
  std::vector<std::string> example;
  bool isInside = false;
  for (std::string line; std::getline(file, line);) {
    const bool isBlock = line.starts_with("    ") || line.empty();
    if (line == "    $ " + command) {
      isInside = true;
    } else if (isInside && isBlock) {
      if (!line.empty() && line != "    ...") example.push_back(line.substr(4));
    } else {
      isInside = false;
    }
  }
  return example;
}

/// What stands behind "iorder replay" in the examples of the document that run on a day of the repository.
std::vector<std::string> RunsInDocument() {
  const std::string begin = "    $ iorder replay examples/";
  std::ifstream file(std::string(IORDER_DOCS) + "/commands.md");
  std::vector<std::string> runs;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(begin)) runs.push_back(line.substr(line.find("examples/")));
  }
  return runs;
}

TEST_F(Replay, TheDocumentShowsWhatIsPrinted) {
  const std::vector<std::string> runs = RunsInDocument();
  EXPECT_GT(runs.size(), 7u);
  for (const std::string& run : runs) {
    const std::vector<std::string> shown = ExampleInDocument("iorder replay " + run);
    std::string arguments = run;
    for (size_t place = 0; (place = arguments.find("examples/", place)) != std::string::npos;
         place += kExamples.size()) {
      arguments.replace(place, std::string("examples").size(), kExamples);
    }
    const std::string output = Output(arguments);
    EXPECT_GT(shown.size(), 2u) << run;
    for (const std::string& line : shown) EXPECT_THAT(output, HasSubstr(line + "\n")) << run;
  }
}

TEST_F(Replay, AsJsonEveryLineIsAnObject) {
  const std::vector<std::string> lines = Lines(Output(kExamples + "/days/five-strikes.day.jsonl --json"));
  int64_t orders = 0;
  for (const std::string& line : lines) {
    rapidjson::Document object;
    object.Parse(line);
    ASSERT_TRUE(object.IsObject()) << line;
    orders += object["kind"] == "order" ? 1 : 0;
  }
  EXPECT_EQ(orders, 2);
  EXPECT_EQ(
      lines.back(),
      R"({"kind":"end","strategies":[{"strategy":"OpenLottery_S1_1","state":-1,"words":"not running","accepted":2,)"
      R"("orders":2,"lots":5,"cash":3750,"ended":"stop time"}],"positions":[],"tags":[{"tag":"S1","cost":0,"profit":0.0}],"group_orders":[],"orders":2,"cancels":0,"faults":0,"errors":[]})");
}

TEST_F(Replay, ACommandComesAtItsTime) {
  MakeDay();
  const std::string command = kExamples + "/commands/immediate-start.json";
  EXPECT_THAT(Output(kDay + (" --command " + command) + "@09:30"), StartsWith("09:30:00.000  strategy"));
  EXPECT_THAT(Output(kDay + (" --command " + command) + "@10:00:30"), StartsWith("10:00:30.000  strategy"));
}

TEST_F(Replay, ACommandWithoutATimeComesAtTheStart) {
  MakeDay();
  const std::string command = kExamples + "/commands/immediate-start.json";
  EXPECT_THAT(Output(kDay + (" --command " + command)), StartsWith("08:30:00.000  strategy"));
}

TEST_F(Replay, ACommandAfterMidnightBelongsToTheNextDate) {
  MakeDay("--ticks 100 --start 2024-03-04T15:00 --minutes 840");
  const std::string command = kExamples + "/commands/immediate-start.json";
  const std::string output = Output(kDay + (" --command " + command) + "@01:00 --json");
  EXPECT_THAT(output, StartsWith(R"({"at":"2024-03-05T01:00:00.000","kind":"started")"));
}

TEST_F(Replay, ACommandComesFromTheStandardInput) {
  MakeDay();
  const ProgramResult result =
      m_folder.RunShell(CProgramFolder::Program() + " replay a.day.jsonl --command -@09:00 <'" + kExamples +
                        "/commands/immediate-start.json'");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, StartsWith("09:00:00.000  strategy"));
}

TEST_F(Replay, SeveralCommandsComeInTheirOrder) {
  MakeDay();
  const std::string output =
      Output(std::string(kDay) + " --command " + kExamples + "/commands/puts.json@09:00 --command " +
             kExamples + "/commands/calls-in-a-band.json@09:00");
  EXPECT_THAT(output, StartsWith("09:00:00.000  strategy      OpenLottery_PUTS_1 is there\n"
                                 "09:00:00.000  strategy      OpenLottery_CALLS_1 is there\n"));
}

TEST_F(Replay, TheEngineAnswersTextThatIsNoJson) {
  MakeDay();
  m_folder.Write("broken.json", "{\"StrategyType\": ");
  m_folder.Write("empty.json", "");
  EXPECT_THAT(
      Output("a.day.jsonl --command broken.json@09:00 --command empty.json@09:01"),
      StartsWith("09:00:00.000  not readable  the command isn't JSON: GetParseError=3, GetErrorOffset=17\n"
                 "09:01:00.000  not readable  the command isn't JSON: GetParseError=1, GetErrorOffset=0\n"));
}

TEST_F(Replay, WritesTraceAndLog) {
  const std::string day = kExamples + "/days/five-strikes.day.jsonl";
  Output(day + " --trace t.trace.jsonl --log t.log");
  EXPECT_THAT(m_folder.Files(), ElementsAre("t.log", "t.trace.jsonl"));
  const std::string trace = m_folder.Read("t.trace.jsonl");
  EXPECT_THAT(trace,
              StartsWith(R"({"at": "2024-03-04T08:40:00.000", "thread": "host", "event": "advertise")"));
  EXPECT_THAT(trace, HasSubstr(R"("topic": "TRADE.NEWORDER")"));
  EXPECT_THAT(trace, Not(HasSubstr(R"("event": "update")")));
  // Just the log lines of the trace.
  const std::vector<std::string> traceLines = Lines(trace);
  const auto logged = std::count_if(traceLines.begin(), traceLines.end(), [](const std::string& line) {
    return line.find(R"("event": "log")") != std::string::npos;
  });
  const std::vector<std::string> log = Lines(m_folder.Read("t.log"));
  EXPECT_EQ(log.size(), static_cast<size_t>(logged));
  EXPECT_EQ(log.front(), "2024-03-04T08:40:00.000 <CIntelligentOrder>ProcessMsgLoop");
  Output(day + " --trace t.trace.jsonl --inputs");
  EXPECT_THAT(m_folder.Read("t.trace.jsonl"), HasSubstr(R"("event": "update")"));
}

TEST_F(Replay, PacksTheTraceByItsName) {
  const std::string day = kExamples + "/days/five-strikes.day.jsonl";
  Output(day + " --trace t.jsonl --log t.log");
  Output(day + " --trace t.jsonl.gz --log t.log.gz");
  EXPECT_EQ(m_folder.RunShell("gzip -dc t.jsonl.gz").output, m_folder.Read("t.jsonl"));
  EXPECT_EQ(m_folder.RunShell("gzip -dc t.log.gz").output, m_folder.Read("t.log"));
}

/// Without the events that the terminal does to the engine.
std::string WithoutInputs(const std::string& trace) {
  std::string events;
  for (const std::string& line : Lines(trace)) {
    rapidjson::Document event;
    event.Parse(line);
    const std::string kind = event["event"].GetString();
    const bool isInput =
        kind == "message" || kind == "phase" || kind == "update" || kind == "replace" || kind == "query";
    if (!isInput) events += line + '\n';
  }
  return events;
}

TEST_F(Replay, WatchingMoreOfARunDoesNotChangeIt) {
  MakeDay();
  for (const char* const seed : {"0", "7", "42"}) {
    const std::string arguments = std::string(kDay) + " --seed " + seed + " --command " + kExamples +
                                  "/commands/immediate-start.json@09:30 --trace ";
    Output(arguments + "few.jsonl");
    Output(arguments + "all.jsonl --inputs --csv tables");
    EXPECT_EQ(WithoutInputs(m_folder.Read("all.jsonl")), m_folder.Read("few.jsonl")) << "seed " << seed;
  }
}

TEST_F(Replay, TheSameDayAndSeedGiveTheSameTraceByteForByte) {
  MakeDay("--ticks 5000");
  for (const char* const seed : {"0", "42"}) {
    std::string first;
    for (int run = 0; run < 10; ++run) {
      Output(std::string(kDay) + " --inputs --trace t.jsonl --seed " + seed + " --command " + kExamples +
             "/commands/immediate-start.json@09:30");
      const std::string trace = m_folder.Read("t.jsonl");
      if (run == 0) first = trace;
      ASSERT_EQ(trace, first) << "run " << run << ", seed " << seed;
    }
    EXPECT_THAT(first, HasSubstr("TRADE.NEWORDER"));
  }
}

TEST_F(Replay, TheNativeClockRunsTheSameDay) {
  m_folder.Write(kDay, R"({"day": {"start": "2024-03-04T08:40:00", "end": "08:42:00"}}
{"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
)");
  const std::string output = Output(std::string(kDay) + " --clock native --speed 600 --command " + kExamples +
                                    "/commands/calls-in-a-band.json --json");
  EXPECT_THAT(output, HasSubstr(R"("kind":"started","strategy":"OpenLottery_CALLS_1"})"));
}

TEST_F(Replay, AFaultIsTold) {
  // Strikes beyond the list are asked for: the selection ends with the array's failure.
  MakeDay();
  m_folder.Write("c.json",
                 R"({"StrategyType": "OpenLottery", "StrategyID": "F", "StrategySN": "1", "Action": 1,
 "BrokerID": "B1", "Account": "A1", "Symbol": {"Security": "ND.O.TWF.TX.202403", "CP": "C"},
 "Start": {"Time": 845, "Run": 1, "DayOfWeek": [1]}, "Stop": {"Enable": 0, "Time": 1330}, "Cash": 100,
 "Condition": {"OpenPrice": {"Dn": 1, "Up": 50}, "StrikePrice": {"IsOTM": 1, "OTM_D": 1, "OTM_U": 40}},
 "OrderPrice": {"Price": 1}})");
  EXPECT_THAT(Output("a.day.jsonl --command c.json@09:30"), HasSubstr("fault         0x80070057 on "));
}

}  // namespace
}  // namespace iorder

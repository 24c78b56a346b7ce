#include "terminal/expectation.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "terminal/input_error.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {
namespace {

using ::testing::HasSubstr;

constexpr const char* kTrace =
    R"({"at": "2024-03-04T08:40:00.000", "thread": "host", "event": "advertise", "topic": "TRADE.IntelligentOrder", "value": 1}
{"at": "2024-03-04T08:45:00.000", "thread": "ProcessMsgLoop", "event": "command", "topic": "TRADE.NEWORDER", "first": 1, "second": 2, "text": "TYPE=O,SYMBOL=ND.O.TWF.TX.202403.C.18000,QTY=3,USERKEY2=K@084500000", "value": null}
{"at": "2024-03-04T08:45:00.500", "thread": "ProcessMsgLoop", "event": "command", "topic": "TRADE.NEWORDER", "first": 1, "second": 2, "text": "TYPE=O,SYMBOL=ND.O.TWF.TX.202403.P.17000,QTY=1,USERKEY2=K@084500000", "value": {"int32": 5}}
{"at": "2024-03-04T08:46:00.000", "thread": "timer 200", "event": "log", "text": "a*b {$x} \\"}
{"at": "2024-03-05T01:00:00.000", "thread": "host", "event": "command", "topic": "MSG", "first": 1, "second": 1, "text": "{\"A\": {\"B\": 1.50, \"C\": [\"one\", 2]}, \"D\": null}", "value": null}
)";

class Expectation : public ::testing::Test {
 protected:
  /// "" if all lines hold.
  std::string Check(const std::string& lines) {
    return CExpectations(m_folder.Write("a.expect.jsonl", lines)).Check(kTrace).value_or("");
  }
  std::string Mistake(const std::string& lines) {
    try {
      CExpectations read(m_folder.Write("a.expect.jsonl", lines));
    } catch (const InputError& error) {
      const std::string what = error.what();
      return what.substr(what.find("a.expect.jsonl"));
    }
    return "";
  }
  bool Holds(const std::string& lines) { return Check(lines).empty(); }

  CDayFolder m_folder;
};

TEST_F(Expectation, ANoteAlwaysHolds) {
  EXPECT_TRUE(Holds(R"({"note": "anything"})"));
}

TEST_F(Expectation, EachPatternTakesTheFirstFittingLineBehindTheOneAbove) {
  EXPECT_TRUE(Holds("{\"event\": \"command\"}\n\n{\"event\": \"command\", \"order\": {\"QTY\": \"1\"}}\n"));
  EXPECT_FALSE(Holds("{\"order\": {\"QTY\": \"1\"}}\n{\"order\": {\"QTY\": \"3\"}}\n"));
  EXPECT_FALSE(Holds("{\"event\": \"log\"}\n{\"event\": \"log\"}\n"));
}

TEST_F(Expectation, EveryKeyMustBeThereWithAnEqualValue) {
  EXPECT_TRUE(Holds(R"({"event": "advertise", "value": 1})"));
  EXPECT_TRUE(Holds(R"({"event": "advertise", "value": 1.0})"));
  EXPECT_FALSE(Holds(R"({"event": "advertise", "value": 2})"));
  EXPECT_FALSE(Holds(R"({"event": "advertise", "value": "1"})"));
  EXPECT_FALSE(Holds(R"({"event": "log", "topic": "*"})"));
  EXPECT_TRUE(Holds(R"({"value": {"int32": 5}})"));
  EXPECT_FALSE(Holds(R"({"value": {"int64": 5}})"));
  EXPECT_TRUE(Holds(R"({"event": "command", "value": null})"));
}

TEST_F(Expectation, AStarStandsForAnyRunOfCharacters) {
  EXPECT_TRUE(Holds(R"({"text": "TYPE=*,QTY=3,*"})"));
  EXPECT_TRUE(Holds(R"({"text": "*"})"));
  EXPECT_FALSE(Holds(R"({"text": "TYPE=*,QTY=3"})"));
  EXPECT_TRUE(Holds(R"({"text": "*QTY=3,USERKEY2=K@084500000*"})"));
}

TEST_F(Expectation, ABackslashMakesAStarOrABraceItself) {
  EXPECT_TRUE(Holds(R"({"text": "a\\*b \\{$x} \\"})"));
  EXPECT_FALSE(Holds(R"({"text": "a\\*c*"})"));
  EXPECT_FALSE(Holds(R"({"topic": "TRADE.\\*"})"));
}

TEST_F(Expectation, ANameStandsForTheSameRunInLaterLines) {
  EXPECT_TRUE(
      Holds("{\"order\": {\"USERKEY2\": \"K@{$stamp}\"}}\n{\"order\": {\"USERKEY2\": \"K@{$stamp}\"}}\n"));
  EXPECT_FALSE(Holds("{\"order\": {\"SYMBOL\": \"{$s}\"}}\n{\"order\": {\"SYMBOL\": \"{$s}\"}}\n"));
  EXPECT_TRUE(Holds("{\"order\": {\"SYMBOL\": \"{$s}\"}}\n{\"order\": {\"SYMBOL\": \"{!s}\"}}\n"));
  EXPECT_FALSE(Holds("{\"order\": {\"USERKEY2\": \"{$k}\"}}\n{\"order\": {\"USERKEY2\": \"{!k}\"}}\n"));
  EXPECT_FALSE(
      Holds("{\"order\": {\"SYMBOL\": \"{$s}\"}}\n{\"never\": {\"order\": {\"SYMBOL\": \"{$s}\"}}}\n"));
}

TEST_F(Expectation, ANameIsTriedWithLongerRunsUntilTheRestFits) {
  EXPECT_TRUE(Holds(R"({"text": "TYPE=O,{$all},QTY=3,*"})"));
  EXPECT_TRUE(Holds(R"({"topic": "{$a}.NEWORDER", "thread": "*Msg*"})"));
}

TEST_F(Expectation, ATimeMayBeCutShort) {
  EXPECT_TRUE(Holds(R"({"at": "08:45", "event": "command"})"));
  EXPECT_TRUE(Holds(R"({"at": "2024-03-05", "event": "command"})"));
  EXPECT_TRUE(Holds(R"({"at": "2024-03-04T08:45:00.500"})"));
  EXPECT_FALSE(Holds(R"({"at": "45:00"})"));
}

TEST_F(Expectation, JsonLooksIntoTheTextToAnyDepth) {
  EXPECT_TRUE(Holds(R"({"json": {"A": {"B": 1.5}}})"));
  EXPECT_TRUE(Holds(R"({"json": {"A": {"B": 15e-1, "C": ["o*", 2.0]}, "D": null}})"));
  EXPECT_FALSE(Holds(R"({"json": {"A": {"B": 1.51}}})"));
  EXPECT_FALSE(Holds(R"({"json": {"A": {"C": ["one"]}}})"));
  EXPECT_FALSE(Holds(R"({"json": {"E": null}})"));
}

TEST_F(Expectation, OrderLooksIntoKeysAndValues) {
  EXPECT_TRUE(Holds(
      R"({"event": "command", "topic": "TRADE.NEWORDER", "order": {"SYMBOL": "*C.18000", "QTY": "3"}})"));
  EXPECT_FALSE(Holds(R"({"order": {"SYMBOL": "*C.18000", "QTY": "1"}})"));
  EXPECT_FALSE(Holds(R"({"order": {"PRICE": "*"}})"));
}

TEST_F(Expectation, AnyOrderNeedsDifferentLinesAndGoesOnBehindTheLastOfThem) {
  EXPECT_TRUE(Holds(R"({"any_order": [{"order": {"QTY": "1"}}, {"order": {"QTY": "3"}}]})"));
  EXPECT_TRUE(Holds(R"({"any_order": [{"event": "command"}, {"order": {"QTY": "3"}}]})"));
  EXPECT_FALSE(Holds(R"({"any_order": [{"order": {"QTY": "3"}}, {"order": {"SYMBOL": "*18000"}}]})"));
  EXPECT_FALSE(
      Holds("{\"any_order\": [{\"order\": {\"QTY\": \"1\"}}, {\"order\": {\"QTY\": \"3\"}}]}\n"
            "{\"order\": {\"QTY\": \"*\"}}\n"));
  EXPECT_TRUE(Holds(
      "{\"any_order\": [{\"order\": {\"QTY\": \"3\"}}, {\"event\": \"command\"}]}\n{\"at\": \"08:46\"}\n"));
}

TEST_F(Expectation, AnyOrderWithALineTooFewIsRefusedAtOnce) {
  // Tried one assignment after the other, this would take years.
  constexpr int kPatterns = 25;
  std::string trace;
  std::string list = R"({"text": "same"})";
  for (int i = 1; i < kPatterns; ++i) {
    trace += R"({"at": "2024-03-04T08:40:00.000", "thread": "host", "event": "log", "text": "same"})"
             "\n";
    list += R"(, {"text": "same"})";
  }
  const CExpectations expectations(m_folder.Write("a.expect.jsonl", "{\"any_order\": [" + list + "]}"));
  EXPECT_THAT(expectations.Check(trace).value_or(""), HasSubstr("don't fit different lines"));
}

TEST_F(Expectation, AnyOrderFindsRunsThatAllPatternsShare) {
  EXPECT_TRUE(Holds(
      R"({"any_order": [{"order": {"QTY": "1", "USERKEY2": "{$k}"}}, {"order": {"QTY": "3", "USERKEY2": "{$k}"}}]})"));
  EXPECT_FALSE(Holds(
      R"({"any_order": [{"order": {"QTY": "1", "SYMBOL": "{$k}"}}, {"order": {"QTY": "3", "SYMBOL": "{$k}"}}]})"));
}

TEST_F(Expectation, NeverLooksAtTheWholeTraceOrAStretchOfTime) {
  EXPECT_TRUE(Holds(R"({"never": {"event": "fault"}})"));
  EXPECT_FALSE(Holds("{\"event\": \"log\"}\n{\"never\": {\"event\": \"advertise\"}}\n"));
  EXPECT_TRUE(Holds(R"({"never": {"event": "command"}, "from": "08:46:00", "to": "09:00:00"})"));
  EXPECT_FALSE(Holds(R"({"never": {"event": "log"}, "from": "08:46:00", "to": "08:46:00"})"));
  EXPECT_FALSE(Holds(R"({"never": {"topic": "MSG"}, "from": "2024-03-05T00:00:00"})"));
  EXPECT_TRUE(Holds(R"({"never": {"topic": "MSG"}, "to": "2024-03-05T00:00:00"})"));
  EXPECT_FALSE(Holds(R"({"never": {"topic": "MSG"}, "from": "23:00:00", "to": "02:00:00"})"));
}

TEST_F(Expectation, CountTellsTheExactNumber) {
  EXPECT_TRUE(Holds(R"({"count": 3, "of": {"event": "command"}})"));
  EXPECT_FALSE(Holds(R"({"count": 2, "of": {"event": "command"}})"));
  EXPECT_TRUE(Holds(R"({"count": 2, "of": {"event": "command"}, "to": "08:45:00.500", "from": "08:00:00"})"));
  EXPECT_TRUE(Holds(R"({"count": 0, "of": {"event": "fault"}})"));
}

TEST_F(Expectation, TheReportShowsTheLineThatFailsAndTheTraceAround) {
  const std::string report =
      Check("{\"event\": \"log\"}\n{\"event\": \"command\", \"topic\": \"TRADE.CANCELORDER\"}\n");
  EXPECT_THAT(report, HasSubstr("a.expect.jsonl:2: no line behind trace line 4 fits"));
  EXPECT_THAT(report, HasSubstr("{\"event\": \"command\", \"topic\": \"TRADE.CANCELORDER\"}"));
  EXPECT_THAT(report, HasSubstr("    4: {\"at\": \"2024-03-04T08:46:00.000\""));
  EXPECT_THAT(report, HasSubstr("    5: {\"at\": \"2024-03-05T01:00:00.000\""));
}

TEST_F(Expectation, MistakesNameFileLineAndKey) {
  EXPECT_EQ("a.expect.jsonl:1: unknown key 'tpic'; did you mean 'topic'?", Mistake(R"({"tpic": "x"})"));
  EXPECT_EQ("a.expect.jsonl:2: unknown event 'comand'; did you mean 'command'?",
            Mistake("{\"note\": \"\"}\n{\"event\": \"comand\"}"));
  EXPECT_EQ("a.expect.jsonl:1: unknown key 'form' in the expectation; did you mean 'from'?",
            Mistake(R"({"never": {"event": "log"}, "form": "08:00:00"})"));
  EXPECT_EQ(
      "a.expect.jsonl:1: 'from' in the expectation: expected HH:MM:SS[.mmm] or YYYY-MM-DDTHH:MM:SS[.mmm], "
      "found "
      "'8:00'",
      Mistake(R"({"never": {"event": "log"}, "from": "8:00"})"));
  EXPECT_EQ("a.expect.jsonl:1: key 'of' is missing in the expectation", Mistake(R"({"count": 3})"));
  EXPECT_EQ("a.expect.jsonl:1: {!a} before any line above has {$a}", Mistake(R"({"text": "{!a}"})"));
  EXPECT_EQ("a.expect.jsonl:1: an empty pattern fits every line", Mistake("{}"));
  EXPECT_THAT(Mistake("{\"event\": "), HasSubstr("a.expect.jsonl:1: not a JSON value"));
  EXPECT_THAT(Mistake(""), HasSubstr("a.expect.jsonl: is empty"));
}

TEST_F(Expectation, MayLiePackedBesideItsDay) {
  const std::filesystem::path folder = std::filesystem::path(::testing::TempDir()) / "packed-expectation";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "a.expect.jsonl.zst") << "any";
  EXPECT_EQ((folder / "a.expect.jsonl.zst").string(),
            CExpectations::PathFor((folder / "a.day.jsonl").string()));
  std::filesystem::remove_all(folder);
}

TEST_F(Expectation, LiesBesideTheDayOfTheSameName) {
  EXPECT_EQ("x/a.expect.jsonl", CExpectations::PathFor("x/a.day.jsonl"));
  EXPECT_EQ("x/a.expect.jsonl", CExpectations::PathFor("x/a.day.jsonl.zst"));
  EXPECT_EQ(std::nullopt, CExpectations::PathFor("x/a.jsonl"));
}

TEST(Numbers, AreEqualHoweverTheyAreSpelled) {
  EXPECT_TRUE(AreEqualNumbers("1.0", "1"));
  EXPECT_TRUE(AreEqualNumbers("-0.0", "0"));
  EXPECT_TRUE(AreEqualNumbers("1200", "1.2e3"));
  EXPECT_TRUE(AreEqualNumbers("0.0012", "12E-4"));
  EXPECT_FALSE(AreEqualNumbers("0.1", "0.10000000000000001"));
  EXPECT_FALSE(AreEqualNumbers("1", "-1"));
}

}  // namespace
}  // namespace iorder::testing

#include "terminal/day_file.h"

#include <gmock/gmock.h>

#include "terminal/input_error.h"
#include "terminal/output_file.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kHead = "{\"day\": {\"start\": \"2024-03-04T08:40:00\", \"end\": \"13:50:00\"}}\n";

class DayFile : public ::testing::Test {
 protected:
  Day Read(const std::string& lines, const std::string& head = kHead) {
    return ReadDayFile(m_folder.Write("a.day.jsonl", head + lines));
  }
  /// What is wrong with the file, from the file's name on; "" if nothing is.
  std::string Mistake(const std::string& lines, const std::string& head = kHead) {
    return MistakeOf(m_folder.Write("a.day.jsonl", head + lines));
  }
  std::string MistakeOf(const std::string& path) {
    try {
      ReadDayFile(path);
    } catch (const InputError& error) {
      const std::string what = error.what();
      const std::string folder = m_folder.Path("");
      return what.starts_with(folder) ? what.substr(folder.size()) : what;
    }
    return "";
  }
  std::string HeadMistake(const std::string& members) {
    return Mistake("", "{\"day\": {\"start\": \"2024-03-04T08:40:00\", " + members + "}}\n");
  }
  template <typename T>
  T Only(const std::string& line) {
    return std::get<T>(Read(line).lines.at(0).action);
  }
  Value FieldOf(const std::string& value) {
    return Only<RecordAction>("{\"record\": \"R\", \"fields\": {\"F\": " + value + "}}")
        .change.fields.at(0)
        .value.value;
  }

  CDayFolder m_folder;
};

// ---- The head ----

TEST_F(DayFile, TheHeadHasTheDefaultsOfTheFormat) {
  const DayHead head = Read("", "{\"day\": {\"start\": \"2024-03-04T08:40:00.250\"}}").head;
  EXPECT_EQ("2024-03-04T08:40:00.250", ToText(head.start));
  EXPECT_FALSE(head.end.has_value());
  EXPECT_EQ("Asia/Taipei", head.timezone);
  EXPECT_EQ(0U, head.seed);
  EXPECT_TRUE(head.autoPhases);
  EXPECT_TRUE(head.needsSubscription);
  EXPECT_EQ(Milliseconds(0), head.subscriptionDelay);
  EXPECT_TRUE(head.hasDatabase);
  EXPECT_FALSE(head.orders.has_value());
  EXPECT_EQ("", head.folder);
}

TEST_F(DayFile, AllKeysOfTheHeadAreRead) {
  const DayHead head =
      Read(
          "",
          R"({"day": {"start": "2024-03-04T15:00:00", "end": "05:00:00", "timezone": "America/Chicago", )"
          R"("seed": 7, "phases": "manual", "subscriptions": "open", "subscription_ms": 20, "database": "none", )"
          R"("orders": {"latency_ms": 20, "fill": "through", "partial": 0.5, "reject": "0.25", "chase": false, )"
          R"("late_ms": 30, "out_of_order": true, "repeat": 0.1, "lost_ack": 1, "rec_fill_lag_ms": 40, )"
          R"("failed_child": 0.1, "lost_child": 0.2, "late_child": 0.3, "lost_end": 0.4}, )"
          R"("figures": "given", "figures_ms": 100, "folder": "files"}})")
          .head;
  EXPECT_EQ("2024-03-05T05:00:00.000", ToText(*head.end));
  EXPECT_EQ("America/Chicago", head.timezone);
  EXPECT_EQ(7U, head.seed);
  EXPECT_FALSE(head.autoPhases);
  EXPECT_FALSE(head.needsSubscription);
  EXPECT_EQ(Milliseconds(20), head.subscriptionDelay);
  EXPECT_FALSE(head.hasDatabase);
  EXPECT_EQ(OrderRules::Fill::kThrough, head.orders->fill);
  EXPECT_EQ(2'500'000'000, head.orders->reject);
  EXPECT_FALSE(head.orders->chase);
  EXPECT_EQ(1'000'000'000, head.orders->failedChild);
  EXPECT_EQ(2'000'000'000, head.orders->lostChild);
  EXPECT_EQ(3'000'000'000, head.orders->lateChild);
  EXPECT_EQ(4'000'000'000, head.orders->lostEnd);
  EXPECT_EQ(5'000'000'000, head.orders->partial);
  EXPECT_EQ(Milliseconds(20), head.orders->latency);
  EXPECT_EQ(Milliseconds(30), head.orders->late);
  EXPECT_TRUE(head.orders->outOfOrder);
  EXPECT_EQ(1'000'000'000, head.orders->repeat);
  EXPECT_EQ(kWholeShare, head.orders->lostAck);
  EXPECT_EQ(Milliseconds(40), head.orders->recFillLag);
  EXPECT_EQ(m_folder.Path("files"), head.folder);
}

TEST_F(DayFile, MistakesInTheHeadNameTheKey) {
  EXPECT_EQ("a.day.jsonl:1: unknown key 'sed' in day; did you mean 'seed'?", HeadMistake(R"("sed": 1)"));
  EXPECT_EQ("a.day.jsonl:1: 'phases' in day: expected 'auto' or 'manual', found 'automatic'",
            HeadMistake(R"("phases": "automatic")"));
  EXPECT_EQ("a.day.jsonl:1: 'seed' in day: expected an integer, found 1.5", HeadMistake(R"("seed": 1.5)"));
  EXPECT_EQ("a.day.jsonl:1: 'seed' in day: -1 is out of range; it must lie from 0 to 9223372036854775807",
            HeadMistake(R"("seed": -1)"));
  EXPECT_EQ("a.day.jsonl:1: 'folder' in day: is empty; '.' is the folder of the day file",
            HeadMistake(R"("folder": "")"));
  EXPECT_EQ("a.day.jsonl:1: 'end' in day: lies before the start",
            HeadMistake(R"("end": "2024-03-04T08:00:00")"));
  EXPECT_THAT(HeadMistake(R"("figures": "market", "figures_ms": 0)"), HasSubstr("'figures_ms' in day"));
  EXPECT_EQ("a.day.jsonl:1: 'partial' in orders: must lie from 0 to 1",
            HeadMistake(R"("orders": {"partial": 2})"));
  EXPECT_EQ("a.day.jsonl:1: unknown key 'lost_acks' in orders; did you mean 'lost_ack'?",
            HeadMistake(R"("orders": {"lost_acks": 1})"));
  EXPECT_EQ("a.day.jsonl:1: 'repeat' in orders: must lie from 0 to 1",
            HeadMistake(R"("orders": {"repeat": -0.1})"));
  EXPECT_EQ("a.day.jsonl:1: unknown key 'lost_childs' in orders; did you mean 'lost_child'?",
            HeadMistake(R"("orders": {"lost_childs": 1})"));
  for (const std::string key : {"failed_child", "lost_child", "late_child", "lost_end"}) {
    EXPECT_EQ("a.day.jsonl:1: '" + key + "' in orders: must lie from 0 to 1",
              HeadMistake("\"orders\": {\"" + key + "\": 1.1}"));
  }
  EXPECT_THAT(HeadMistake(R"("orders": {"late_ms": -1})"), HasSubstr("'late_ms' in orders"));
  EXPECT_EQ("a.day.jsonl:1: key 'start' is missing in day", Mistake("", "{\"day\": {\"seed\": 1}}"));
  EXPECT_EQ("a.day.jsonl:1: 'start' in day: expected YYYY-MM-DDTHH:MM:SS[.mmm], found '2024-02-30T08:00:00'",
            Mistake("", "{\"day\": {\"start\": \"2024-02-30T08:00:00\"}}"));
  EXPECT_EQ("a.day.jsonl:1: key 'day' is missing in the head", Mistake("", "{\"note\": \"x\"}"));
}

TEST_F(DayFile, FiguresComeFromTheLinesUnlessTheMarketIsToGiveThem) {
  const auto period = [this](const std::string& members) {
    return Read("", R"({"day": {"start": "2024-03-04T08:40:00")" + members + "}}").head.figuresPeriod;
  };
  EXPECT_EQ(std::nullopt, period(R"(, "figures_ms": 50)"));
  EXPECT_EQ(Milliseconds(200), period(R"(, "figures": "market")"));
  EXPECT_EQ(Milliseconds(50), period(R"(, "figures": "market", "figures_ms": 50)"));
}

TEST_F(DayFile, ADayWhoseHeadAnswersOrdersHasNoReports) {
  const std::string head = R"({"day": {"start": "2024-03-04T08:40:00", "orders": {}}})"
                           "\n";
  EXPECT_THAT(Mistake("{\"report\": {\"order\": 1}}\n", head),
              StartsWith("a.day.jsonl:2: 'report' in the line: the head's 'orders' answers the orders"));
  EXPECT_EQ(1U, Read("{\"child\": {\"order\": 1}}\n", head).lines.size());
}

// ---- Lines and times ----

TEST_F(DayFile, ALineWithoutATimeHasThatOfTheLineAbove) {
  const Day day = Read(R"({"note": "a"}
{"at": "08:45:00.500", "note": "b"}

{"note": "c"}
{"at": "2024-03-04T09:00:00", "note": "d"}
)");
  std::vector<std::string> times;
  for (const DayLine& line : day.lines) {
    times.push_back(ToText(line.at).substr(11));
  }
  EXPECT_THAT(times, ElementsAre("08:40:00.000", "08:45:00.500", "08:45:00.500", "09:00:00.000"));
  EXPECT_EQ(1U, day.setupCount);
  EXPECT_EQ(5U, day.lines[2].line);
}

TEST_F(DayFile, TimeMayNotGoBack) {
  EXPECT_THAT(Mistake("{\"at\": \"09:00:00\", \"note\": \"\"}\n{\"at\": \"08:59:59\", \"note\": \"\"}\n"),
              StartsWith("a.day.jsonl:3: 'at' in the line: 08:59:59 lies before the time of the line above"));
  EXPECT_THAT(Mistake("{\"at\": \"08:00:00\", \"note\": \"\"}\n"),
              HasSubstr("lies before the time of the line above"));
  EXPECT_THAT(Mistake("{\"at\": \"8:00\", \"note\": \"\"}\n"), HasSubstr("expected HH:MM:SS[.mmm]"));
}

TEST_F(DayFile, ATimeOfTheNextDateMustSaySoAndLieInTheDay) {
  const std::string head = "{\"day\": {\"start\": \"2024-03-04T15:00:00\", \"end\": \"05:00:00\"}}\n";
  EXPECT_EQ("2024-03-05T01:00:00.000",
            ToText(Read("{\"at\": \"01:00:00\", \"next_day\": true, \"note\": \"\"}", head).lines[0].at));
  EXPECT_THAT(Mistake("{\"at\": \"01:00:00\", \"note\": \"\"}", head), HasSubstr("\"next_day\": true"));
  EXPECT_THAT(Mistake("{\"at\": \"06:00:00\", \"next_day\": true, \"note\": \"\"}", head),
              HasSubstr("lies behind the day's end"));
}

TEST_F(DayFile, AnUnknownActionOrKeyIsAMistake) {
  EXPECT_EQ("a.day.jsonl:2: unknown key 'prise' in quote; did you mean 'price'?",
            Mistake(R"({"quote": "ND.F.TWF.TX.202403", "prise": 1})"));
  EXPECT_EQ("a.day.jsonl:2: unknown action 'qoute'; did you mean 'quote'?", Mistake(R"({"qoute": "ND.F"})"));
  EXPECT_EQ("a.day.jsonl:2: the line has no action", Mistake(R"({"at": "09:00:00"})"));
  EXPECT_EQ("a.day.jsonl:2: unknown key 'command' in note", Mistake(R"({"note": "", "command": "x"})"));
  EXPECT_EQ("a.day.jsonl:2: key 'note' stands twice in the line", Mistake(R"({"note": "", "note": ""})"));
  EXPECT_THAT(Mistake("{\"note\": \"\"\n"), HasSubstr("a.day.jsonl:2: not a JSON value"));
  EXPECT_THAT(Mistake(std::string(1000, '[')), HasSubstr("nested deeper than 256 levels"));
}

// ---- Values ----

TEST_F(DayFile, AValueSaysItsKind) {
  EXPECT_EQ(Value(std::wstring(L"text")), FieldOf("\"text\""));
  EXPECT_EQ(Value(int32_t{5}), FieldOf("5"));
  EXPECT_EQ(Value(int64_t{5}), FieldOf("{\"int64\": 5}"));
  EXPECT_EQ(Value(int64_t{125'000'000'000}), FieldOf("{\"scaled\": 12.5}"));
  EXPECT_EQ(Value(int64_t{-1}), FieldOf("{\"scaled\": \"-0.0000000001\"}"));
  const RecordAction record = Only<RecordAction>(
      R"({"record": "R", "fields": {"A": null, "B": {"handle": "X"}, "C": {"handle64": "Y"}}, "numbers": {"3": 7, "4": {"int32": 8}}})");
  EXPECT_EQ(FieldValue::Kind::kRemove, record.change.fields[0].value.kind);
  EXPECT_EQ(FieldValue::Kind::kHandle, record.change.fields[1].value.kind);
  EXPECT_EQ(L"X", record.change.fields[1].value.record);
  EXPECT_EQ(FieldValue::Kind::kHandle64, record.change.fields[2].value.kind);
  EXPECT_EQ(Value(int64_t{7}), record.change.numbers[0].value.value);
  EXPECT_EQ(Value(int32_t{8}), record.change.numbers[1].value.value);
}

TEST_F(DayFile, AValueOfTheWrongKindOrSizeIsAMistake) {
  const auto mistake = [&](const std::string& value) {
    return Mistake("{\"record\": \"R\", \"fields\": {\"F\": " + value + "}}");
  };
  EXPECT_EQ("a.day.jsonl:2: 'F' in the fields of record: expected a 32-bit integer, found 5000000000",
            mistake("5000000000"));
  EXPECT_EQ("a.day.jsonl:2: 'F' in the fields of record: expected a 32-bit integer, found 1.0",
            mistake("1.0"));
  EXPECT_THAT(mistake("{\"scaled\": 0.00000000001}"),
              HasSubstr("expected a decimal with at most ten places"));
  EXPECT_THAT(mistake("{\"scaled\": 1000000000}"), HasSubstr("expected a decimal"));
  EXPECT_THAT(mistake("{\"int23\": 5}"), HasSubstr("unknown key 'int23'"));
  EXPECT_THAT(mistake("{\"int32\": 5, \"int64\": 5}"), HasSubstr("unknown key 'int64'"));
  EXPECT_THAT(mistake("true"), HasSubstr("found true"));
  EXPECT_THAT(Mistake(R"({"record": "R", "numbers": {"x": 5}})"), HasSubstr("isn't the number of a field"));
}

// ---- Actions ----

TEST_F(DayFile, ACommandKeepsItsMembersAndTheSpellingOfItsNumbers) {
  EXPECT_EQ(
      LR"({"b":1.0,"a":[1e2,-0,12345678901234567890.10],"c":{"x":"ä\"\n","y":null,"y":true}})",
      Only<MessageAction>(
          R"({"command": {"b": 1.0, "a": [1e2, -0, 12345678901234567890.10], "c": {"x": "ä\"\n", "y": null, "y": true}}})")
          .text);
  EXPECT_EQ(L"{not json", Only<MessageAction>(R"({"command": "{not json"})").text);
}

TEST_F(DayFile, AQuoteIsReadFromItsDigits) {
  const QuoteUpdate update =
      Only<QuoteAction>(
          R"({"quote": "ND.F", "price": 17473.1, "open": "0.1", "volume": 3, "Y": null, "mcode": 2, "bid": 1.5})")
          .update;
  ASSERT_EQ(4U, update.count);
  EXPECT_EQ(174'731'000'000'000, update.numbers[0].value);
  EXPECT_EQ(quote_field::kPrice, update.numbers[0].id);
  EXPECT_EQ(1'000'000'000, update.numbers[1].value);
  EXPECT_TRUE(update.numbers[3].remove);
  EXPECT_EQ(2, update.mcode);
  EXPECT_EQ(15'000'000'000, update.best.bid);
  EXPECT_TRUE(update.NeedsClock());
}

TEST_F(DayFile, TheOtherActionsCheckTheirKeys) {
  EXPECT_THAT(Mistake(R"({"settings": "../x.ini", "text": ""})"), HasSubstr("inside the terminal's folder"));
  EXPECT_THAT(Mistake(R"({"settings": "x.ini"})"), HasSubstr("key 'text' is missing in settings"));
  EXPECT_THAT(Mistake(R"({"symbols": [{"Symbl": "x"}]})"),
              HasSubstr("unknown key 'Symbl' in symbol; did you mean 'Symbol'?"));
  EXPECT_THAT(Mistake(R"({"symbols": [{"ExpDate": 20240320}]})"),
              HasSubstr("expected a text, found 20240320"));
  EXPECT_THAT(Mistake(R"({"accounts": [{"BrokerID": "B"}]})"),
              HasSubstr("key 'Account' is missing in account"));
  EXPECT_THAT(Mistake(R"({"phase": [1]})"), HasSubstr("two integers"));
  EXPECT_THAT(Mistake(R"({"report": {"order": 0}})"), HasSubstr("out of range"));
  EXPECT_THAT(Mistake(R"({"message": {"topic": "T", "frist": 1}})"), HasSubstr("did you mean 'first'?"));
  EXPECT_THAT(Mistake(R"({"fault": {"sink": "broken"}})"),
              HasSubstr("expected 'fail' or 'none', found \"broken\""));
  EXPECT_THAT(Mistake(R"({"fault": {"reocrd": "X"}})"), HasSubstr("did you mean 'record'?"));
  EXPECT_THAT(Mistake(R"({"fault": {"timer": 100}})"), HasSubstr("key 'late_ms' is missing in fault"));
  EXPECT_THAT(Mistake(R"({"position": {"strategy": "S"}})"), HasSubstr("key 'items' is missing in position"));
  EXPECT_THAT(Mistake(R"({"record": "R", "items": [{"remove": true}]})"), HasSubstr("needs the name"));
}

TEST_F(DayFile, FaultsAreReadWithTheirSettings) {
  EXPECT_EQ(FaultAction::Kind::kRecordOpen,
            Only<FaultAction>(R"({"fault": {"record": "R", "open": "fail"}})").kind);
  const FaultAction item = Only<FaultAction>(
      R"({"fault": {"record": "R", "item": 3, "node": "N", "open": "unresolved", "times": 2}})");
  EXPECT_EQ(FaultAction::Kind::kItemOpen, item.kind);
  EXPECT_EQ(2, item.times);
  EXPECT_EQ(L"N", item.node);
  EXPECT_TRUE(Only<FaultAction>(R"({"fault": {"account": "B1_A1", "drop": "none"}})").clear);
  EXPECT_EQ(Milliseconds(30000), Only<FaultAction>(R"({"fault": {"timer": 100, "late_ms": 30000}})").time);
  EXPECT_EQ(1, Only<FaultAction>(R"({"fault": {"thread": "fail"}})").times);
  EXPECT_TRUE(Only<FaultAction>(R"({"fault": {"stuck": "OrderWatchThread", "ms": "none"}})").clear);
}

// ---- Files ----

TEST_F(DayFile, AMissingFileAFolderAndAnEmptyFileAreMistakes) {
  EXPECT_EQ("no.day.jsonl: can't be opened: No such file or directory",
            MistakeOf(m_folder.Path("no.day.jsonl")));
  EXPECT_THAT(MistakeOf(m_folder.Path("")), HasSubstr("is a directory"));
  EXPECT_THAT(Mistake("", ""), StartsWith("a.day.jsonl: is empty"));
  EXPECT_THAT(Mistake("", "\n  \n"), StartsWith("a.day.jsonl: is empty"));
}

TEST_F(DayFile, PackedFilesAreReadByTheEndOfTheirName) {
  for (const std::string name : {"a.day.jsonl.gz", "a.day.jsonl.zst"}) {
    const auto file = CreateOutputFile(m_folder.Path(name));
    file->Write(kHead);
    file->Write("{\"note\": \"packed\"}\n");
    file->Close();
    EXPECT_EQ(1U, ReadDayFile(m_folder.Path(name)).lines.size()) << name;
  }
}

TEST_F(DayFile, BrokenPackedFilesAreMistakes) {
  EXPECT_EQ("a.gz: isn't a gzip file", MistakeOf(m_folder.Write("a.gz", kHead)));
  EXPECT_THAT(MistakeOf(m_folder.Write("a.zst", kHead)), StartsWith("a.zst: broken zstd data"));
  for (const std::string name : {"b.gz", "b.zst"}) {
    const auto file = CreateOutputFile(m_folder.Path(name));
    for (int i = 0; i < 1000; ++i) {
      file->Write(std::to_string(i * 7919 % 1009));
    }
    file->Close();
    const auto size = std::filesystem::file_size(m_folder.Path(name));
    std::filesystem::resize_file(m_folder.Path(name), size - 20);
    EXPECT_THAT(MistakeOf(m_folder.Path(name)), HasSubstr("the file ends too early")) << name;
  }
}

TEST_F(DayFile, TickFilesAreOpenedAndTheirColumnsChecked) {
  EXPECT_EQ("no.csv: can't be opened: No such file or directory", Mistake(R"({"ticks": "no.csv"})"));
  m_folder.Write("t.csv", "at,symbol,prise\n");
  EXPECT_EQ("t.csv:1: unknown column 'prise'; did you mean 'price'?", Mistake(R"({"ticks": "t.csv"})"));
  m_folder.Write("t.csv", "at,price\n");
  EXPECT_EQ("t.csv:1: column 'symbol' is missing", Mistake(R"({"ticks": "t.csv"})"));
  m_folder.Write("t.csv", "");
  EXPECT_THAT(Mistake(R"({"ticks": "t.csv"})"), StartsWith("t.csv: is empty"));
}

// ---- Commands from outside ----

TEST_F(DayFile, ACommandWithoutATimeComesFirstBehindTheSetup) {
  Day day = Read("{\"note\": \"setup\"}\n{\"at\": \"08:40:00\", \"note\": \"first\"}\n");
  InsertCommand(day, "{}", std::nullopt);
  ASSERT_EQ(3U, day.lines.size());
  EXPECT_EQ(L"{}", std::get<MessageAction>(day.lines[1].action).text);
  EXPECT_EQ(day.head.start, day.lines[1].at);
}

TEST_F(DayFile, CommandsWithoutATimeKeepTheirOrder) {
  Day day = Read("{\"note\": \"setup\"}\n{\"at\": \"08:40:00\", \"note\": \"first\"}\n");
  for (const char* text : {"1", "2", "3"}) InsertCommand(day, text, std::nullopt);
  for (size_t i = 1; i <= 3; ++i) {
    EXPECT_EQ(std::to_wstring(i), std::get<MessageAction>(day.lines[i].action).text);
  }
}

TEST_F(DayFile, ACommandWithoutATimeWaitsForPhaseTwoThatADayCallsItself) {
  Day day = Read("{\"at\": \"08:41:00\", \"phase\": [1, 1]}\n{\"at\": \"08:42:00\", \"phase\": [1, 2]}\n",
                 "{\"day\": {\"start\": \"2024-03-04T08:40:00\", \"phases\": \"manual\"}}\n");
  for (const char* text : {"1", "2"}) InsertCommand(day, text, std::nullopt);
  ASSERT_EQ(4U, day.lines.size());
  EXPECT_EQ(L"1", std::get<MessageAction>(day.lines[2].action).text);
  EXPECT_EQ(L"2", std::get<MessageAction>(day.lines[3].action).text);
  EXPECT_EQ(day.lines[1].at, day.lines[2].at);
}

TEST_F(DayFile, ACommandWithATimeComesBehindTheLinesOfThatTime) {
  Day day = Read("{\"at\": \"09:00:00\", \"note\": \"a\"}\n{\"at\": \"09:00:01\", \"note\": \"b\"}\n");
  InsertCommand(day, "x", day.lines[0].at);
  EXPECT_EQ(L"x", std::get<MessageAction>(day.lines[1].action).text);
  EXPECT_THROW(InsertCommand(day, "x", day.head.start - Milliseconds(1)), InputError);
  EXPECT_THROW(InsertCommand(day, "x", *day.head.end + Milliseconds(1)), InputError);
}

}  // namespace
}  // namespace iorder::testing

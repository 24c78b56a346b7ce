#include "terminal/trace_writer.h"

#include <gmock/gmock.h>

#include "terminal/input_error.h"
#include "terminal/input_file.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {
namespace {

constexpr const char* kStart = R"({"at": "2024-03-04T08:45:00.007", "thread": "timer 200", "event": )";

TraceEvent Event(TraceKind kind) {
  TraceEvent event;
  event.kind = kind;
  event.local = {2024, 3, 1, 4, 8, 45, 0, 7};
  event.thread = L"timer 200";
  return event;
}

std::string LineOf(const TraceEvent& event) {
  std::string line;
  AppendTraceLine(event, line);
  return line;
}

TEST(TraceWriter, EachEventHasItsKeys) {
  TraceEvent event = Event(TraceKind::kAdvertise);
  event.topic = L"T";
  event.first = 1;
  EXPECT_EQ(kStart + std::string("\"advertise\", \"topic\": \"T\", \"value\": 1}\n"), LineOf(event));
  event.kind = TraceKind::kSubscribe;
  EXPECT_EQ(kStart + std::string("\"subscribe\", \"topic\": \"T\"}\n"), LineOf(event));
  event.kind = TraceKind::kUnsubscribe;
  EXPECT_EQ(kStart + std::string("\"unsubscribe\", \"topic\": \"T\"}\n"), LineOf(event));

  event = Event(TraceKind::kOpenRecord);
  event.record = L"R";
  event.first = 12;
  EXPECT_EQ(kStart + std::string("\"open_record\", \"record\": \"R\", \"handle\": 12}\n"), LineOf(event));

  event = Event(TraceKind::kFault);
  event.code = 0x80070057;
  event.text = L"bad";
  EXPECT_EQ(kStart + std::string("\"fault\", \"code\": \"0x80070057\", \"text\": \"bad\"}\n"), LineOf(event));

  event = Event(TraceKind::kPhase);
  event.first = 1;
  event.second = 4;
  EXPECT_EQ(kStart + std::string("\"phase\", \"phase\": [1, 4]}\n"), LineOf(event));

  event = Event(TraceKind::kUpdate);
  event.record = L"R";
  event.first = 3;
  event.text = L"BN0=[]";
  EXPECT_EQ(
      kStart + std::string("\"update\", \"record\": \"R\", \"originator\": 3, \"payload\": \"BN0=[]\"}\n"),
      LineOf(event));

  event = Event(TraceKind::kQuery);
  event.database = L"D";
  event.table = L"T";
  event.text = L"1 = 1";
  event.first = 3;
  EXPECT_EQ(
      kStart + std::string(
                   "\"query\", \"database\": \"D\", \"table\": \"T\", \"where\": \"1 = 1\", \"rows\": 3}\n"),
      LineOf(event));
}

TEST(TraceWriter, ACommandShowsTheKindOfItsValue) {
  TraceEvent event = Event(TraceKind::kCommand);
  event.topic = L"T";
  event.first = 1;
  event.second = -2;
  event.text = L"x";
  const std::string head =
      kStart + std::string("\"command\", \"topic\": \"T\", \"first\": 1, \"second\": -2, \"text\": \"x\", ");
  EXPECT_EQ(head + "\"value\": null}\n", LineOf(event));
  for (const auto& [value, text] :
       std::vector<std::pair<Value, std::string>>{{5, "{\"int32\": 5}"},
                                                  {int64_t{-6}, "{\"int64\": -6}"},
                                                  {std::wstring(L"t"), "\"t\""},
                                                  {{}, "null"}}) {
    event.value = &value;
    EXPECT_EQ(head + "\"value\": " + text + "}\n", LineOf(event));
  }
}

TEST(TraceWriter, TextsAreUtf8AndEscaped) {
  TraceEvent event = Event(TraceKind::kLog);
  event.text = L"\"\\/\n\r\t\x01 äの\U0001F600";
  EXPECT_EQ(kStart + std::string("\"log\", \"text\": \"\\\"\\\\/\\n\\r\\t\\u0001 äの\U0001F600\"}\n"),
            LineOf(event));
}

TEST(TraceWriter, WritesPlainAndPackedFilesAlike) {
  CDayFolder folder;
  std::string expected;
  for (int i = 0; i < 20000; ++i) {
    expected += LineOf(Event(TraceKind::kLog));
  }
  for (const std::string name : {"a.jsonl", "a.jsonl.gz", "a.jsonl.zst"}) {
    CTraceWriter writer(folder.Path(name), false);
    for (int i = 0; i < 20000; ++i) {
      writer.OnEvent(Event(TraceKind::kLog));
    }
    writer.Close();
    CLineReader reader(folder.Path(name));
    std::string text;
    for (std::string_view line; reader.Next(line);) {
      text.append(line).push_back('\n');
    }
    EXPECT_TRUE(text == expected) << name;
  }
}

TEST(TraceWriter, AFileThatCantBeMadeIsAMistake) {
  CDayFolder folder;
  EXPECT_THROW(CTraceWriter(folder.Path("no/such/folder.jsonl"), false), InputError);
}

}  // namespace
}  // namespace iorder::testing

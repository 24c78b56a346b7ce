#include <gmock/gmock.h>

#include <atomic>

#include "platform/native/native_runtime.h"
#include "terminal/day_file.h"
#include "terminal/embedded_terminal.h"
#include "terminal/trace_writer.h"
#include "tests/terminal/day_folder.h"
#include "tests/terminal/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Counts the updates of a quote, reading its price each time.
class CCountingSink : public IBusEvents {
 public:
  explicit CCountingSink(IBusObject& quote) : m_quote(quote) {}
  void OnUpdate(int32_t, const std::wstring&) override {
    if (std::holds_alternative<int64_t>(m_quote.GetValue(read_code::kNumber, quote_field::kPrice))) {
      ++count;
    }
  }
  void OnReplace(int32_t) override {}

  std::atomic<int> count = 0;

 private:
  IBusObject& m_quote;
};

TEST(NativeDay, ADayRunsOnRealThreadsWithTheEngineCallingFromItsOwn) {
  constexpr int kRows = 2000;
  CDayFolder folder;
  std::string rows = "at,symbol,price\n";
  for (int i = 0; i < kRows; ++i) {
    rows += "08:40:30." + std::to_string(200 + i / 10) + ",ND." + std::to_string(i % 5) + "," +
            std::to_string(i) + "\n";
  }
  folder.Write("t.csv", rows);
  std::string lines =
      "{\"day\": {\"start\": \"2024-03-04T08:40:00\", \"subscription_ms\": 5}}\n"
      "{\"ticks\": \"t.csv\"}\n"
      "{\"accounts\": [{\"BrokerID\": \"B1\", \"Account\": \"A1\", \"ConnectStatus\": 2}]}\n";
  for (int i = 0; i < 20; ++i) {
    lines +=
        "{\"at\": \"08:40:30." + std::to_string(200 + i * 10) + "\", \"quote\": \"ND.0\", \"price\": 1}\n";
    lines += "{\"accounts\": [{\"BrokerID\": \"B1\", \"Account\": \"A1\", \"ConnectStatus\": 2}]}\n";
  }
  const Day day = ReadDayFile(folder.Write("a.day.jsonl", lines));
  NativeRuntimeOptions options;
  options.zone = day.head.timezone;
  options.start = ToDateTime(day.head.start);
  options.speed = 20;
  CNativeRuntime runtime(options);
  CEmbeddedTerminal terminal(runtime, day);
  CTraceText trace(true);
  terminal.AddListener(trace);

  CRecordingEngine engine;
  std::vector<std::shared_ptr<IBusObject>> quotes;
  std::vector<std::shared_ptr<CCountingSink>> sinks;
  std::vector<std::shared_ptr<IThread>> threads;
  engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase != 2) {
      return;
    }
    for (int i = 0; i < 5; ++i) {
      const std::wstring symbol = L"ND." + std::to_wstring(i);
      terminal.Events().Subscribe(symbol);
      quotes.push_back(terminal.GetWorld().bus.Resolve(*terminal.Events().OpenRecord(symbol)));
      sinks.push_back(std::make_shared<CCountingSink>(*quotes.back()));
      quotes.back()->Advise(sinks.back());
      threads.push_back(runtime.CreateThread(L"engine", [&, i, symbol] {
        for (int order = 0; order < 50; ++order) {
          terminal.Events().WriteLog(symbol);
          terminal.Events().Command(L"TRADE.NEWORDER", 1, 2, L"BROKERID=B1,ACCOUNT=A1,SYMBOL=" + symbol, {});
          const auto other = std::make_shared<CCountingSink>(*quotes[0]);
          quotes[0]->Unadvise(quotes[0]->Advise(other));
          runtime.Sleep(Milliseconds(1 + i));
        }
      }));
    }
    for (const std::shared_ptr<IThread>& thread : threads) {
      thread->Resume();
    }
  };
  const std::vector<std::string> problems = runtime.Run([&] { terminal.Play(engine); });
  EXPECT_THAT(problems, IsEmpty());
  EXPECT_EQ(std::nullopt, terminal.Error());
  EXPECT_EQ(static_cast<size_t>(kRows), terminal.RowsPlayed());
  EXPECT_EQ(250U, terminal.Orders().size());
  EXPECT_EQ(kRows / 5 + 20, sinks[0]->count);
  EXPECT_EQ(kRows / 5, sinks[1]->count);
  EXPECT_THAT(trace.Text(), HasSubstr("\"event\": \"phase\", \"phase\": [1, 4]"));
}

}  // namespace
}  // namespace iorder::testing

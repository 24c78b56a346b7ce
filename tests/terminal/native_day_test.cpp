#include <gmock/gmock.h>

#include <atomic>

#include "platform/native/native_runtime.h"
#include "platform/text.h"
#include "terminal/day_file.h"
#include "terminal/embedded_terminal.h"
#include "terminal/trace_writer.h"
#include "tests/terminal/day_folder.h"
#include "tests/terminal/figures_day.h"
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

TEST(NativeDay, GroupOrdersFillOnRealThreadsWhileFiguresMove) {
  constexpr int kOrders = 40;
  constexpr int kThreads = 4;
  CDayFolder folder;
  std::string lines =
      "{\"day\": {\"start\": \"2024-03-04T08:40:00\", \"end\": \"08:40:20\", \"orders\": {\"latency_ms\": "
      "20, "
      "\"late_ms\": 50, \"out_of_order\": true, \"repeat\": 0.3}}}\n"
      "{\"accounts\": [{\"BrokerID\": \"B1\", \"Account\": \"A1\", \"ConnectStatus\": 2}]}\n"
      "{\"quote\": \"ND.O.X\", \"price\": 5}\n"
      "{\"at\": \"08:40:00.500\", \"note\": \"\"}\n";
  for (int i = 1; i <= 100; ++i) {
    lines += "{\"record\": \"OPT.REAL.ND.O.X\", \"fields\": {\"Delta\": {\"int64\": " + std::to_string(i) +
             "}}}\n{\"quote\": \"ND.O.X\", \"price\": 5}\n";
  }
  const Day day = ReadDayFile(folder.Write("a.day.jsonl", lines));
  NativeRuntimeOptions options;
  options.zone = day.head.timezone;
  options.start = ToDateTime(day.head.start);
  options.speed = 20;
  CNativeRuntime runtime(options);
  CEmbeddedTerminal terminal(runtime, day);
  std::atomic<int> announced = 0;
  CRecordingEngine engine;
  engine.onMessage = [&](const std::wstring&, const std::wstring&, const Value&) { ++announced; };
  std::vector<std::shared_ptr<IThread>> threads;
  engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase != 2) return;
    for (int i = 0; i < kThreads; ++i) {
      threads.push_back(runtime.CreateThread(L"engine", [&, i] {
        for (int order = 0; order < kOrders; ++order) {
          terminal.Events().Command(L"TRADE.NEWORDER", 1, 2,
                                    L"BROKERID=B1,ACCOUNT=A1,SYMBOL=ND.O.X,SIDE=B,QTY=2,ORDERTYPE=10,"
                                    L"SYNTHETIC=1,STRATEGY=S,GROUPID=" +
                                        std::to_wstring(order / 3),
                                    {});
          runtime.Sleep(Milliseconds(5 + i));
        }
      }));
      threads.back()->Resume();
    }
  };
  EXPECT_THAT(runtime.Run([&] { terminal.Play(engine); }), IsEmpty());
  EXPECT_EQ(std::nullopt, terminal.Error());
  EXPECT_GE(announced, kThreads * kOrders);
  IRecordBus& bus = terminal.GetWorld().bus;
  const auto positions = bus.Resolve(*terminal.Events().OpenRecord(L"STRATEGY.POSITION"));
  const auto node = bus.Resolve(Int32Or(positions->GetValue(read_code::kNodeByName, L"S"), 0));
  ASSERT_NE(nullptr, node);
  const auto item = bus.Resolve(Int32Or(node->GetValue(read_code::kItemByName, L"ND.O.X"), 0));
  EXPECT_EQ(Value(kThreads * kOrders * 2), item->GetValue(read_code::kField, L"Quantity"));
  EXPECT_EQ(Value(int64_t{100} * kThreads * kOrders * 2), item->GetValue(read_code::kField, L"Delta"));
}

// ---- Figures ----

const std::wstring kFigureChain = L"ND.O.TWF.TX.202403.C.";

/// Half a second of a chain of ten calls of 20 percent, and of its future, which ends at 18000.
std::string FiguresDay(CDayFolder& folder) {
  constexpr double kYears = 16.5 / 365;
  std::string rows = "at,symbol,price\n";
  for (int i = 0; i < 1500; ++i) {
    const std::string at = "08:50:00." + std::to_string(200 + i / 3);
    const int strike = 17500 + 100 * (i % 10);
    const std::string price = std::to_string(BlackPrice(true, strike, 18000, 20, kYears));
    rows += at + ",ND.F.TWF.TX.202403," + std::to_string(i < 1400 ? 17000 + i : 18000) + "\n";
    rows += at + "," + ToUtf8(kFigureChain) + std::to_string(strike) + "," + price + "\n";
  }
  folder.Write("t.csv", rows);
  return folder.Write("a.day.jsonl",
                      R"({"day": {"start": "2024-03-04T08:50:00", "end": "08:50:04", "figures": "market", )"
                      R"("figures_ms": 10}}
{"symbols": [{"Symbol": "ND.O.TWF.TX.202403.C.17500", "Type": "O", "ExpDate": "20240320"}]}
{"ticks": "t.csv"}
)");
}

/// Subscribes the record of one option, follows and reads it, gives it up, and so on; in the end it keeps it.
void WatchFigures(CEmbeddedTerminal& terminal, IRuntime& runtime, int option) {
  const std::wstring name = L"OPT.REAL." + kFigureChain + std::to_wstring(17500 + 100 * (option % 10));
  for (int i = 0; i < 30; ++i) {
    terminal.Events().Subscribe(name);
    if (const auto handle = terminal.Events().OpenRecord(name)) {
      const auto record = terminal.GetWorld().bus.Resolve(*handle);
      const auto sink = std::make_shared<CRecordingSink>();
      sink->onUpdate = [record] { record->GetValue(read_code::kField, L"Delta"); };
      const auto token = record->Advise(sink);
      runtime.Sleep(Milliseconds(8 + option));
      record->Unadvise(token);
    }
    terminal.Events().Unsubscribe(name);
  }
  terminal.Events().Subscribe(name);
}

TEST(NativeDay, FiguresMoveOnRealThreadsWhileOthersWantThemAndNoMore) {
  constexpr int kThreads = 12;
  CDayFolder folder;
  const Day day = ReadDayFile(FiguresDay(folder));
  NativeRuntimeOptions options;
  options.zone = day.head.timezone;
  options.start = ToDateTime(day.head.start);
  CNativeRuntime runtime(options);
  CEmbeddedTerminal terminal(runtime, day);
  CRecordingEngine engine;
  std::vector<std::shared_ptr<IThread>> threads;
  engine.onPhase = [&](int32_t, int32_t phase) {
    if (phase != 2) return;
    for (int i = 0; i < kThreads; ++i) {
      threads.push_back(runtime.CreateThread(L"engine", [&, i] { WatchFigures(terminal, runtime, i); }));
      threads.back()->Resume();
    }
  };
  EXPECT_THAT(runtime.Run([&] { terminal.Play(engine); }), IsEmpty());
  EXPECT_EQ(std::nullopt, terminal.Error());
  for (int option = 0; option < 10; ++option) {
    const std::wstring name = L"OPT.REAL." + kFigureChain + std::to_wstring(17500 + 100 * option);
    const auto record = terminal.GetWorld().bus.Resolve(*terminal.Events().OpenRecord(name));
    EXPECT_EQ(1, Mcode(*record));
    EXPECT_NEAR(20, FromScaled(ScaledField(*record, L"ImpVol").value_or(0)), 0.5);
  }
}

}  // namespace
}  // namespace iorder::testing

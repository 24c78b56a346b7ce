#include "bench/bench_day.h"

#include <fmt/format.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "app/make_day.h"
#include "platform/virtual/virtual_runtime.h"
#include "terminal/day_file.h"
#include "terminal/trace_writer.h"

namespace iorder {

namespace {

/// Makes every trace line, as a file would get it, and keeps none.
class CCountingTrace : public ITerminalListener {
 public:
  void OnEvent(const TraceEvent& event) override {
    m_line.clear();
    AppendTraceLine(event, m_line);
    m_bytes += m_line.size();
  }
  size_t Bytes() const { return m_bytes; }

 private:
  std::string m_line;
  size_t m_bytes = 0;
};

/// Lets the benchmark in before the engine is stopped.
class CManagerWithEnd : public INordoManager {
 public:
  CManagerWithEnd(INordoManager& engine, std::function<void()> atEnd)
      : m_engine(engine), m_atEnd(std::move(atEnd)) {}

  void SetPhase(int32_t category, int32_t phase) override {
    if (phase == 4 && m_atEnd) m_atEnd();
    m_engine.SetPhase(category, phase);
  }
  void OnTopicMessage(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override {
    m_engine.OnTopicMessage(topic, first, second, text, value);
  }

 private:
  INordoManager& m_engine;
  std::function<void()> m_atEnd;
};

}  // namespace

CBenchFolder::CBenchFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "iorder-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  m_path = pattern;
}

CBenchFolder::~CBenchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string MakeBenchDay(const CBenchFolder& folder, const std::string& name, int strikes, int64_t ticks,
                         int minutes) {
  MakeDayOptions options = DefaultDay();
  options.strikes = strikes;
  options.ticks = ticks;
  options.minutes = minutes;
  options.day = folder.PathOf(name + ".day.jsonl");
  MakeDay(options, [](int64_t) {});
  return options.day.string();
}

std::string BenchCommand(const std::string& chain, double price, int64_t cash) {
  return fmt::format(
      R"({{"StrategyType":"OpenLottery","StrategyID":"B1","StrategySN":"1","Action":1,"BrokerID":"B1","Account":"A1",)"
      R"("Symbol":{{"Security":"{}","CP":"C"}},"Start":{{"Time":845,"Run":1,"DayOfWeek":[1,2,3,4,5]}},)"
      R"("Stop":{{"Enable":0,"Time":1340}},"Cash":{},"Condition":{{"OpenPrice":{{"Dn":1,"Up":50}},)"
      R"("StrikePrice":{{"In":-1,"Out":-1}}}},"OrderPrice":{{"Type":0,"Price":{}}}}})",
      chain, cash, price);
}

size_t RunBenchDay(const Day& day, const std::function<void(IWorldRuntime&, CEmbeddedTerminal&)>& atEnd) {
  CVirtualRuntime runtime(
      {.zone = day.head.timezone, .start = ToDateTime(day.head.start), .seed = day.head.seed});
  CEmbeddedTerminal terminal(runtime, day);
  CCountingTrace trace;
  terminal.AddListener(trace);
  CIntelligentOrder engine(terminal.GetWorld());
  engine.Advise(&terminal.Events());
  CManagerWithEnd manager(engine, [&] {
    if (atEnd) atEnd(runtime, terminal);
  });
  const std::vector<std::string> errors = runtime.Run([&] { terminal.Play(manager); });
  if (!errors.empty()) throw std::runtime_error(errors.front());
  if (terminal.Error()) throw std::runtime_error(*terminal.Error());
  return trace.Bytes();
}

}  // namespace iorder

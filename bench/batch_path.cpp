#include <cwchar>
#include <string>

#include "bench/paths.h"
#include "platform/virtual/virtual_runtime.h"
#include "terminal/day_file.h"

namespace iorder {

namespace {

constexpr int kSymbols = 100;

/// Hears when a batch begins and ends, and does nothing else with what it hears.
class CBatchClock : public ITerminalListener {
 public:
  void OnEvent(const TraceEvent& event) override {
    if (event.kind != TraceKind::kLog) return;
    if (event.text.find(L"DoPlaceOrder. arSymbol") != std::wstring_view::npos) m_begin = CpuNanoseconds();
    if (event.text.find(L"DoPlaceOrder Done.") != std::wstring_view::npos)
      m_time = CpuNanoseconds() - m_begin;
  }
  double Time() const { return m_time; }

 private:
  double m_begin = 0;
  double m_time = 0;
};

double BatchTime(const Day& day) {
  CVirtualRuntime runtime({.zone = day.head.timezone, .start = ToDateTime(day.head.start), .seed = 0});
  CEmbeddedTerminal terminal(runtime, day);
  CBatchClock clock;
  terminal.AddListener(clock);
  CIntelligentOrder engine(terminal.GetWorld());
  engine.Advise(&terminal.Events());
  runtime.Run([&] { terminal.Play(engine); });
  return clock.Time() / static_cast<double>(terminal.Orders().size());
}

void FormatOrders() {
  wchar_t text[512];
  int total = 0;
  for (int i = 0; i < kSymbols; ++i) {
    total += std::swprintf(text, 512,
                           L"TYPE=%ls,BROKERID=%ls,ACCOUNT=%ls,SYMBOL=%ls,SIDE=%ls,QTY=%d,PRICE=%lld,"
                           L"ORDERTYPE=%d,POSITIONEFFECT=%d,"
                           L"TIMEINFORCE=%d,SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1=%ls,USERKEY2=%ls@%"
                           L"ls,USERKEY3=%ls,PROCESSID=%d",
                           L"O", L"B1", L"A1", L"ND.O.TWF.TX.202403.C.17500", L"B", i, 200000000000LL + i, 2,
                           0, 1, L"", L"OpenLottery_B1_1", L"090030050", L"", 0);
  }
  Keep(total);
}

}  // namespace

Ratio BatchAgainstFormat(const CBenchFolder& folder, int repeats) {
  Day day = ReadDayFile(MakeBenchDay(folder, "batch", 401, 60000, 60));
  InsertCommand(day, BenchCommand("ND.O.TWF.TX.202403", 20.0, 100000000),
                ToLocalTime(DateTime{2024, 3, 1, 4, 9, 30, 0, 0}));
  return Compare(
      "one order of a batch", "swprintf of its order string", Timed(kSymbols, FormatOrders),
      [&day] { return BatchTime(day); }, 1.0, repeats);
}

}  // namespace iorder

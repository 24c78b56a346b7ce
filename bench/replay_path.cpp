#include <stdexcept>

#include "bench/bare_parse.h"
#include "bench/paths.h"
#include "terminal/day_file.h"

namespace iorder {

namespace {

/// The day with a command in it from the first minute on.
Day DayWithCommand(const std::string& path, const std::string& chain) {
  Day day = ReadDayFile(path);
  InsertCommand(day, BenchCommand(chain, 20.0, 200000), std::nullopt);
  return day;
}

std::string TicksOf(const std::string& dayPath) {
  return dayPath.substr(0, dayPath.rfind(".day.jsonl")) + ".ticks.csv";
}

double RowsOf(const std::string& dayPath) {
  double rows = 0;
  RunBenchDay(ReadDayFile(dayPath), [&rows](IWorldRuntime&, CEmbeddedTerminal& terminal) {
    rows = static_cast<double>(terminal.RowsPlayed());
  });
  return rows;
}

}  // namespace

Ratio ReplayAgainstParse(const std::string& name, const std::string& dayPath, const std::string& chain,
                         Answers answers, int repeats) {
  Day day = DayWithCommand(dayPath, chain);
  if (answers == Answers::kByTape) day.head.orders = OrderRules{};
  const std::string ticks = TicksOf(dayPath);
  const double rows = RowsOf(dayPath);
  return Compare(name, "from_chars over the same ticks", Timed(rows, [&] { Keep(BareParse(ticks)); }),
                 Timed(rows, [&] { Keep(RunBenchDay(day)); }), 4.0, repeats);
}

Ratio ManySymbolsAgainstFew(const CBenchFolder& folder, int repeats) {
  constexpr int64_t kTicks = 400000;
  const Day few = DayWithCommand(MakeBenchDay(folder, "few", 5, kTicks, 300), "ND.O.TWF.TX.202403");
  const Day many = DayWithCommand(MakeBenchDay(folder, "many", 1000, kTicks, 300), "ND.O.TWF.TX.202403");
  return Compare("one event, 2,000 symbols", "one event, 10 symbols",
                 Timed(kTicks, [&] { Keep(RunBenchDay(few)); }),
                 Timed(kTicks, [&] { Keep(RunBenchDay(many)); }), 1.25, repeats);
}

Ratio QuietSession(const CBenchFolder& folder, int repeats) {
  const Day day = ReadDayFile(MakeBenchDay(folder, "quiet", 5, 1, 300));
  constexpr double kGoalNs = 20e6;
  return Compare(
      "a quiet session of five hours", "20 ms", [] { return kGoalNs; },
      Timed(1, [&] { Keep(RunBenchDay(day)); }), 1.0, repeats);
}

}  // namespace iorder

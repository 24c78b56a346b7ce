#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/paths.h"
#include "platform/text.h"
#include "reference/symbol.h"
#include "terminal/day_file.h"
#include "terminal/record_bus.h"

namespace iorder {

namespace {

constexpr int kUpdates = 20000;

/// The calls of the day that have opened by now, so that each was judged.
std::vector<std::wstring> OpenedCalls(const Day& day, CEmbeddedBus& bus) {
  std::vector<std::wstring> symbols;
  for (const DayLine& line : day.lines) {
    const auto* action = std::get_if<SymbolsAction>(&line.action);
    if (action == nullptr) continue;
    for (const SymbolsAction::Row& row : action->rows) {
      const std::wstring symbol = ToWide(*row.front());
      const Value open = bus.Quote(symbol).GetValue(read_code::kNumber, quote_field::kOpen);
      if (IsCall(symbol) && std::holds_alternative<int64_t>(open)) symbols.push_back(symbol);
    }
  }
  return symbols;
}

/// Plays one update of each symbol after the other, as ticks do: a new price and a new volume.
void PlayUpdates(CEmbeddedBus& bus, const std::vector<std::wstring>& symbols) {
  static const Firing kFiring;
  std::vector<CBusObject*> quotes;
  for (const std::wstring& symbol : symbols) quotes.push_back(&bus.Quote(symbol));
  QuoteUpdate update;
  update.clock = false;
  for (int i = 0; i < kUpdates; ++i) {
    update.count = 0;
    update.Set(quote_field::kPrice, (100 + i % 7) * static_cast<int64_t>(kScale));
    update.Set(quote_field::kVolume, 1000 + i);
    bus.PlayQuote(*quotes[static_cast<size_t>(i) % quotes.size()], update, nullptr, {}, kFiring);
  }
}

int64_t LookUpSymbols(const std::unordered_map<std::wstring, int>& table,
                      const std::vector<std::wstring>& symbols) {
  int64_t sum = 0;
  for (int i = 0; i < kUpdates; ++i)
    sum += table.find(symbols[static_cast<size_t>(i) % symbols.size()])->second;
  return sum;
}

}  // namespace

Ratio QuoteAgainstLookup(const CBenchFolder& folder, int repeats) {
  Day day = ReadDayFile(MakeBenchDay(folder, "quote", 41, 20000, 60));
  InsertCommand(day, BenchCommand("ND.O.TWF.TX.202403", 20.0, 0),
                ToLocalTime(DateTime{2024, 3, 1, 4, 9, 30, 0, 0}));
  Ratio ratio;
  RunBenchDay(day, [&](IWorldRuntime&, CEmbeddedTerminal& terminal) {
    auto& bus = static_cast<CEmbeddedBus&>(terminal.GetWorld().bus);
    const std::vector<std::wstring> symbols = OpenedCalls(day, bus);
    std::unordered_map<std::wstring, int> table;
    for (const std::wstring& symbol : symbols) table.emplace(symbol, static_cast<int>(table.size()));
    ratio = Compare("one update of a judged option", "one hash look-up of its symbol",
                    Timed(kUpdates, [&] { Keep(LookUpSymbols(table, symbols)); }),
                    Timed(kUpdates, [&] { PlayUpdates(bus, symbols); }), 3.0, repeats);
  });
  return ratio;
}

}  // namespace iorder

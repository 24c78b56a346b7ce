#include "app/import/taifex_ticks.h"

#include <algorithm>

#include "app/import/import_error.h"
#include "app/symbol_words.h"

namespace iorder {

CTaifexTicks::CTaifexTicks(const TaifexTrades& trades) : m_trades(trades), m_states(trades.series.size()) {}

std::optional<CTaifexTicks::Tick> CTaifexTicks::Add(const TaifexTrade& row) {
  State& state = m_states[row.series];
  if (state.second != row.time) EndSecond(state);
  state.second = row.time;
  if (state.open == 0) state.open = row.price;

  auto carried = std::ranges::find(state.carried, row.price, &Carried::price);
  if (carried == state.carried.end()) carried = state.carried.insert(carried, {row.price, 0, 0});
  carried->quantity += row.quantity;
  carried->line = row.line;
  if (carried->quantity < 2) return std::nullopt;

  Tick tick{carried->quantity / 2, 0, std::nullopt};
  carried->quantity %= 2;
  if (state.volume == 0) tick.open = state.open;
  state.volume += tick.quantity;
  tick.volume = state.volume;
  return tick;
}

void CTaifexTicks::Finish() {
  for (State& state : m_states) EndSecond(state);
}

void CTaifexTicks::EndSecond(State& state) {
  for (const Carried& carried : state.carried) {
    if (carried.quantity != 0) {
      throw CImportError(m_trades.file, carried.line,
                         "has a lot without its other side at the price " + DecimalText(carried.price),
                         "an even sum of lots in each second");
    }
  }
  state.carried.clear();
}

}  // namespace iorder

#include "app/day_totals.h"

#include <fmt/format.h>

#include "app/happening_text.h"
#include "app/object_writer.h"
#include "app/table_text.h"

namespace iorder {
namespace {

std::string StateOf(const CDayTotals::Strategy& strategy) {
  return strategy.isGone ? "gone" : StateWords(strategy.state);
}

}  // namespace

void CDayTotals::Add(const Happening& happening) {
  m_positions.Add(happening);
  m_groupOrders.Add(happening);
  if (const auto* started = std::get_if<StrategyStarted>(&happening)) {
    m_strategies[started->strategy].isGone = false;
  } else if (const auto* gone = std::get_if<StrategyGone>(&happening)) {
    m_strategies[gone->strategy].isGone = true;
  } else if (const auto* change = std::get_if<StateChanged>(&happening)) {
    Strategy& strategy = m_strategies[change->strategy];
    strategy.state = change->state;
    if (change->state == 0) strategy.ended.clear();  // a new run
  } else if (const auto* judged = std::get_if<OptionJudged>(&happening)) {
    m_strategies[judged->strategy].accepted += judged->accepted ? 1 : 0;
  } else if (const auto* order = std::get_if<OrderSent>(&happening)) {
    ++m_orders;
    if (order->group) return;
    Strategy& strategy = m_strategies[order->strategy];
    ++strategy.orders;
    strategy.lots += order->lots;
  } else if (const auto* batch = std::get_if<BatchPlaced>(&happening)) {
    m_strategies[batch->strategy].cash = batch->cash;
  } else if (const auto* ended = std::get_if<RunEnded>(&happening)) {
    m_strategies[ended->strategy].ended = ended->reason;
  } else if (std::holds_alternative<CancelSent>(happening)) {
    ++m_cancels;
  } else if (std::holds_alternative<FaultReported>(happening)) {
    ++m_faults;
  }
}

std::string CDayTotals::StrategyTable() const {
  if (m_strategies.empty()) return "";
  std::vector<std::vector<std::string>> lines;
  lines.push_back({"strategy", "state", "accepted", "orders", "lots", "cash", "ended by"});
  for (const auto& [key, strategy] : m_strategies) {
    lines.push_back({key.empty() ? "-" : key, StateOf(strategy), std::to_string(strategy.accepted),
                     std::to_string(strategy.orders), std::to_string(strategy.lots),
                     std::to_string(strategy.cash), strategy.ended.empty() ? "-" : strategy.ended});
  }
  const TableColumn text{.isText = true};
  return TableText({text, text, {}, {}, {.leastWidth = 6}, {.leastWidth = 12}, text}, lines);
}

std::string CDayTotals::Table() const {
  std::string groupOrders = m_groupOrders.Table();
  if (!groupOrders.empty() && !m_strategies.empty()) groupOrders.insert(0, "\n");
  return m_positions.Table() + StrategyTable() + groupOrders +
         fmt::format("{} orders, {} cancels, {} faults\n", m_orders, m_cancels, m_faults);
}

std::string CDayTotals::Json(const std::vector<std::string>& errors) const {
  CObjectWriter writer;
  writer.Text("kind", "end");
  writer.BeginList("strategies");
  for (const auto& [key, strategy] : m_strategies) {
    writer.Begin();
    writer.Text("strategy", key);
    writer.Number("state", strategy.state);
    writer.Text("words", StateOf(strategy));
    writer.Number("accepted", strategy.accepted);
    writer.Number("orders", strategy.orders);
    writer.Number("lots", strategy.lots);
    writer.Number("cash", strategy.cash);
    writer.Text("ended", strategy.ended);
    writer.End();
  }
  writer.EndList();
  m_positions.WriteJson(writer);
  m_groupOrders.WriteJson(writer);
  writer.Number("orders", m_orders);
  writer.Number("cancels", m_cancels);
  writer.Number("faults", m_faults);
  writer.BeginList("errors");
  for (const std::string& error : errors) writer.Item(error);
  writer.EndList();
  return writer.Close();
}

}  // namespace iorder

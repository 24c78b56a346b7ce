#include "app/day_totals.h"

#include <fmt/format.h>

#include <string_view>

#include "app/happening_text.h"
#include "app/table_text.h"
#include "records/json_document.h"

namespace iorder {
namespace {

std::string StateOf(const CDayTotals::Strategy& strategy) {
  return strategy.isGone ? "gone" : StateWords(strategy.state);
}

void WriteText(CJsonWriter& writer, std::string_view name, std::string_view text) {
  writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
  writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void WriteNumber(CJsonWriter& writer, const char* name, int64_t number) {
  writer.Key(name);
  writer.Int64(number);
}

}  // namespace

void CDayTotals::Add(const Happening& happening) {
  m_positions.Add(happening);
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
  return m_positions.Table() + StrategyTable() +
         fmt::format("{} orders, {} cancels, {} faults\n", m_orders, m_cancels, m_faults);
}

std::string CDayTotals::Json(const std::vector<std::string>& errors) const {
  rapidjson::StringBuffer buffer;
  CJsonWriter writer(buffer);
  writer.StartObject();
  WriteText(writer, "kind", "end");
  writer.Key("strategies");
  writer.StartArray();
  for (const auto& [key, strategy] : m_strategies) {
    writer.StartObject();
    WriteText(writer, "strategy", key);
    WriteNumber(writer, "state", strategy.state);
    WriteText(writer, "words", StateOf(strategy));
    WriteNumber(writer, "accepted", strategy.accepted);
    WriteNumber(writer, "orders", strategy.orders);
    WriteNumber(writer, "lots", strategy.lots);
    WriteNumber(writer, "cash", strategy.cash);
    WriteText(writer, "ended", strategy.ended);
    writer.EndObject();
  }
  writer.EndArray();
  m_positions.WriteJson(writer);
  WriteNumber(writer, "orders", m_orders);
  WriteNumber(writer, "cancels", m_cancels);
  WriteNumber(writer, "faults", m_faults);
  writer.Key("errors");
  writer.StartArray();
  for (const std::string& error : errors)
    writer.String(error.data(), static_cast<rapidjson::SizeType>(error.size()));
  writer.EndArray();
  writer.EndObject();
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace iorder

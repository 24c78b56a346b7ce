#include "app/position_totals.h"

#include <algorithm>
#include <vector>

#include "app/symbol_words.h"
#include "app/table_text.h"

namespace iorder {
namespace {

/// Money of one price point of so many lots.
double Money(int64_t lots, int64_t weight) {
  return static_cast<double>(lots) * static_cast<double>(weight);
}

}  // namespace

double CPositionTotals::Row::Realised() const {
  if (!position.boughtAt || !position.soldAt) return 0;
  return (*position.soldAt - *position.boughtAt) * Money(position.sold, weight);
}

double CPositionTotals::Row::Open() const {
  if (!position.boughtAt || !last) return 0;
  return (*last - *position.boughtAt) * Money(position.held, weight);
}

double CPositionTotals::Row::Cost() const {
  return position.boughtAt ? *position.boughtAt * Money(position.bought, weight) : 0;
}

void CPositionTotals::Add(const Happening& happening) {
  if (const auto* position = std::get_if<PositionChanged>(&happening)) {
    Row& row = m_rows[{position->strategy, position->life, position->run, position->symbol}];
    row.position = *position;
    const auto weight = m_weights.find(position->symbol);
    if (weight != m_weights.end()) row.weight = weight->second;
  } else if (const auto* valued = std::get_if<PositionValued>(&happening)) {
    const auto row = m_rows.find({valued->strategy, valued->life, valued->run, valued->symbol});
    if (row != m_rows.end()) row->second.last = valued->last;
  } else if (const auto* total = std::get_if<TagTotalChanged>(&happening)) {
    m_tags[total->tag] = *total;
  } else if (const auto* known = std::get_if<WeightKnown>(&happening)) {
    // A weight that isn't above 0 counts as 1.
    const int64_t weight = std::max<int64_t>(known->weight, 1);
    m_weights[known->symbol] = weight;
    for (auto& [key, row] : m_rows) {
      if (std::get<3>(key) == known->symbol) row.weight = weight;
    }
  }
}

std::string CPositionTotals::PositionTable() const {
  std::vector<std::vector<std::string>> lines;
  lines.push_back({"strategy", "life", "run", "symbol", "bought", "average", "sold", "average", "held",
                   "last", "realised", "open", "cost"});
  for (const auto& [key, row] : m_rows) {
    const PositionChanged& position = row.position;
    lines.push_back({position.strategy, std::to_string(position.life), position.run,
                     SymbolWords(position.symbol), std::to_string(position.bought),
                     PriceText(position.boughtAt, "-"), std::to_string(position.sold),
                     PriceText(position.soldAt, "-"), std::to_string(position.held), PriceText(row.last, "-"),
                     MoneyText(row.Realised()), MoneyText(row.Open()), MoneyText(row.Cost())});
  }
  constexpr size_t kTextColumns = 4;
  std::vector<TableColumn> columns(lines[0].size());
  for (size_t i = 0; i < kTextColumns; ++i) columns[i].isText = true;
  return TableText(columns, lines);
}

std::string CPositionTotals::TagTable() const {
  std::vector<std::vector<std::string>> lines;
  lines.push_back({"tag", "cost", "profit"});
  for (const auto& [tag, total] : m_tags)
    lines.push_back({tag.empty() ? "-" : tag, std::to_string(total.cost), MoneyText(total.profit)});
  return TableText({{.isText = true}, {}, {}}, lines);
}

std::string CPositionTotals::Table() const {
  if (m_rows.empty()) return "";
  return PositionTable() + '\n' + TagTable() + '\n';
}

void CPositionTotals::WriteJson(CObjectWriter& writer) const {
  writer.BeginList("positions");
  for (const auto& [key, row] : m_rows) {
    writer.Begin();
    writer.Text("strategy", row.position.strategy);
    writer.Number("life", row.position.life);
    writer.Text("run", row.position.run);
    writer.Text("symbol", row.position.symbol);
    writer.Number("bought", row.position.bought);
    writer.Double("bought_at", row.position.boughtAt);
    writer.Number("sold", row.position.sold);
    writer.Double("sold_at", row.position.soldAt);
    writer.Number("held", row.position.held);
    writer.Double("last", row.last);
    writer.Double("realised", row.Realised());
    writer.Double("open", row.Open());
    writer.Double("cost", row.Cost());
    writer.End();
  }
  writer.EndList();
  writer.BeginList("tags");
  for (const auto& [tag, total] : m_tags) {
    writer.Begin();
    writer.Text("tag", tag);
    writer.Number("cost", total.cost);
    writer.Double("profit", total.profit);
    writer.End();
  }
  writer.EndList();
}

}  // namespace iorder

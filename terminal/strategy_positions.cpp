#include "terminal/strategy_positions.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "records/int128.h"
#include "records/option_figures_record.h"
#include "terminal/option_figures.h"
#include "terminal/order_report.h"
#include "terminal/security_info.h"

namespace iorder {
namespace {

constexpr int32_t kBought = 1;
constexpr int32_t kSold = 2;
/// The record tells lots in 32 bits: no more are held.
constexpr int64_t kMostLots = std::numeric_limits<int32_t>::max();

std::wstring FiguresRecord(const std::wstring& symbol) {
  return std::wstring(kOptionFiguresRecord) + symbol;
}

const Value* FindField(const RecordChange& item, std::wstring_view name) {
  const auto found = std::find_if(item.fields.begin(), item.fields.end(),
                                  [name](const FieldChange& field) { return field.name == name; });
  return found != item.fields.end() ? &found->value.value : nullptr;
}

/// The product in 64 bits, but for NoValue, which is no value; none if it doesn't fit.
std::optional<int64_t> Product(int64_t figure, int64_t lots, int64_t weight) {
  Int128 product = 0;
  const bool fits = !__builtin_mul_overflow(Int128{figure} * lots, Int128{weight}, &product) &&
                    product > std::numeric_limits<int64_t>::min() &&
                    product <= std::numeric_limits<int64_t>::max();
  return fits ? std::optional(static_cast<int64_t>(product)) : std::nullopt;
}

}  // namespace

void CStrategyPositions::Fill(const std::wstring& strategy, const std::wstring& symbol, int64_t lots) {
  {
    CLockGuard guard(m_section);
    Watch(symbol);
    Holding& holding = m_holdings[strategy][symbol];
    holding.lots =
        static_cast<int64_t>(std::clamp<Int128>(Int128{holding.lots} + lots, -kMostLots, kMostLots));
    if (holding.lots != 0) holding.isSold = holding.lots < 0;
    std::vector<FieldChange> fields = FiguresOf(OptionOf(symbol), holding.lots);
    fields.push_back({L"Symbol", TextField(symbol)});
    fields.push_back({L"Quantity", Int32Field(std::abs(holding.lots))});
    fields.push_back({L"Side", Int32Field(holding.isSold ? kSold : kBought)});
    Write(strategy, symbol, std::move(fields));
  }
  m_bus.Fire(kStrategyPosition, {false, std::nullopt, strategy});
}

void CStrategyPositions::Set(const PositionAction& position) {
  CLockGuard guard(m_section);
  m_holdings.erase(position.strategy);
  if (!position.items) {
    m_bus.RemoveNode(kStrategyPosition, position.strategy);
    return;
  }
  Holdings& holdings = m_holdings[position.strategy];
  std::vector<RecordChange> items;
  for (const RecordChange& item : *position.items) {
    items.push_back(TakeItem(item, holdings));
  }
  m_bus.ReplaceItems(kStrategyPosition, position.strategy, items);
}

/// The item as it is to be written. One that doesn't say what is held, or no number of lots, or says it of a
/// symbol a second time, is the line's own affair.
RecordChange CStrategyPositions::TakeItem(const RecordChange& given, Holdings& holdings) {
  const Value* const symbolField = FindField(given, L"Symbol");
  const std::wstring* const symbol =
      symbolField != nullptr ? std::get_if<std::wstring>(symbolField) : nullptr;
  const Value* const quantityField = FindField(given, L"Quantity");
  const std::optional<int64_t> quantity = quantityField != nullptr ? IntegerIn(*quantityField) : std::nullopt;
  const bool isHeld = quantity && *quantity >= -kMostLots && *quantity <= kMostLots;
  if (symbol == nullptr || !isHeld || holdings.contains(*symbol)) return given;

  Watch(*symbol);
  const Value* const side = FindField(given, L"Side");
  const bool isSold = side != nullptr && IntegerIn(*side) == kSold;
  const int64_t lots = isSold ? -*quantity : *quantity;
  holdings[*symbol] = {lots, isSold};
  RecordChange item = given;
  item.name = *symbol;
  // In front: what the line names wins.
  std::vector<FieldChange> figures = FiguresOf(OptionOf(*symbol), lots);
  item.fields.insert(item.fields.begin(), figures.begin(), figures.end());
  return item;
}

void CStrategyPositions::Watch(const std::wstring& symbol) {
  m_bus.Watch(FiguresRecord(symbol), [this, symbol] { OnFigures(symbol); });
}

void CStrategyPositions::OnFigures(const std::wstring& symbol) {
  CLockGuard guard(m_section);
  const Option option = OptionOf(symbol);
  for (const auto& [strategy, holdings] : m_holdings) {
    if (const auto holding = holdings.find(symbol); holding != holdings.end()) {
      Write(strategy, symbol, FiguresOf(option, holding->second.lots));
    }
  }
}

void CStrategyPositions::Write(const std::wstring& strategy, const std::wstring& symbol,
                               std::vector<FieldChange> fields) {
  RecordChange item;
  item.name = symbol;
  item.fields = std::move(fields);
  RecordChange node;
  node.name = strategy;
  node.items.push_back(std::move(item));
  RecordChange record;
  record.name = kStrategyPosition;
  record.nodes.push_back(std::move(node));
  m_bus.Apply(record);
}

CStrategyPositions::Option CStrategyPositions::OptionOf(const std::wstring& symbol) {
  return {m_bus.Fields(FiguresRecord(symbol)), ContractWeightOf(m_bus, symbol)};
}

std::vector<FieldChange> CStrategyPositions::FiguresOf(const Option& option, int64_t lots) {
  std::vector<FieldChange> figures;
  for (const OptionFigureField& field : kOptionFigureFields) {
    if (field.unit == OptionFigureField::Unit::kLevel) continue;
    const int64_t weight = field.unit == OptionFigureField::Unit::kMoney ? option.contractWeight : 1;
    const auto found = option.fields.find(field.name);
    const std::optional<int64_t> figure =
        found != option.fields.end() ? IntegerIn(found->second) : std::nullopt;
    const bool isThere = figure && *figure != NoValue;
    const std::optional<int64_t> product = isThere ? Product(*figure, lots, weight) : std::nullopt;
    figures.push_back({std::wstring(field.name), Int64OrNone(product.value_or(NoValue))});
  }
  return figures;
}

}  // namespace iorder

#include "app/day_tables.h"

#include <fmt/format.h>

#include "app/csv_cell.h"
#include "app/symbol_words.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOrders = "orders.csv";
constexpr const char* kFills = "fills.csv";
constexpr const char* kPositions = "positions.csv";
constexpr const char* kProfit = "profit.csv";

fs::path MadeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw InputError(folder.string() + ": can't be made: " + error.message());
  return folder;
}

/// Of an order that is part of none they are empty.
std::string GroupCells(const OrderSent& order) {
  if (!order.group) return ",,";
  return fmt::format("{},{},{}", CsvCell(order.group->order.id), order.group->order.number, order.group->leg);
}

}  // namespace

std::vector<fs::path> TableFiles(const fs::path& folder) {
  std::vector<fs::path> files = {folder / kOrders, folder / kFills, folder / kPositions, folder / kProfit};
  for (const fs::path& file : CGroupOrderTables::Files(folder)) files.push_back(file);
  return files;
}

CDayTables::CDayTables(const fs::path& folder)
    : m_orders(MadeFolder(folder) / kOrders),
      m_fills(folder / kFills),
      m_positions(folder / kPositions),
      m_profit(folder / kProfit),
      m_groupOrders(CGroupOrderTables::Files(folder)) {
  m_orders.Write("at,strategy,account,symbol,side,lots,price,closes,group_order,number,leg\n");
  m_fills.Write("at,strategy,symbol,report,side,lots,price,filled,sent\n");
  m_positions.Write("at,strategy,life,run,symbol,bought,bought_at,sold,sold_at,held\n");
  m_profit.Write("at,tag,cost,profit\n");
}

void CDayTables::Add(const std::string& at, const Happening& happening) {
  if (!m_error.empty()) return;
  try {
    Write(at, happening);
  } catch (const InputError& error) {
    m_error = error.what();
  }
}

void CDayTables::Write(const std::string& at, const Happening& happening) {
  if (const auto* order = std::get_if<OrderSent>(&happening)) {
    const std::string price = order->price ? DecimalText(*order->price) : order->priceWords;
    m_orders.Write(fmt::format("{},{},{},{},{},{},{},{},{}\n", at, CsvCell(order->strategy),
                               CsvCell(order->account), CsvCell(order->symbol), CsvCell(order->side),
                               order->lots, CsvCell(price), order->closes ? 1 : 0, GroupCells(*order)));
  } else if (const auto* fill = std::get_if<OrderFilled>(&happening)) {
    m_fills.Write(fmt::format("{},{},{},{},{},{},{},{},{}\n", at, CsvCell(fill->strategy),
                              CsvCell(fill->symbol), CsvCell(fill->report), fill->closes ? 'S' : 'B',
                              fill->lots, DecimalText(fill->price), fill->filled, fill->sent));
  } else if (const auto* position = std::get_if<PositionChanged>(&happening)) {
    m_positions.Write(fmt::format("{},{},{},{},{},{},{},{},{},{}\n", at, CsvCell(position->strategy),
                                  position->life, position->run, CsvCell(position->symbol), position->bought,
                                  PriceText(position->boughtAt, ""), position->sold,
                                  PriceText(position->soldAt, ""), position->held));
  } else if (const auto* total = std::get_if<TagTotalChanged>(&happening)) {
    m_profit.Write(
        fmt::format("{},{},{},{}\n", at, CsvCell(total->tag), total->cost, MoneyText(total->profit)));
  } else {
    m_groupOrders.Write(at, happening);
  }
}

void CDayTables::Commit() {
  if (!m_error.empty()) throw InputError(m_error);
  for (COutputFile* const file : {&m_orders, &m_fills, &m_positions, &m_profit}) file->Commit();
  m_groupOrders.Commit();
}

}  // namespace iorder

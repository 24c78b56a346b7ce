#include "app/day_tables.h"

#include <fmt/format.h>

#include "app/symbol_words.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

fs::path MadeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw InputError(folder.string() + ": can't be made: " + error.message());
  return folder;
}

/// A cell; one that holds a comma, a quote or an end of line is quoted.
std::string Cell(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

std::array<fs::path, 4> TableFiles(const fs::path& folder) {
  return {folder / "orders.csv", folder / "fills.csv", folder / "positions.csv", folder / "profit.csv"};
}

CDayTables::CDayTables(const fs::path& folder) : CDayTables(TableFiles(MadeFolder(folder))) {}

CDayTables::CDayTables(const std::array<fs::path, 4>& files)
    : m_orders(files[0]), m_fills(files[1]), m_positions(files[2]), m_profit(files[3]) {
  m_orders.Write("at,strategy,account,symbol,side,lots,price,closes\n");
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
    m_orders.Write(fmt::format("{},{},{},{},{},{},{},{}\n", at, Cell(order->strategy), Cell(order->account),
                               Cell(order->symbol), Cell(order->side), order->lots, Cell(price),
                               order->closes ? 1 : 0));
  } else if (const auto* fill = std::get_if<OrderFilled>(&happening)) {
    m_fills.Write(fmt::format("{},{},{},{},{},{},{},{},{}\n", at, Cell(fill->strategy), Cell(fill->symbol),
                              Cell(fill->report), fill->closes ? 'S' : 'B', fill->lots,
                              DecimalText(fill->price), fill->filled, fill->sent));
  } else if (const auto* position = std::get_if<PositionChanged>(&happening)) {
    m_positions.Write(fmt::format("{},{},{},{},{},{},{},{},{},{}\n", at, Cell(position->strategy),
                                  position->life, position->run, Cell(position->symbol), position->bought,
                                  PriceText(position->boughtAt, ""), position->sold,
                                  PriceText(position->soldAt, ""), position->held));
  } else if (const auto* total = std::get_if<TagTotalChanged>(&happening)) {
    m_profit.Write(fmt::format("{},{},{},{}\n", at, Cell(total->tag), total->cost, MoneyText(total->profit)));
  }
}

void CDayTables::Commit() {
  if (!m_error.empty()) throw InputError(m_error);
  for (COutputFile* const file : {&m_orders, &m_fills, &m_positions, &m_profit}) file->Commit();
}

}  // namespace iorder

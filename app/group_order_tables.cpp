#include "app/group_order_tables.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/csv_cell.h"
#include "app/group_order_words.h"
#include "app/symbol_words.h"

namespace iorder {
namespace {

std::string NameCells(const GroupOrderName& order) {
  return fmt::format("{},{}", CsvCell(order.id), order.number);
}

/// Four cells, empty for a check that there isn't.
std::string CheckCells(const std::vector<GroupCheck>& checks, int number) {
  const auto check = std::find_if(checks.begin(), checks.end(),
                                  [number](const GroupCheck& one) { return one.number == number; });
  if (check == checks.end()) return ",,,";
  return fmt::format("{},{},{},{}", CsvCell(check->field), PriceText(check->value), PriceText(check->low),
                     PriceText(check->high));
}

std::string FigureCell(const std::string& field, ScaledValue figure) {
  return figure == NoValue ? "" : FigureText(field, figure);
}

/// Figure and distance; empty where there is none.
std::string FoundCells(const GroupLegChosen& leg) {
  if (!leg.found) return ",";
  return FigureCell(leg.field, leg.found->figure) + ',' +
         FigureCell(leg.field, leg.found->HasDistance() ? leg.found->distance : NoValue);
}

int64_t Sum(const std::vector<GroupLots>& lots) {
  int64_t sum = 0;
  for (const GroupLots& one : lots) sum += one.lots;
  return sum;
}

}  // namespace

std::array<std::filesystem::path, 3> CGroupOrderTables::Files(const std::filesystem::path& folder) {
  return {folder / "cycles.csv", folder / "legs.csv", folder / "children.csv"};
}

CGroupOrderTables::CGroupOrderTables(const std::array<std::filesystem::path, 3>& files)
    : m_cycles(files[0]), m_legs(files[1]), m_children(files[2]) {
  m_cycles.Write(
      "at,group_order,number,cycle,sum,target,check1,value1,low1,high1,check2,value2,low2,high2,doubled,"
      "orders,lots\n");
  m_legs.Write(
      "at,group_order,number,cycle,leg,right,side,lots,field,wanted,symbol,figure,distance,offset,opened\n");
  m_children.Write("at,group_order,number,child,state,words,live,fails\n");
}

void CGroupOrderTables::Write(const std::string& at, const Happening& happening) {
  if (const auto* cycle = std::get_if<GroupCycleMade>(&happening)) {
    Write(at, *cycle);
  } else if (const auto* leg = std::get_if<GroupLegChosen>(&happening)) {
    Write(at, *leg);
  } else if (const auto* announced = std::get_if<GroupChildAnnounced>(&happening)) {
    WriteChild(at, announced->order, announced->child, ",is there", announced->live, false);
  } else if (const auto* changed = std::get_if<GroupChildChanged>(&happening)) {
    const std::string state = changed->state == NoInt ? "" : std::to_string(changed->state);
    WriteChild(at, changed->order, changed->child, state + ',' + ChildStateWords(changed->state),
               changed->live, changed->fails);
  }
}

void CGroupOrderTables::Write(const std::string& at, const GroupCycleMade& cycle) {
  m_cycles.Write(fmt::format(
      "{},{},{},{},{},{},{},{},{},{}\n", at, NameCells(cycle.order), cycle.cycle, PriceText(cycle.sum, ""),
      PriceText(cycle.target), CheckCells(cycle.checks, 1), CheckCells(cycle.checks, 2),
      cycle.doubledLeg == 0 ? "" : std::to_string(cycle.doubledLeg), cycle.orders, cycle.lots));
}

void CGroupOrderTables::Write(const std::string& at, const GroupLegChosen& leg) {
  m_legs.Write(fmt::format("{},{},{},{},{},{},{},{},{},{},{},{},{}\n", at, NameCells(leg.order), leg.cycle,
                           leg.leg, CsvCell(leg.right), leg.side, leg.lots, CsvCell(leg.field),
                           FigureCell(leg.field, leg.wanted), CsvCell(leg.symbol), FoundCells(leg),
                           Sum(leg.offsets), leg.opens));
}

void CGroupOrderTables::WriteChild(const std::string& at, const GroupOrderName& order,
                                   const std::string& child, const std::string& state, size_t live,
                                   bool fails) {
  m_children.Write(
      fmt::format("{},{},{},{},{},{}\n", at, NameCells(order), CsvCell(child), state, live, fails ? 1 : 0));
}

void CGroupOrderTables::Commit() {
  for (COutputFile* const file : {&m_cycles, &m_legs, &m_children}) file->Commit();
}

}  // namespace iorder

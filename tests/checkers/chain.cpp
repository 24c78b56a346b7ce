#include "tests/checkers/chain.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "tests/checkers/bus_read.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kNearest = "ND.O.TWF.TX.HOT";

struct Listed {
  std::string symbol;
  int64_t strike = 0;
  int64_t expiry = 0;
};

std::array<std::string, 5> TokensOf(std::string_view symbol) {
  std::array<std::string, 5> tokens;
  for (std::string& token : tokens) {
    symbol.remove_prefix(std::min(symbol.find_first_not_of('.'), symbol.size()));
    token = symbol.substr(0, symbol.find('.'));
    symbol.remove_prefix(token.size());
  }
  return tokens;
}

std::string ColumnOf(const SymbolsAction::Row& row, size_t column) {
  return column < row.size() ? row[column].value_or("") : "";
}

std::string Lowered(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return text;
}

/// Whether the symbol has `begin` and, somewhere behind it, `end`, in capital or small letters.
bool HasInOrder(const std::string& given, const std::string& begin, const std::string& end) {
  const std::string symbol = Lowered(given);
  const size_t at = symbol.find(begin);
  return at != std::string::npos && symbol.find(end, at + begin.size()) != std::string::npos;
}

/// Without the letters that a series has whose terms were adjusted.
bool IsOfProduct(const SymbolsAction::Row& row, const std::string& product) {
  const std::string own = ColumnOf(row, 4);
  const size_t adjusted = ColumnOf(row, 5).size();
  return adjusted <= own.size() && own.substr(0, own.size() - adjusted + 1) == product;
}

}  // namespace

std::vector<std::string> CallsOf(const Day& day, const std::string& chain, LocalTime at) {
  const bool isNearest = chain == kNearest;
  const auto [space, type, exchange, product, month] = TokensOf(chain);
  const std::string begin = Lowered("ND." + type + "." + exchange + "." + product);
  const std::string end = Lowered((isNearest ? "" : "." + month) + ".C.");
  std::vector<Listed> listed;
  for (const DayLine& line : day.lines) {
    const auto* const symbols = std::get_if<SymbolsAction>(&line.action);
    if (symbols == nullptr || line.at > at) continue;
    for (const SymbolsAction::Row& row : symbols->rows) {
      Listed one{ColumnOf(row, 0), LeadingWhole(ColumnOf(row, 2)), LeadingWhole(ColumnOf(row, 3))};
      if (ColumnOf(row, 1) != type || !HasInOrder(one.symbol, begin, end)) continue;
      if (isNearest ? one.expiry <= 0 : !IsOfProduct(row, product)) continue;
      listed.push_back(std::move(one));
    }
  }
  if (isNearest) {
    int64_t first = INT64_MAX;
    for (const Listed& one : listed) first = std::min(first, one.expiry);
    std::erase_if(listed, [first](const Listed& one) { return one.expiry != first; });
  }
  std::stable_sort(listed.begin(), listed.end(),
                   [](const Listed& left, const Listed& right) { return left.strike < right.strike; });
  std::vector<std::string> calls;
  for (Listed& one : listed) calls.push_back(std::move(one.symbol));
  return calls;
}

}  // namespace iorder::testing

#include "app/symbol_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace iorder {
namespace {

/// At most seven parts: the strike keeps the dots that it holds.
std::vector<std::string_view> Split(std::string_view symbol) {
  constexpr size_t kMaxParts = 7;
  std::vector<std::string_view> parts;
  while (parts.size() + 1 < kMaxParts) {
    const size_t dot = symbol.find('.');
    if (dot == std::string_view::npos) break;
    parts.push_back(symbol.substr(0, dot));
    symbol.remove_prefix(dot + 1);
  }
  parts.push_back(symbol);
  return parts;
}

/// "Mar24" for "202403"; another text stays as it is.
std::string MonthWords(std::string_view month) {
  constexpr std::array<const char*, 12> kNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  if (month == "HOT") return "hot month";
  const bool isNumber = month.size() == 6 && std::all_of(month.begin(), month.end(), [](char digit) {
                          return digit >= '0' && digit <= '9';
                        });
  const int number = isNumber ? (month[4] - '0') * 10 + (month[5] - '0') : 0;
  if (number < 1 || number > 12) return std::string(month);
  return fmt::format("{}{}", kNames[static_cast<size_t>(number - 1)], month.substr(2, 2));
}

}  // namespace

std::string SymbolWords(std::string_view symbol) {
  const std::vector<std::string_view> parts = Split(symbol);
  if (parts.size() < 5 || parts[0] != "ND") return std::string(symbol);
  const std::string series = fmt::format("{} {}", parts[3], MonthWords(parts[4]));
  if (parts[1] == "F" && parts.size() == 5) return series + " future";
  if (parts[1] != "O" || parts.size() != 7 || (parts[5] != "C" && parts[5] != "P"))
    return std::string(symbol);
  return fmt::format("{} {} {}", series, parts[6], parts[5] == "C" ? "call" : "put");
}

std::string DecimalText(ScaledValue value, int places) {
  if (value == NoValue) return "none";
  uint64_t unit = 1;
  for (int i = 0; i < places; ++i) unit *= 10;
  const auto magnitude =
      value < 0 ? uint64_t{0} - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  std::string text = fmt::format("{}{}", value < 0 ? "-" : "", magnitude / unit);
  if (magnitude % unit == 0) return text;
  text += fmt::format(".{:0{}}", magnitude % unit, places);
  text.erase(text.find_last_not_of('0') + 1);
  return text;
}

std::string PriceText(double price) {
  std::string text = fmt::format("{:.6f}", price);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

std::string PriceText(const std::optional<double>& price, const std::string& none) {
  return price ? PriceText(*price) : none;
}

std::string MoneyText(double money) {
  const std::string text = fmt::format("{:.2f}", money);
  return text == "-0.00" ? "0.00" : text;
}

}  // namespace iorder

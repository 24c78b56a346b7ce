#include "app/import/taifex_series.h"

#include <fmt/format.h>

#include <charconv>

#include "app/symbol_words.h"

namespace iorder {
namespace {

constexpr int kMonthSeriesWeek = 3;

/// Not ok() if the month has no such week.
std::chrono::year_month_weekday LastWednesday(const TaifexExpiry& expiry) {
  const auto nth = static_cast<unsigned>(expiry.week == 0 ? kMonthSeriesWeek : expiry.week);
  return std::chrono::year(expiry.year) / expiry.month / std::chrono::Wednesday[nth];
}

}  // namespace

std::optional<TaifexExpiry> TaifexExpiry::Parse(std::string_view text) {
  const bool weekly = text.size() == 8 && text[6] == 'W' && text[7] >= '1' && text[7] <= '5';
  if (text.size() != 6 && !weekly) return std::nullopt;
  int yearAndMonth = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + 6, yearAndMonth);
  const TaifexExpiry expiry{yearAndMonth / 100, yearAndMonth % 100, weekly ? text[7] - '0' : 0};
  const bool read = error == std::errc() && end == text.data() + 6;
  return read && expiry.year >= 1900 && LastWednesday(expiry).ok() ? std::optional(expiry) : std::nullopt;
}

std::string TaifexExpiry::MonthText() const {
  return fmt::format("{:04}{:02}", year, month);
}

std::chrono::year_month_day TaifexExpiry::LastTradingDay() const {
  return std::chrono::sys_days(LastWednesday(*this));
}

std::string TaifexSeries::Product() const {
  const std::string week = expiry.week == 0 ? "" : std::to_string(expiry.week);
  return (kind == Kind::kFuture && expiry.week != 0 ? "MX" : "TX") + week;
}

std::string TaifexSeries::ProductSymbol() const {
  return (kind == Kind::kOption ? "ND.O.TWF." : "ND.F.TWF.") + Product();
}

std::string TaifexSeries::Symbol() const {
  std::string symbol = ProductSymbol() + "." + expiry.MonthText();
  if (kind == Kind::kOption) symbol += fmt::format(".{}.{}", right, DecimalText(strike));
  return symbol;
}

std::string TaifexSeries::UnderlyingProductSymbol() const {
  return TaifexSeries{Kind::kFuture, expiry, 0, 0}.ProductSymbol();
}

}  // namespace iorder

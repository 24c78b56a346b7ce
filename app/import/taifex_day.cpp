#include "app/import/taifex_day.h"

#include <fmt/format.h>

#include <map>

#include "app/option_price.h"
#include "app/symbol_words.h"

namespace iorder {
namespace {

constexpr std::chrono::minutes kMargin{15};

bool IsOption(const TaifexSeries& series) {
  return series.kind == TaifexSeries::Kind::kOption;
}

/// yyyymmdd
int64_t LastDay8(const TaifexSeries& series) {
  const std::chrono::year_month_day date = series.expiry.LastTradingDay();
  return static_cast<int>(date.year()) * 10000LL + static_cast<unsigned>(date.month()) * 100 +
         static_cast<unsigned>(date.day());
}

/// Each option product with the future that it is valued by: the weekly options have a weekly future of their
/// own.
std::string UnderlyingSettings(const TaifexDay& day) {
  std::map<std::string, std::string> underlyings;
  for (const TaifexSeries& series : day.series) {
    if (IsOption(series)) underlyings[series.ProductSymbol()] = series.UnderlyingProductSymbol();
  }
  std::string text = "[UnderlyingF]\n";
  for (const auto& [product, future] : underlyings) text += product + "=" + future + "\n";
  return text;
}

/// The nearest month of each product.
CDayWriter::Fields HotMonths(const TaifexDay& day) {
  std::map<std::string, TaifexExpiry> nearest;
  for (const TaifexSeries& series : day.series) {
    const auto entry = nearest.try_emplace(series.ProductSymbol(), series.expiry).first;
    entry->second = std::min(entry->second, series.expiry);
  }
  CDayWriter::Fields fields;
  for (const auto& [product, expiry] : nearest) {
    fields.emplace_back(product + ".HOT", product + "." + expiry.MonthText());
  }
  return fields;
}

/// Price steps, and the money for one index point: the big future's is 200, all others' 50.
CDayWriter::Fields ContractAttributes(const TaifexDay& day) {
  std::map<std::string, std::string> products;
  for (const TaifexSeries& series : day.series) {
    const bool bigFuture = !IsOption(series) && series.expiry.week == 0;
    products[series.ProductSymbol()] =
        fmt::format(R"({{"TickSize":"{}","Weight":"{}"}})", IsOption(series) ? kOptionTickLadder : "1",
                    bigFuture ? 200 : 50);
  }
  return {products.begin(), products.end()};
}

}  // namespace

CDayWriter WriteTaifexDay(const std::filesystem::path& path, const TaifexDay& day) {
  CDayWriter writer(path, day.date.Opens() - kMargin, day.date.Closes() + kMargin, day.fill);
  writer.Settings("ComShared/SystemSettings.ini", "[SYSTEM]\nSystemName=TAIFEX\n");
  writer.Settings("ComShared/OpenLottery.ini", UnderlyingSettings(day));
  for (const TaifexSeries& series : day.series) {
    writer.Symbol({.symbol = series.Symbol(),
                   .type = IsOption(series) ? "O" : "F",
                   .searchName = IsOption(series) ? DecimalText(series.strike) : series.expiry.MonthText(),
                   .expiryDate = std::to_string(LastDay8(series)),
                   .product = series.Product()});
  }
  writer.Record("HOTMONTHTABLE", HotMonths(day));
  writer.SecurityInfo(ContractAttributes(day));
  writer.Account(day.brokerId, day.account);
  for (const TaifexSeries& series : day.series) {
    writer.Series({.symbol = series.Symbol(), .endDate = LastDay8(series), .referencePrice = ""});
  }
  return writer;
}

}  // namespace iorder

#include "app/make_day.h"

#include <fmt/format.h>

#include <string_view>

#include "app/day_writer.h"
#include "app/made_market.h"
#include "app/option_price.h"
#include "app/tick_writer.h"
#include "app/time_text.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::minutes;
using std::chrono::year_month_day;

/// The world of the made day opens so long before the session and closes so long after it.
constexpr minutes kMargin{15};

constexpr const char* kOptionProduct = "ND.O.TWF.TX";
constexpr const char* kFutureProduct = "ND.F.TWF.TX";

local_days DayOf(LocalTime moment) {
  return std::chrono::floor<days>(moment);
}

/// "HH:MM".
std::string MinuteText(LocalTime moment) {
  return TimeText(moment).substr(11, 5);
}

/// Orders for this market are judged only in its trading hours.
bool LiesInTradingHours(LocalTime start, minutes length) {
  const auto begin = start - DayOf(start);
  const auto end = begin + length;
  using std::chrono::hours;
  const bool day = begin >= hours(8) + minutes(45) && end <= hours(13) + minutes(45);
  const bool night = begin >= hours(15) && end <= hours(24 + 5);
  const bool morning = end <= hours(5);
  return day || night || morning;
}

local_days ThirdWednesday(std::chrono::year_month month) {
  return local_days(month / std::chrono::Wednesday[3]);
}

/// The last trading day of the nearest month that still trades when the session is over. Its last session
/// ends in the early afternoon.
local_days ExpiryAfter(LocalTime end) {
  const year_month_day date(DayOf(end));
  const std::chrono::year_month month = date.year() / date.month();
  const local_days expiry = ThirdWednesday(month);
  const bool expired = end > expiry + std::chrono::hours(13) + minutes(45);
  return expired ? ThirdWednesday(month + std::chrono::months(1)) : expiry;
}

int64_t Date8(local_days day) {
  const year_month_day date(day);
  return static_cast<int>(date.year()) * 10000LL + static_cast<unsigned>(date.month()) * 100 +
         static_cast<unsigned>(date.day());
}

std::string PriceText(int64_t tenths) {
  return tenths % 10 == 0 ? fmt::format("{}", tenths / 10) : fmt::format("{}.{}", tenths / 10, tenths % 10);
}

std::string OptionsText(const MakeDayOptions& options) {
  return fmt::format(
      "made by iorder make-day --seed {} --strikes {} --ticks {} --start {} --minutes {} --price {} "
      "--volatility {} "
      "--account {}/{}{}",
      options.seed, options.strikes, options.ticks, TimeText(options.start), options.minutes, options.price,
      options.volatility, options.broker, options.account,
      options.fill.empty() ? std::string() : " --orders " + options.fill);
}

void WriteReferenceData(CDayWriter& day, const std::string& month) {
  day.Settings("ComShared/SystemSettings.ini", "[SYSTEM]\nSystemName=IORDER\n");
  day.Settings("ComShared/OpenLottery.ini",
               fmt::format("[UnderlyingF]\n{}={}\n", kOptionProduct, kFutureProduct));
  day.SecurityInfo({{kOptionProduct, fmt::format(R"({{"TickSize":"{}","Weight":"50"}})", kOptionTickLadder)},
                    {kFutureProduct, R"({"TickSize":"1","Weight":"200"})"}});
  day.Record("HOTMONTHTABLE",
             {{fmt::format("{}.HOT", kOptionProduct), fmt::format("{}.{}", kOptionProduct, month)},
              {fmt::format("{}.HOT", kFutureProduct), fmt::format("{}.{}", kFutureProduct, month)}});
}

void WriteSeries(CDayWriter& day, const CMadeMarket& market, const std::string& month, int64_t endDate,
                 int64_t price) {
  for (const MadeSeries& series : market.Series()) {
    const bool isFuture = series.strike == 0;
    day.Symbol({.symbol = series.symbol,
                .type = isFuture ? "F" : "O",
                .searchName = isFuture ? month : std::to_string(series.strike),
                .expiryDate = std::to_string(endDate),
                .product = "TX"});
  }
  for (const MadeSeries& series : market.Series()) {
    day.Series({.symbol = series.symbol,
                .endDate = endDate,
                .referencePrice = series.strike == 0 ? std::to_string(price) : ""});
  }
}

}  // namespace

MakeDayOptions DefaultDay() {
  using namespace std::chrono;
  MakeDayOptions options;
  options.start = local_days(2024y / March / 4) + hours(8) + minutes(45);
  return options;
}

std::filesystem::path TickFileOf(const std::filesystem::path& day) {
  constexpr std::string_view kEnding = ".day.jsonl";
  std::string name = day.filename().string();
  const size_t ending = name.rfind(kEnding);
  if (ending == std::string::npos || ending == 0) {
    throw InputError(day.string() + ": expected a name that ends in " + std::string(kEnding));
  }
  return day.parent_path() / name.replace(ending, kEnding.size(), ".ticks.csv");
}

void MakeDay(const MakeDayOptions& options, const std::function<void(int64_t ticks)>& progress) {
  const minutes length(options.minutes);
  const LocalTime end = options.start + length;
  if (!LiesInTradingHours(options.start, length)) {
    throw InputError(
        fmt::format("--start, --minutes: {} to {} isn't within the market's trading hours, expected 08:45 "
                    "to 13:45 or 15:00 to 05:00",
                    MinuteText(options.start), MinuteText(end)));
  }
  const local_days expiry = ExpiryAfter(end);
  const year_month_day expiryDate(expiry);
  const std::string month = fmt::format("{:04}{:02}", static_cast<int>(expiryDate.year()),
                                        static_cast<unsigned>(expiryDate.month()));
  CMadeMarket market({.strikes = options.strikes,
                      .price = options.price,
                      .volatility = options.volatility,
                      .daysToExpiry = (expiry - DayOf(options.start)).count(),
                      .length = std::chrono::duration_cast<Milliseconds>(length).count(),
                      .future = fmt::format("{}.{}", kFutureProduct, month),
                      .chain = fmt::format("{}.{}", kOptionProduct, month)},
                     options.seed);

  const std::filesystem::path tickFile = TickFileOf(options.day);
  CDayWriter day(options.day, options.start - kMargin, end + kMargin, options.fill);
  day.Note(OptionsText(options));
  WriteReferenceData(day, month);
  day.Account(options.broker, options.account);
  WriteSeries(day, market, month, Date8(expiry), options.price);
  day.Ticks(tickFile.filename().string());

  CTickWriter ticks(tickFile, std::nullopt, !options.fill.empty());
  for (int64_t index = 0; index < options.ticks; ++index) {
    const MadeTrade trade = market.Trade(index, options.ticks);
    const std::string price = PriceText(trade.price);
    const std::string bid = PriceText(trade.bid);
    const std::string ask = PriceText(trade.ask);
    ticks.Append({.at = options.start + Milliseconds(trade.after),
                  .symbol = trade.series->symbol,
                  .price = price,
                  .quantity = trade.quantity,
                  .volume = trade.series->volume,
                  .open = trade.opens ? std::string_view(price) : std::string_view(),
                  .best = {bid, ask, trade.bidQuantity, trade.askQuantity}});
    if (index % 65536 == 65535) progress(index + 1);
  }
  ticks.Commit();
  day.Commit();
}

}  // namespace iorder

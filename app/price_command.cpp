#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "analytics/theory_price.h"
#include "app/command_line.h"
#include "platform/text.h"
#include "records/json_document.h"
#include "records/scaled_value.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

constexpr int64_t kMostStrikes = 100'000;
constexpr double kMostPercent = 1000;

struct Arguments {
  std::string right;  ///< empty: both
  double volatility = 0;
  std::string strikes;
  double underlying = 0;
  double years = 0;
  double days = 0;
  double daysOfYear = 250;
  double rate = 0;
  double carry = 0;
  bool json = false;
};

/// Strikes at equal distances, exact to their last decimal place, as the engine reads those of symbols.
struct StrikeStrip {
  ScaledValue first = 0;
  ScaledValue step = 1;
  int64_t count = 1;

  double At(int64_t i) const { return static_cast<double>(first + i * step) / kScale; }
};

ScaledValue ReadStrike(const std::string& text, const std::string& all) {
  const std::optional<ScaledValue> strike = ParseScaled(text);
  if (strike && *strike > 0) return *strike;
  throw InputError(fmt::format(
      "--strike: '{}', expected a number above 0, or FROM:TO:STEP of such (with at most 10 places)", all));
}

StrikeStrip ReadStrikes(const std::string& text) {
  const size_t first = text.find(':');
  if (first == std::string::npos) return {.first = ReadStrike(text, text)};
  const size_t second = text.find(':', first + 1);
  if (second == std::string::npos)
    throw InputError(fmt::format("--strike: '{}', expected a strike or FROM:TO:STEP", text));
  StrikeStrip strip;
  strip.first = ReadStrike(text.substr(0, first), text);
  const ScaledValue last = ReadStrike(text.substr(first + 1, second - first - 1), text);
  strip.step = ReadStrike(text.substr(second + 1), text);
  if (last < strip.first) throw InputError(fmt::format("--strike: '{}', expected FROM not above TO", text));
  strip.count = (last - strip.first) / strip.step + 1;
  if (strip.count > kMostStrikes)
    throw InputError(
        fmt::format("--strike: '{}' has {} strikes, expected at most {}", text, strip.count, kMostStrikes));
  return strip;
}

/// One right and its prices, strike by strike.
struct PricedRight {
  std::string right;
  std::vector<double> prices;
};

std::vector<PricedRight> PriceAll(const Arguments& arguments, const StrikeStrip& strikes, double years) {
  std::vector<PricedRight> priced;
  for (const std::string right : {"C", "P"}) {
    if (!arguments.right.empty() && arguments.right != right) continue;
    priced.push_back({.right = right, .prices = {}});
    for (int64_t i = 0; i < strikes.count; ++i) {
      priced.back().prices.push_back(CalcTheoryPrice(arguments.volatility / 100, strikes.At(i),
                                                     arguments.underlying, arguments.rate / 100, years, years,
                                                     arguments.carry / 100, ToWide(right)));
    }
  }
  return priced;
}

void PrintTable(const StrikeStrip& strikes, const std::vector<PricedRight>& priced) {
  std::string text = fmt::format("{:>14}", "strike");
  for (const PricedRight& one : priced) text += fmt::format("{:>16}", one.right == "C" ? "call" : "put");
  for (int64_t i = 0; i < strikes.count; ++i) {
    text += fmt::format("\n{:>14}", strikes.At(i));
    for (const PricedRight& one : priced)
      text += fmt::format("{:>16.6f}", one.prices[static_cast<size_t>(i)]);
  }
  std::cout << text << '\n';
}

void PrintJson(const Arguments& arguments, const StrikeStrip& strikes, double years,
               const std::vector<PricedRight>& priced) {
  const char* separator = "[";
  for (const PricedRight& one : priced) {
    for (int64_t i = 0; i < strikes.count; ++i) {
      rapidjson::StringBuffer buffer;
      CJsonWriter writer(buffer);
      const auto number = [&writer](const char* key, double value) {
        writer.Key(key);
        writer.Double(value);
      };
      writer.StartObject();
      writer.Key("right");
      writer.String(one.right);
      number("vol", arguments.volatility);
      number("strike", strikes.At(i));
      number("underlying", arguments.underlying);
      number("years", years);
      number("rate", arguments.rate);
      number("carry", arguments.carry);
      number("price", one.prices[static_cast<size_t>(i)]);
      writer.EndObject();
      std::cout << separator << buffer.GetString();
      separator = ",\n ";
    }
  }
  std::cout << "]\n";
}

int Run(const Arguments& arguments) {
  if ((arguments.years > 0) == (arguments.days > 0))
    throw InputError("expected either --years, or --days (with --of)");
  const double years = arguments.years > 0 ? arguments.years : arguments.days / arguments.daysOfYear;
  const StrikeStrip strikes = ReadStrikes(arguments.strikes);
  const std::vector<PricedRight> priced = PriceAll(arguments, strikes, years);
  if (arguments.json) {
    PrintJson(arguments, strikes, years, priced);
  } else {
    PrintTable(strikes, priced);
  }
  return kDone;
}

}  // namespace

void AddPriceCommand(CLI::App& program, Job& job) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command = program.add_subcommand("price", "Price options as the engine prices its orders");
  command->add_option("--right", arguments->right, "C for calls, P for puts; without it both")
      ->check(EitherWord("C", "P"));
  command->add_option("--vol", arguments->volatility, "Volatility, percent a year")
      ->check(Number(0, 100 * kMostPercent))
      ->required();
  command->add_option("--strike", arguments->strikes, "A strike, or a strip of them as FROM:TO:STEP")
      ->required();
  command->add_option("--underlying", arguments->underlying, "Price of the underlying")
      ->check(Number(0, 1e9))
      ->required();
  command->add_option("--years", arguments->years, "Time to expiry in years")->check(Number(0, 100));
  command->add_option("--days", arguments->days, "Time to expiry in days, in place of --years")
      ->check(Number(0, 36500));
  command
      ->add_option("--of", arguments->daysOfYear,
                   "Days of a year, for --days: 250 trading days, 365 calendar days")
      ->check(Number(0, 1000))
      ->capture_default_str();
  command->add_option("--rate", arguments->rate, "Interest rate, percent a year")
      ->check(Number(-kMostPercent, kMostPercent))
      ->capture_default_str();
  command
      ->add_option("--carry", arguments->carry,
                   "Cost of carry, percent a year: 0 for options on futures, the rate for stocks")
      ->check(Number(-kMostPercent, kMostPercent))
      ->capture_default_str();
  command->add_flag(
      "--json", arguments->json,
      "Print a list of objects with right, vol, strike, underlying, years, rate, carry and price");
  command->footer(Examples(
      "  iorder price --right C --vol 20 --strike 17000 --underlying 17250 --years 0.25 --rate 2 --carry 0\n"
      "  iorder price --vol 20 --strike 16800:17600:100 --underlying 17250 --days 12 --of 250\n"
      "  iorder price --right P --vol 18.5 --strike 17000 --underlying 17250 --days 16 --of 365 --json"));
  command->callback([&job, arguments] { job = [arguments] { return Run(*arguments); }; });
}

}  // namespace iorder

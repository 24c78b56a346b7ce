#include <fmt/format.h>

#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "analytics/opt_greeks.h"
#include "app/command_line.h"
#include "app/object_writer.h"
#include "app/table_text.h"
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

  std::vector<double> All() const {
    std::vector<double> strikes;
    for (int64_t i = 0; i < count; ++i) strikes.push_back(static_cast<double>(first + i * step) / kScale);
    return strikes;
  }
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

/// What is printed: the prices of each right, strike by strike.
struct Priced {
  std::vector<double> strikes;
  double years = 0;
  std::map<std::string, std::vector<double>> rights;
};

Priced PriceAll(const Arguments& arguments) {
  Priced priced{.strikes = ReadStrikes(arguments.strikes).All(),
                .years = arguments.years > 0 ? arguments.years : arguments.days / arguments.daysOfYear,
                .rights = {}};
  for (const std::string right : {"C", "P"}) {
    if (!arguments.right.empty() && arguments.right != right) continue;
    COptGreeks greeks;
    greeks.SetInputs({.call = right == "C",
                      .rate = arguments.rate / 100,
                      .rateTime = priced.years,
                      .volatilityTime = priced.years,
                      .carry = arguments.carry / 100});
    std::vector<double>& prices = priced.rights[right];
    prices.resize(priced.strikes.size());
    greeks.Theory().TheoreticalPrices(arguments.volatility / 100, priced.strikes, arguments.underlying,
                                      prices);
  }
  return priced;
}

/// To six places; "-" for a price that isn't finite.
std::string PriceCell(double price) {
  return std::isfinite(price) ? fmt::format("{:.6f}", price) : "-";
}

void PrintTable(const Priced& priced) {
  constexpr size_t kLeastWidth = 14;
  std::vector<std::vector<std::string>> lines(priced.strikes.size() + 1);
  lines[0] = {"strike"};
  for (size_t i = 0; i < priced.strikes.size(); ++i) lines[i + 1] = {fmt::format("{}", priced.strikes[i])};
  for (const auto& [right, prices] : priced.rights) {
    lines[0].push_back(right == "C" ? "call" : "put");
    for (size_t i = 0; i < prices.size(); ++i) lines[i + 1].push_back(PriceCell(prices[i]));
  }
  const TableColumn column{.isText = false, .leastWidth = kLeastWidth};
  std::cout << TableText(std::vector<TableColumn>(lines[0].size(), column), lines);
}

std::string JsonOf(const Arguments& arguments, const std::string& right, double strike, double years,
                   double price) {
  CObjectWriter writer;
  writer.Text("right", right);
  writer.Double("vol", arguments.volatility);
  writer.Double("strike", strike);
  writer.Double("underlying", arguments.underlying);
  writer.Double("years", years);
  writer.Double("rate", arguments.rate);
  writer.Double("carry", arguments.carry);
  writer.Double("price", price);
  return writer.Close();
}

void PrintJson(const Arguments& arguments, const Priced& priced) {
  const char* separator = "[";
  for (const auto& [right, prices] : priced.rights) {
    for (size_t i = 0; i < prices.size(); ++i) {
      std::cout << separator << JsonOf(arguments, right, priced.strikes[i], priced.years, prices[i]);
      separator = ",\n ";
    }
  }
  std::cout << "]\n";
}

int Run(const Arguments& arguments) {
  if ((arguments.years > 0) == (arguments.days > 0))
    throw InputError("expected either --years, or --days (with --of)");
  const Priced priced = PriceAll(arguments);
  if (arguments.json) {
    PrintJson(arguments, priced);
  } else {
    PrintTable(priced);
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
  CLI::Option* const days =
      command->add_option("--days", arguments->days, "Time to expiry in days, in place of --years")
          ->check(Number(0, 36500));
  command
      ->add_option("--of", arguments->daysOfYear,
                   "Days of a year, for --days: 250 trading days, 365 calendar days")
      ->check(Number(0, 1000))
      ->needs(days)
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

#include <fmt/format.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <tuple>

#include "app/command_line.h"
#include "app/make_day.h"
#include "app/progress.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

struct Arguments {
  MakeDayOptions options = DefaultDay();
  std::string start;
  std::string account;
  std::string day;
};

/// The day and what its options expire at need years of four digits.
constexpr LocalTime kNoLongerMade = std::chrono::local_days(std::chrono::year(9999) / 1 / 1);

LocalTime ReadStart(const std::string& text) {
  std::optional<LocalTime> start = ParseLocalTime(text);
  // Seconds may be left out.
  if (!start) start = ParseLocalTime(text + ":00");
  if (!start || *start >= kNoLongerMade) {
    throw InputError(fmt::format(
        "--start: '{}', expected a date and time as 2024-03-04T08:45, before the year 9999", text));
  }
  return *start;
}

int Run(const Arguments& arguments) {
  MakeDayOptions options = arguments.options;
  if (!arguments.start.empty()) options.start = ReadStart(arguments.start);
  if (!arguments.account.empty()) {
    std::tie(options.broker, options.account) = ReadAccount("--account", arguments.account);
  }
  options.day = arguments.day.empty() ? fmt::format("made-{}.day.jsonl", options.seed) : arguments.day;

  CStatusLine line;
  CProgress progress(line, "ticks", static_cast<double>(options.ticks));
  MakeDay(options, [&progress](int64_t ticks) { progress.Show(static_cast<double>(ticks)); });
  line.Clear();
  std::cout << fmt::format("{}: {} strikes, {} ticks in {}\n", options.day.string(), options.strikes,
                           options.ticks, TickFileOf(options.day).string());
  return kDone;
}

}  // namespace

void AddMakeDayCommand(CLI::App& program, Job& job) {
  const auto arguments = std::make_shared<Arguments>();
  MakeDayOptions& options = arguments->options;
  CLI::App* const command =
      program.add_subcommand("make-day", "Make a day with an option chain, from a seed");
  command->add_option("--seed", options.seed, "The same seed makes the same day on every machine")
      ->check(WholeNumber(0, INT64_MAX))
      ->capture_default_str();
  command->add_option("--strikes", options.strikes, "Strikes of the chain, each a call and a put")
      ->check(WholeNumber(1, 5000))
      ->capture_default_str();
  command->add_option("--ticks", options.ticks, "Trades of the day, the opening auction included")
      ->check(WholeNumber(0, 1'000'000'000))
      ->capture_default_str();
  command->add_option("--start", arguments->start, "When the session opens, local time of Asia/Taipei")
      ->default_str(ToText(options.start).substr(0, 16));
  command->add_option("--minutes", options.minutes, "Length of the session")
      ->check(WholeNumber(1, 840))
      ->capture_default_str();
  command->add_option("--price", options.price, "Price of the underlying before the opening, in points")
      ->check(WholeNumber(100, 1'000'000))
      ->capture_default_str();
  command->add_option("--volatility", options.volatility, "Of the underlying, in percent a year")
      ->check(WholeNumber(1, 200))
      ->capture_default_str();
  command->add_option("--account", arguments->account, "BROKER/ACCOUNT that is connected")
      ->default_str(options.broker + "/" + options.account);
  command
      ->add_option("--orders", options.fill,
                   "How orders are filled; the ticks then tell the best prices too [nobody answers orders]")
      ->check(FillWord());
  command->add_option("--out", arguments->day,
                      "The day file to write, NAME.day.jsonl; its ticks go to NAME.ticks.csv beside it "
                      "[made-SEED.day.jsonl]");
  command->footer(
      Examples("  iorder make-day --seed 7\n"
               "  iorder make-day --seed 7 --start 2024-03-04T15:00 --minutes 840 --out night.day.jsonl\n"
               "  iorder make-day --seed 7 --orders touch\n"
               "  iorder make-day --seed 7 --strikes 1000 --ticks 10000000 --out large.day.jsonl"));
  command->callback([&job, arguments] { job = [arguments] { return Run(*arguments); }; });
}

}  // namespace iorder

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <memory>

#include "app/command_line.h"
#include "app/happening_text.h"
#include "app/make_day.h"
#include "app/progress.h"
#include "app/replay_listener.h"
#include "app/run_day.h"
#include "app/symbol_words.h"
#include "platform/scratch_path.h"
#include "terminal/day_file.h"

namespace iorder {
namespace {

constexpr const char* kCommand = R"({
  "StrategyType": "OpenLottery", "StrategyID": "DEMO", "StrategySN": "1", "Action": 1,
  "BrokerID": "B1", "Account": "A1",
  "Symbol": {"Security": "ND.O.TWF.TX.HOT", "CP": "C"},
  "Start": {"Time": 845, "Run": 1, "DayOfWeek": [1, 2, 3, 4, 5]},
  "Stop": {"Enable": 1, "Time": 1330},
  "Cash": 10000,
  "Condition": {"OpenPrice": {"Dn": 1, "Up": 50}, "StrikePrice": {"In": -1, "Out": -1}},
  "OrderPrice": {"Type": 0, "Price": 5}
})";

constexpr std::chrono::minutes kCommandAfterOpening{15};

/// What the demonstration tells of: the verdicts before and after the orders, and the orders.
struct Story {
  std::vector<OptionJudged> accepted;
  int64_t rejected = 0;
  std::vector<std::pair<std::string, OptionJudged>> acceptedLate;  ///< and when
  std::string orderTime;
  std::vector<OrderSent> orders;
  int64_t cash = 0;

  void Add(const std::string& time, const Happening& happening) {
    if (const auto* judged = std::get_if<OptionJudged>(&happening)) {
      Add(time, *judged);
    } else if (const auto* order = std::get_if<OrderSent>(&happening)) {
      orderTime = time;
      orders.push_back(*order);
    } else if (const auto* batch = std::get_if<BatchPlaced>(&happening)) {
      cash = batch->cash;
    }
  }

 private:
  void Add(const std::string& time, const OptionJudged& judged) {
    if (!orders.empty()) {
      if (judged.accepted) acceptedLate.emplace_back(time, judged);
    } else if (judged.accepted) {
      accepted.push_back(judged);
    } else {
      ++rejected;
    }
  }
};

/// The day's story, told from its beginning.
Story PlayDay(const MakeDayOptions& options) {
  Day day = ReadDayFile(options.day.string());
  InsertCommand(day, kCommand, options.start + kCommandAfterOpening);
  Story story;
  CHappeningListener listener([&story](const std::string& at, const Happening& happening) {
    story.Add(at.substr(11, 8), happening);
  });
  CDayRun(day, {}, {&listener}).Run();
  return story;
}

void TellDay(const MakeDayOptions& options) {
  std::cout << fmt::format(
      "A trading day was made up: options on an index future (\"TX\"), {} strikes, each as a call and a put, "
      "and\n"
      "{} trades. At 08:45 the market opens with an auction. Options near the price of the future trade at "
      "once,\n"
      "others open later, some never. The day runs on a virtual clock, so it takes only a moment.\n\n",
      options.strikes, options.ticks);
}

void TellCommand() {
  std::cout << "At 09:00 the engine is given this command:\n\n"
            << kCommand
            << "\n\nIt says: take the calls with the nearest expiry. Buy those whose first price of the day "
               "lay within\n"
               "1 to 50 points, at 5 points each, and spend no more than 10000. A point is worth 50, so that "
               "one lot\n"
               "costs 250. Start at once.\n\n";
}

void TellVerdicts(const Story& story) {
  std::cout << fmt::format(
      "The engine looked at {} calls that had opened. {} of them had opened within the band:\n",
      story.accepted.size() + static_cast<size_t>(story.rejected), story.accepted.size());
  for (const OptionJudged& judged : story.accepted) {
    std::cout << fmt::format("  {:<24} opened at {}\n", SymbolWords(judged.symbol), judged.openPrice);
  }
}

void TellOrders(const Story& story) {
  std::cout << fmt::format(
      "\nAt {} it spread the cash over them, one lot at a time, the highest strike first, and sent {} "
      "orders:\n",
      story.orderTime, story.orders.size());
  for (const OrderSent& order : story.orders) {
    std::cout << fmt::format("  buy {:>2} {:<24} at {} points, account {}\n", order.lots,
                             SymbolWords(order.symbol), order.price ? DecimalText(*order.price) : "?",
                             order.account);
  }
  std::cout << fmt::format("Together they cost {}.\n", story.cash);
  if (story.acceptedLate.empty()) return;
  std::cout << "\nLater on the day more calls opened, and were judged as they did. Within the band:\n";
  for (const auto& [time, judged] : story.acceptedLate) {
    std::cout << fmt::format("  {}  {:<24} opened at {}\n", time, SymbolWords(judged.symbol),
                             judged.openPrice);
  }
}

void TellMore() {
  std::cout << "\nTo see more:\n"
               "  iorder make-day --seed 1                       makes such a day for you to keep\n"
               "  iorder replay made-1.day.jsonl --command FILE@09:00\n"
               "                                                 runs a command of yours through it\n"
               "  iorder --help                                  tells the other commands\n";
}

int Run(uint64_t seed) {
  const CScratchPath folder = CScratchPath::NewFolder();
  MakeDayOptions options = DefaultDay();
  options.seed = seed;
  options.fill = "touch";
  options.day = folder.Path() / "demo.day.jsonl";
  MakeDay(options, [](int64_t) {});
  const Story story = PlayDay(options);
  TellDay(options);
  TellCommand();
  TellVerdicts(story);
  if (story.orders.empty()) {
    std::cout << "\nSo no order went out on this day.\n";
  } else {
    TellOrders(story);
  }
  TellMore();
  return kDone;
}

}  // namespace

void AddDemoCommand(CLI::App& program, Job& job) {
  CLI::App* const command = program.add_subcommand(
      "demo", "Make a day, run an order through it, and tell in plain words what happened");
  const auto seed = std::make_shared<uint64_t>(1);
  command->add_option("--seed", *seed, "Another seed makes another day")
      ->check(WholeNumber(0, INT64_MAX))
      ->capture_default_str();
  command->footer(Examples("  iorder demo\n  iorder demo --seed 7"));
  command->callback([&job, seed] { job = [seed] { return Run(*seed); }; });
}

}  // namespace iorder

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <utility>

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
  "Stop": {"Enable": 1, "Time": 1330, "Cancel": 1, "ClosePos": 1},
  "Cash": 10000,
  "Condition": {"OpenPrice": {"Dn": 1, "Up": 50}, "StrikePrice": {"In": -1, "Out": -1}},
  "OrderPrice": {"Type": 0, "Price": 5}
})";

constexpr std::chrono::minutes kCommandAfterOpening{15};

/// One spreading of the cash.
struct Batch {
  std::string time;
  std::vector<OrderSent> orders;
  int64_t cash = 0;
};

/// What was bought or sold of one symbol.
struct Deal {
  std::string time;  ///< of the first fill
  std::string symbol;
  bool closes = false;
  int64_t lots = 0;
  ScaledValue price = 0;
};

/// What the demonstration tells of: the verdicts before and after the first orders, the orders, and what
/// became of them.
struct Story {
  std::vector<OptionJudged> accepted;
  int64_t rejected = 0;
  std::vector<std::pair<std::string, OptionJudged>> acceptedLate;  ///< and when
  std::vector<Batch> batches;
  std::vector<Deal> deals;
  int64_t cost = 0;
  double profit = 0;

  void Add(const std::string& time, const Happening& happening) {
    if (const auto* judged = std::get_if<OptionJudged>(&happening)) {
      Add(time, *judged);
    } else if (const auto* order = std::get_if<OrderSent>(&happening)) {
      if (!order->closes) Add(time, *order);
    } else if (const auto* batch = std::get_if<BatchPlaced>(&happening)) {
      if (!batches.empty()) batches.back().cash = batch->cash;
      m_isBatchOpen = false;
    } else if (const auto* fill = std::get_if<OrderFilled>(&happening)) {
      Add(time, *fill);
    } else if (const auto* total = std::get_if<TagTotalChanged>(&happening)) {
      cost = std::max(cost, total->cost);
      profit = total->profit;
    }
  }

 private:
  void Add(const std::string& time, const OptionJudged& judged) {
    if (!batches.empty()) {
      if (judged.accepted) acceptedLate.emplace_back(time, judged);
    } else if (judged.accepted) {
      accepted.push_back(judged);
    } else {
      ++rejected;
    }
  }

  void Add(const std::string& time, const OrderSent& order) {
    if (!std::exchange(m_isBatchOpen, true)) batches.push_back({.time = time, .orders = {}});
    batches.back().orders.push_back(order);
  }

  void Add(const std::string& time, const OrderFilled& fill) {
    const auto same = std::find_if(deals.begin(), deals.end(), [&](const Deal& deal) {
      return deal.symbol == fill.symbol && deal.closes == fill.closes && deal.price == fill.price;
    });
    if (same != deals.end()) {
      same->lots += fill.lots;
    } else {
      deals.push_back({time, fill.symbol, fill.closes, fill.lots, fill.price});
    }
  }

  bool m_isBatchOpen = false;
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
               "costs 250. Start at once; at 13:30 cancel what is left and sell what was bought.\n\n";
}

void TellVerdicts(const Story& story) {
  std::cout << fmt::format(
      "The engine looked at {} calls that had opened. {} of them had opened within the band:\n",
      story.accepted.size() + static_cast<size_t>(story.rejected), story.accepted.size());
  for (const OptionJudged& judged : story.accepted) {
    std::cout << fmt::format("  {:<24} opened at {}\n", SymbolWords(judged.symbol), judged.openPrice);
  }
}

void TellOrders(const Batch& batch) {
  std::cout << fmt::format(
      "\nAt {} it spread the cash over them, one lot at a time, the highest strike first, and sent {} "
      "orders:\n",
      batch.time, batch.orders.size());
  for (const OrderSent& order : batch.orders) {
    std::cout << fmt::format("  buy {:>2} {:<24} at {} points, account {}\n", order.lots,
                             SymbolWords(order.symbol), order.price ? DecimalText(*order.price) : "?",
                             order.account);
  }
  std::cout << fmt::format("Together they cost {}.\n", batch.cash);
}

void TellLateCalls(const Story& story) {
  if (story.acceptedLate.empty()) return;
  std::cout << "\nLater on the day more calls opened, and were judged as they did. Within the band:\n";
  for (const auto& [time, judged] : story.acceptedLate) {
    std::cout << fmt::format("  {}  {:<24} opened at {}\n", time, SymbolWords(judged.symbol),
                             judged.openPrice);
  }
  for (size_t i = 1; i < story.batches.size(); ++i) {
    std::cout << fmt::format("At {} it cancelled what was working and spread the cash anew, over {} calls.\n",
                             story.batches[i].time, story.batches[i].orders.size());
  }
}

void TellDeals(const Story& story) {
  if (story.deals.empty()) {
    std::cout << "\nThe market never came to the orders' price, and so none was filled.\n";
    return;
  }
  std::cout << "\nThe market came to some of the orders. What was held at the stop time, 13:30, was sold:\n";
  for (const Deal& deal : story.deals) {
    std::cout << fmt::format("  {}  {:<6} {:>3} {:<24} at {} points\n", deal.time,
                             deal.closes ? "sold" : "bought", deal.lots, SymbolWords(deal.symbol),
                             DecimalText(deal.price));
  }
  std::cout << fmt::format("That cost {} and brought a {} of {:.0f}.\n", story.cost,
                           story.profit < 0 ? "loss" : "profit", std::abs(story.profit));
}

void TellMore() {
  std::cout << "\nTo see more:\n"
               "  iorder make-day --seed 1 --orders touch        makes such a day for you to keep\n"
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
  if (story.batches.empty()) {
    std::cout << "\nSo no order went out on this day.\n";
  } else {
    TellOrders(story.batches.front());
    TellLateCalls(story);
    TellDeals(story);
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

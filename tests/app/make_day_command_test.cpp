#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "app/option_price.h"
#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Tick {
  std::string at;
  std::string symbol;
  double price = 0;
  std::string open;
};

std::vector<Tick> ReadTicks(const std::string& text) {
  std::istringstream lines(text);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "at,symbol,price,qty,volume,open");
  std::vector<Tick> ticks;
  while (std::getline(lines, line)) {
    std::istringstream cells(line);
    Tick tick;
    std::string price, quantity, volume;
    std::getline(cells, tick.at, ',');
    std::getline(cells, tick.symbol, ',');
    std::getline(cells, price, ',');
    std::getline(cells, quantity, ',');
    std::getline(cells, volume, ',');
    std::getline(cells, tick.open, ',');
    tick.price = std::stod(price);
    ticks.push_back(tick);
  }
  return ticks;
}

TEST(MakeDay, SameSeedSameFiles) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --seed 5 --ticks 3000 --out a.day.jsonl").exitCode, 0);
  const std::string ticks = folder.Read("a.ticks.csv");
  const std::string day = folder.Read("a.day.jsonl");
  ASSERT_EQ(folder.Run("make-day --seed 5 --ticks 3000 --out a.day.jsonl").exitCode, 0);
  EXPECT_EQ(folder.Read("a.ticks.csv"), ticks);
  EXPECT_EQ(folder.Read("a.day.jsonl"), day);
  EXPECT_THAT(folder.Files(), ElementsAre("a.day.jsonl", "a.ticks.csv"));
  ASSERT_EQ(folder.Run("make-day --seed 6 --ticks 3000 --out a.day.jsonl").exitCode, 0);
  EXPECT_NE(folder.Read("a.ticks.csv"), ticks);
}

TEST(MakeDay, ADayThatAnswersOrdersTellsTheBestPricesBesideTheSameTrades) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --seed 5 --ticks 3000 --out a.day.jsonl").exitCode, 0);
  ASSERT_EQ(folder.Run("make-day --seed 5 --ticks 3000 --orders through --out b.day.jsonl").exitCode, 0);
  EXPECT_THAT(folder.Read("b.day.jsonl"), HasSubstr(R"("orders":{"fill":"through"})"));
  EXPECT_THAT(folder.Read("a.day.jsonl"), Not(HasSubstr("orders")));
  std::istringstream plain(folder.Read("a.ticks.csv"));
  std::istringstream withBest(folder.Read("b.ticks.csv"));
  std::string trade, line;
  std::getline(plain, trade);
  std::getline(withBest, line);
  EXPECT_EQ(line, trade + ",bid,ask,bid_qty,ask_qty");
  while (std::getline(plain, trade) && std::getline(withBest, line)) {
    ASSERT_TRUE(line.starts_with(trade + ","));
    double bid = 0, ask = 0, price = 0;
    int bidQuantity = 0, askQuantity = 0;
    ASSERT_EQ(4, std::sscanf(line.c_str() + trade.size(), ",%lf,%lf,%d,%d", &bid, &ask, &bidQuantity,
                             &askQuantity));
    price = std::stod(trade.substr(trade.find(',', trade.find(',') + 1) + 1));
    EXPECT_LT(bid, ask) << line;
    EXPECT_LE(bid - 1e-9, price) << line;
    EXPECT_GE(ask + 1e-9, price) << line;
    EXPECT_TRUE(bidQuantity >= 1 && askQuantity >= 1) << line;
  }
  EXPECT_EQ(2, folder.Run("make-day --orders tuch").exitCode);
}

/// FNV-1a.
uint64_t Hash(const std::string& text) {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3u;
  return hash;
}

TEST(MakeDay, EveryCompilerAndMachineMakesTheSameDay) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --seed 1 --ticks 100000 --out a.day.jsonl").exitCode, 0);
  EXPECT_EQ(Hash(folder.Read("a.ticks.csv")), 4443953803134251773u);
  EXPECT_EQ(Hash(folder.Read("a.day.jsonl")), 16295782663500950461u);
}

TEST(MakeDay, HoldsSoManyTicksInOrderOfTime) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --ticks 5000 --out a.day.jsonl").exitCode, 0);
  const std::vector<Tick> ticks = ReadTicks(folder.Read("a.ticks.csv"));
  ASSERT_EQ(ticks.size(), 5000u);
  EXPECT_TRUE(
      std::is_sorted(ticks.begin(), ticks.end(), [](const Tick& a, const Tick& b) { return a.at < b.at; }));
  EXPECT_EQ(ticks.front().at, "08:45:00");
  EXPECT_LT(ticks.back().at, "13:45:00");
}

TEST(MakeDay, OptionPricesLieOnTheLadder) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --seed 3 --ticks 20000 --out a.day.jsonl").exitCode, 0);
  std::set<int64_t> steps;
  for (const Tick& tick : ReadTicks(folder.Read("a.ticks.csv"))) {
    if (!tick.symbol.starts_with("ND.O.")) continue;
    const auto tenths = static_cast<int64_t>(tick.price * 10 + 0.5);
    EXPECT_EQ(tenths % OptionTick(tenths), 0) << tick.symbol << ' ' << tick.price;
    EXPECT_GT(tenths, 0);
    steps.insert(OptionTick(tenths));
  }
  EXPECT_THAT(steps, ElementsAre(1, 5, 10, 50, 100));
}

TEST(MakeDay, OpensInTheAuctionLaterOrNever) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --seed 1 --ticks 20000 --out a.day.jsonl").exitCode, 0);
  std::map<std::string, std::string> openings;
  for (const Tick& tick : ReadTicks(folder.Read("a.ticks.csv"))) {
    // The first trade of a series, and only that one, tells the opening price.
    EXPECT_EQ(tick.open.empty(), openings.contains(tick.symbol)) << tick.symbol << ' ' << tick.at;
    if (!tick.open.empty()) {
      EXPECT_EQ(std::stod(tick.open), tick.price);
    }
    openings.emplace(tick.symbol, tick.at);
  }
  const auto inAuction = std::count_if(openings.begin(), openings.end(),
                                       [](const auto& entry) { return entry.second == "08:45:00"; });
  EXPECT_GT(inAuction, 10);
  EXPECT_GT(openings.size(), static_cast<size_t>(inAuction) + 10);
  EXPECT_LT(openings.size(), 41u * 2 + 1);
}

TEST(MakeDay, NightSessionRunsPastMidnight) {
  const CProgramFolder folder;
  ASSERT_EQ(
      folder.Run("make-day --start 2024-03-04T15:00 --minutes 840 --ticks 2000 --out n.day.jsonl").exitCode,
      0);
  EXPECT_THAT(folder.Read("n.day.jsonl"),
              StartsWith(R"({"day":{"start":"2024-03-04T14:45:00","end":"2024-03-05T05:15:00")"));
  EXPECT_THAT(ReadTicks(folder.Read("n.ticks.csv")).back().at, StartsWith("2024-03-05T04:"));
}

TEST(MakeDay, ChainIsTheMonthThatStillTrades) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("make-day --start 2024-03-20T08:45 --ticks 10 --out a.day.jsonl").exitCode, 0);
  EXPECT_THAT(folder.Read("a.day.jsonl"), HasSubstr("ND.O.TWF.TX.202403.C."));
  ASSERT_EQ(folder.Run("make-day --start 2024-03-20T15:00 --ticks 10 --out b.day.jsonl").exitCode, 0);
  EXPECT_THAT(folder.Read("b.day.jsonl"), HasSubstr("ND.O.TWF.TX.202404.C."));
}

TEST(MakeDay, WrongOptionsEndWithOneLineAndNoFile) {
  const std::pair<const char*, const char*> cases[] = {
      {"--ticks abc", "--ticks: 'abc', expected a whole number from 0 to 1000000000"},
      {"--ticks -1", "--ticks: '-1', expected a whole number"},
      {"--strikes 0", "--strikes: '0', expected a whole number from 1 to 5000"},
      {"--strikes 5000 --price 100", "--strikes: 5000 strikes don't fit around a price of 100 points"},
      {"--seed 1.5", "--seed: '1.5', expected a whole number"},
      {"--start yesterday", "--start: 'yesterday', expected a date and time as 2024-03-04T08:45"},
      {"--start 2024-02-30T08:45", "--start: '2024-02-30T08:45', expected a date and time"},
      {"--start 9999-12-31T15:00",
       "--start: '9999-12-31T15:00', expected a date and time as 2024-03-04T08:45, "
       "before the year 9999"},
      {"--start 2024-03-04T06:00",
       "isn't within the market's trading hours, expected 08:45 to 13:45 or 15:00 to 05:00"},
      {"--minutes 301", "isn't within the market's trading hours"},
      {"--account B1", "--account: 'B1', expected BROKER/ACCOUNT"},
      {"--out day.json", "day.json: expected a name that ends in .day.jsonl"},
      {"--out .", ".: expected a name that ends in .day.jsonl"},
      {"--out nowhere/a.day.jsonl", "nowhere/a.day.jsonl: can't be written: No such file or directory"},
      {"--colour red", "'--colour' isn't known"},
      {"extra", "'extra' isn't known"},
  };
  for (const auto& [arguments, message] : cases) {
    const CProgramFolder folder;
    const ProgramResult result = folder.Run(std::string("make-day ") + arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_THAT(result.errors, StartsWith("iorder: ")) << arguments;
    EXPECT_THAT(result.errors, HasSubstr(message)) << arguments;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_THAT(result.output, IsEmpty()) << arguments;
    EXPECT_THAT(folder.Files(), IsEmpty()) << arguments;
  }
}

TEST(MakeDay, KeepsTheEarlierFileWhereTheNewOneFails) {
  const CProgramFolder folder;
  folder.Write("a.day.jsonl", "earlier");
  std::filesystem::create_directory(folder.File("a.ticks.csv"));
  const ProgramResult result = folder.Run("make-day --ticks 10 --out a.day.jsonl");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "iorder: a.ticks.csv: is a folder, expected a file to write\n");
  EXPECT_EQ(folder.Read("a.day.jsonl"), "earlier");
  EXPECT_THAT(folder.Files(), ElementsAre("a.day.jsonl", "a.ticks.csv"));
}

TEST(MakeDay, InterruptionLeavesNothingBehind) {
  const CProgramFolder folder;
  const ProgramResult result =
      folder.RunShell("timeout -s INT 0.3 " + CProgramFolder::Program() + " make-day --ticks 1000000000");
  EXPECT_EQ(result.exitCode, 124);
  EXPECT_THAT(folder.Files(), IsEmpty());
}

}  // namespace
}  // namespace iorder

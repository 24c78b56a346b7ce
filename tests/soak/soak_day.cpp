#include "tests/soak/soak_day.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>

#include "app/made_market.h"
#include "tests/soak/soak_groups.h"
#include "tests/soak/soak_orders.h"

namespace iorder::testing {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr const char* kColumns = "at,symbol,price,qty,volume,open,bid,ask,bid_qty,ask_qty";

/// Monday; the three dates after it trade too.
LocalTime FirstOpening() {
  using namespace std::chrono;
  return local_days(2024y / March / 4) + hours(8) + minutes(45);
}

std::string TenthsText(int64_t tenths) {
  return tenths == 0 ? "" : fmt::format("{}.{}", tenths / 10, tenths % 10);
}

/// Builds a day piece by piece, each from draws of its own seed.
class CSoakDayMaker {
 public:
  explicit CSoakDayMaker(uint64_t seed) : m_draw(seed) {
    m_day.seed = seed;
    m_plan.product = m_draw.Pick<std::string>({"TX", "TE"});
    m_plan.month = "202403";
    m_plan.dates = static_cast<int>(m_draw.Pick({1, 1, 2, 3}));
    m_plan.minutes = m_draw.Between(6, 45);
    m_plan.strategies = static_cast<int>(m_draw.Pick({1, 2, 3, 4}));
    m_strikes = m_draw.Between(10, 40);
    if (m_draw.Chance(30)) PlanGroups();
    m_price = m_draw.Between(8000, 20000);
    m_day.start = FirstOpening() - minutes(15);
    m_day.end = Opening(m_plan.dates - 1) + minutes(m_plan.minutes + (m_plan.groups > 0 ? 1 : 4));
  }

  SoakDay Make() {
    MakeHead();
    MakeWorld();
    for (int date = 0; date < m_plan.dates; ++date) MakeSession(date);
    MakeCommands();
    if (m_plan.groups > 0) MakeGroups();
    MakeAccounts();
    MakeOddQuotes();
    std::stable_sort(m_day.events.begin(), m_day.events.end(),
                     [](const auto& left, const auto& right) { return left.at < right.at; });
    return std::move(m_day);
  }

 private:
  /// Group orders, beside strategies or alone. They look every two seconds, so the sessions are short.
  void PlanGroups() {
    m_plan.groups = static_cast<int>(m_draw.Pick({1, 1, 2, 3, 5}));
    m_plan.dates = 1;
    m_plan.minutes = m_draw.Between(2, 3);
    if (m_draw.Chance(50)) m_plan.strategies = 0;
    m_strikes = m_draw.Between(3, 10);
  }

  static LocalTime Opening(int date) { return FirstOpening() + hours(24) * date; }

  std::string Option(const char* rest) const { return fmt::format("ND.O.TWF.{}{}", m_plan.product, rest); }
  std::string Future(const char* rest) const { return fmt::format("ND.F.TWF.{}{}", m_plan.product, rest); }

  /// A moment of one of the sessions, a little before and behind it included. Many fall on whole seconds and
  /// on the moments of ticks, so that threads meet.
  LocalTime Moment() {
    const LocalTime opening = Opening(static_cast<int>(m_draw.Between(0, m_plan.dates - 1)));
    if (!m_rowTimes.empty() && m_draw.Chance(30))
      return m_rowTimes[static_cast<size_t>(m_draw.Between(0, static_cast<int64_t>(m_rowTimes.size()) - 1))];
    const auto second = seconds(m_draw.Between(-30, m_plan.minutes * 60 + 60));
    return opening + second + Milliseconds(m_draw.Chance(50) ? 0 : m_draw.Between(0, 999));
  }

  void MakeHead() {
    const uint64_t order = m_draw.Chance(30) ? 0 : static_cast<uint64_t>(m_draw.Between(1, 1'000'000));
    const bool hasGroups = m_plan.groups > 0;
    m_figuresAreGiven = m_draw.Chance(hasGroups ? 35 : 50);
    m_day.head = fmt::format(
        R"(, "seed": {}, "orders": {}, "subscriptions": "{}", "figures": "{}")", order,
        DrawOrderRules(m_draw, m_plan.strategies > 0 ? 900 : 6000, hasGroups ? DrawChildRules(m_draw) : ""),
        m_draw.Pick<std::string>({"required", "open"}), m_figuresAreGiven ? "given" : "market");
    if (m_draw.Chance(30)) m_day.head += fmt::format(R"(, "subscription_ms": {})", m_draw.Between(1, 300));
  }

  void MakeWorld() {
    const std::string weight = m_draw.Pick<std::string>({"50", "50", "200", "1", "1.5", "0"});
    const std::string tick = m_draw.Pick<std::string>({"0:0.1;10:0.5;50:1;500:5;1000:10", "0.1", "1"});
    m_day.setup = {
        R"("settings": "ComShared/SystemSettings.ini", "text": "[SYSTEM]\nSystemName=SOAK\n")",
        fmt::format(R"("settings": "ComShared/OpenLottery.ini", "text": "[UnderlyingF]\n{}={}\n")",
                    Option(""), Future("")),
        fmt::format(
            R"("record": "Security.Info", "items": [{{"name": "ND.O.TWF", "fields": {{"{}": "{{\"TickSize\":\"{}\",\"Weight\":\"{}\"}}"}}}}])",
            Option(""), tick, weight),
        fmt::format(R"("record": "HOTMONTHTABLE", "fields": {{"{}": "{}", "{}": "{}"}})", Option(".HOT"),
                    Option(".202403"), Future(".HOT"), Future(".202403")),
        fmt::format(R"("accounts": {})", kAccounts),
    };
  }

  void MakeSession(int date) {
    const int64_t length = m_plan.minutes * 60'000;
    CMadeMarket market({.strikes = static_cast<int>(m_strikes),
                        .price = m_price,
                        .volatility = static_cast<int>(m_draw.Pick({20, 60, 150})),
                        .daysToExpiry = 16 - date,
                        .length = length,
                        .future = Future(".202403"),
                        .chain = Option(".202403")},
                       m_draw.Seed());
    if (date == 0) ListSeries(market);
    const int64_t count = m_draw.Between(100, 900);
    for (int64_t i = 0; i < count; ++i) {
      const MadeTrade trade = market.Trade(i, count);
      const LocalTime at = Opening(date) + Milliseconds(trade.after);
      m_rowTimes.push_back(at);
      m_day.events.push_back(
          {at, true,
           fmt::format("{},{},{},{},{},{},{},{},{}", trade.series->symbol, TenthsText(trade.price),
                       trade.quantity, trade.series->volume, trade.opens ? TenthsText(trade.price) : "",
                       TenthsText(trade.bid), TenthsText(trade.ask), trade.bidQuantity, trade.askQuantity)});
    }
  }

  void ListSeries(const CMadeMarket& market) {
    std::string rows;
    for (const MadeSeries& series : market.Series()) {
      const bool isFuture = series.strike == 0;
      m_symbols.push_back(series.symbol);
      rows += fmt::format(
          R"({}{{"Symbol": "{}", "Type": "{}", "SearchName": "{}", "ExpDate": "20240320", "product": "{}", "setpriadj": ""}})",
          rows.empty() ? "" : ", ", series.symbol, isFuture ? "F" : "O",
          isFuture ? m_plan.month : std::to_string(series.strike), m_plan.product);
    }
    m_day.setup.push_back(fmt::format(R"("symbols": [{}])", rows));
    m_day.setup.push_back(
        fmt::format(R"("quote": "{}", "end_date": 20240320, "R": {}, "P": {}, "Y": {}, "clock": false)",
                    Future(".202403"), m_price, m_price, m_price));
  }

  void Happen(LocalTime at, std::string text) { m_day.events.push_back({at, false, std::move(text)}); }
  void Command(LocalTime at, const std::string& command) { Happen(at, "\"command\": " + command); }

  void MakeCommands() {
    for (int strategy = 0; strategy < m_plan.strategies; ++strategy) {
      const bool run = m_draw.Chance(60);
      // One that waits for its time comes before it; one that starts at once comes in the session.
      const auto at = run ? minutes(1) + seconds(m_draw.Between(-50, m_plan.minutes * 20))
                          : -minutes(m_draw.Between(0, 4)) - seconds(m_draw.Between(0, 50));
      Command(Opening(0) + at, DrawStart(m_draw, m_plan, strategy, run));
    }
    if (m_plan.strategies == 0) return;
    for (int64_t i = m_draw.Between(0, 4); i > 0; --i)
      Command(Moment(), DrawLimits(m_draw, m_plan.strategies));
    for (int64_t i = m_draw.Between(0, 2); i > 0; --i) MakeStop();
    if (m_draw.Chance(40)) {
      for (int64_t i = m_draw.Between(1, 3); i > 0; --i) Command(Moment(), DrawOdd(m_draw, m_plan));
    }
  }

  /// A stop, and sometimes another one while the first one's orders are under way.
  void MakeStop() {
    const auto strategy = static_cast<int>(m_draw.Between(0, m_plan.strategies - 1));
    const LocalTime at = Moment();
    Command(at, DrawStop(m_draw, strategy));
    if (m_draw.Chance(40)) Command(at + Milliseconds(m_draw.Between(0, 2500)), DrawStop(m_draw, strategy));
  }

  void MakeGroups() {
    std::vector<std::string> options(m_symbols.begin() + 1, m_symbols.end());
    if (m_draw.Chance(m_figuresAreGiven ? 92 : 15)) {
      for (const std::string& option : options) m_day.setup.push_back(DrawFigures(m_draw, option));
      for (int64_t i = m_draw.Between(0, 20); i > 0; --i)
        Happen(Moment(), DrawFigures(m_draw, PickOf(options)));
    }
    for (int i = 0; i < m_plan.groups; ++i) {
      const LocalTime at = Moment();
      Command(at, DrawGroupOrder(m_draw, m_plan));
      // Another one in the same moment, or while the first one's children live.
      if (m_draw.Chance(15))
        Command(at + Milliseconds(m_draw.Pick({0, 5, 1000, 3000})), DrawGroupOrder(m_draw, m_plan));
    }
    for (int64_t i = m_draw.Between(0, 2); i > 0; --i)
      m_day.setup.push_back(DrawChaseSettings(m_draw, m_plan, options));
    if (m_draw.Chance(25)) Happen(Moment(), DrawChaseSettings(m_draw, m_plan, options));
    if (m_draw.Chance(30)) m_day.setup.push_back(DrawGroupPosition(m_draw, options));
    for (int64_t i = m_draw.Between(0, 2); i > 0; --i) Happen(Moment(), DrawGroupPosition(m_draw, options));
    if (m_draw.Chance(25)) MakeReplaySpeed();
    m_day.changesChildren = m_draw.Chance(20);
    // The strategies' own checkers know no engine that is stopped and told to go on.
    if (m_plan.strategies == 0 && m_draw.Chance(15)) Happen(Moment(), R"("phase": [1, 4])");
  }

  const std::string& PickOf(const std::vector<std::string>& texts) {
    return texts[static_cast<size_t>(m_draw.Between(0, static_cast<int64_t>(texts.size()) - 1))];
  }

  /// For some seconds: at a high speed the looks come every 50 ms.
  void MakeReplaySpeed() {
    const LocalTime at = Moment();
    Happen(at, ReplaySpeed(m_draw.Pick<int64_t>({0, 4, 40, 100})));
    Happen(at + seconds(m_draw.Between(2, 15)), ReplaySpeed(1));
  }

  void MakeAccounts() {
    if (m_draw.Chance(75)) return;
    for (int64_t i = m_draw.Between(1, 3); i > 0; --i) {
      const LocalTime at = Moment();
      Happen(at, R"("fault": {"account": "B1_A1", "drop": true})");
      if (m_draw.Chance(80))
        Happen(at + seconds(m_draw.Between(0, 120)), R"("fault": {"account": "B1_A1", "drop": "none"})");
    }
    if (m_draw.Chance(30)) Happen(Moment(), fmt::format(R"("accounts": {})", kAccounts));
  }

  /// Prices that go and come again, an opening that is corrected, an update that looks like the engine's own.
  void MakeOddQuotes() {
    for (int64_t i = m_draw.Between(0, 8); i > 0; --i) {
      const auto index = static_cast<size_t>(m_draw.Between(0, static_cast<int64_t>(m_symbols.size()) - 1));
      const int64_t price = index == 0 ? m_price + m_draw.Between(-50, 50) : m_draw.Between(1, 300);
      Happen(Moment(),
             fmt::format(R"("quote": "{}", {})", m_symbols[index],
                         m_draw.Pick<std::string>(
                             {R"("price": null)", fmt::format(R"("price": {}, "qty": 3)", price),
                              fmt::format(R"("price": {0}, "open": {0}, "originator": -999)", price),
                              fmt::format(R"("open": {})", price),
                              fmt::format(R"("bid": {}, "bid_qty": 2)", price)})));
    }
  }

  static constexpr const char* kAccounts =
      R"([{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}, {"BrokerID": "B1", "Account": "A2", "ConnectStatus": 1}])";

  CDraw m_draw;
  SoakDay m_day;
  SoakPlan m_plan;
  int64_t m_price = 0;
  int64_t m_strikes = 0;
  bool m_figuresAreGiven = false;
  std::vector<LocalTime> m_rowTimes;
  std::vector<std::string> m_symbols;
};

}  // namespace

void SoakDay::Write(const std::filesystem::path& path) const {
  const std::filesystem::path ticks = path.stem().stem().string() + ".ticks.csv";
  std::ofstream day(path, std::ios::binary);
  std::ofstream rows(path.parent_path() / ticks, std::ios::binary);
  day << fmt::format(R"({{"day": {{"start": "{}", "end": "{}"{}}}}})", ToText(start), ToText(end), head)
      << "\n";
  for (const std::string& line : setup) day << "{" << line << "}\n";
  day << "{\"ticks\": \"" << ticks.string() << "\"}\n";
  rows << kColumns << "\n";
  for (const Event& event : events) {
    if (event.isRow) {
      rows << ToText(event.at) << "," << event.text << "\n";
    } else {
      day << "{\"at\": \"" << ToText(event.at) << "\", " << event.text << "}\n";
    }
  }
}

SoakDay DrawSoakDay(uint64_t seed) {
  return CSoakDayMaker(seed).Make();
}

}  // namespace iorder::testing

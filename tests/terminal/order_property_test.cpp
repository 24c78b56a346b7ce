#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "records/int128.h"
#include "records/number_text.h"
#include "tests/terminal/drawn_order_day.h"
#include "tests/terminal/terminal_fixture.h"

/// Drawn days of quotes, orders and cancels, and what must hold of every report whatever was drawn. The
/// checks know the tape and the reports alone.
namespace iorder::testing {
namespace {

constexpr int64_t kUnit = 10'000'000'000;

struct Seen {
  int64_t at = 0;
  int32_t execType = 0;
  int64_t leaves = 0;
  int64_t filled = 0;
  int64_t received = 0;
  int64_t price = NoValue;
  int64_t average = NoValue;
};

/// What the engine's side sees of a drawn day: the reports of each order.
class CDrawnRun {
 public:
  explicit CDrawnRun(const DrawnOrderDay& drawn, uint64_t seed = 0)
      : m_day(drawn.lines, drawn.Head() + ", \"seed\": " + std::to_string(seed)) {
    m_day.engine.onMessage = [this](const std::wstring&, const std::wstring& text, const Value&) {
      const bool isOrder = text.starts_with(L"NEW ");
      m_day.terminal->Events().Command(isOrder ? L"TRADE.NEWORDER" : L"TRADE.CANCELORDER", 1, isOrder ? 2 : 1,
                                       text.substr(text.find(L' ') + 1), {});
    };
    m_orderSet = m_day.Open(L"TRADE.ORDERSET");
    m_orderSet->Advise(std::make_shared<CSink>(*this));
    m_day.Play();
    EXPECT_THAT(m_day.problems, ::testing::IsEmpty());
    EXPECT_EQ(std::nullopt, m_day.terminal->Error());
  }

  const std::vector<Seen>& Of(size_t order) { return m_seen[order]; }
  const std::string& Trace() { return m_day.trace.Text(); }

 private:
  class CSink : public IBusEvents {
   public:
    explicit CSink(CDrawnRun& run) : m_run(run) {}
    void OnUpdate(int32_t, const std::wstring& payload) override { m_run.Note(payload); }
    void OnReplace(int32_t) override {}

   private:
    CDrawnRun& m_run;
  };

  void Note(const std::wstring& payload) {
    ASSERT_EQ(L"BN", payload.substr(0, 2));
    const int32_t number = LeadingInt32(payload.substr(2));
    ASSERT_EQ(L"BN" + std::to_wstring(number) + L"=[]", payload);
    const auto node =
        m_day.terminal->GetWorld().bus.Resolve(Int32Or(m_orderSet->GetValue(read_code::kNode, number), 0));
    const auto field = [&](const wchar_t* name) {
      const Value value = node->GetValue(read_code::kField, name);
      const int64_t* const number64 = std::get_if<int64_t>(&value);
      return number64 != nullptr ? *number64 : Int32Or(value, 0);
    };
    Seen seen;
    seen.at = (m_day.runtime->Now() - m_day.runtime->FromLocal(ToDateTime(m_start))).count();
    seen.execType = static_cast<int32_t>(field(L"ExecType"));
    seen.leaves = field(L"LeavesQty");
    seen.filled = field(L"CumQty");
    seen.received = field(L"RecFillQty");
    seen.price = field(L"Price");
    seen.average = field(L"AvgPrice");
    EXPECT_EQ(Value(L"R" + std::to_wstring(number + 1)), node->GetValue(read_code::kField, L"LevelKey"));
    m_seen[static_cast<size_t>(number)].push_back(seen);
  }

  const LocalTime m_start = *ParseLocalTime("2024-03-04T08:45:00");
  std::map<size_t, std::vector<Seen>> m_seen;
  CPlayedDay m_day;
  std::shared_ptr<IBusObject> m_orderSet;
};

/// Reports of one moment come in a row, one a millisecond.
constexpr int64_t kRow = 6;

/// The quote by which the fill of a report happened, or none.
const DrawnOrderDay::Quote* QuoteOf(const DrawnOrderDay& day, const Seen& seen) {
  const auto quote =
      std::find_if(day.quotes.begin(), day.quotes.end(), [&](const DrawnOrderDay::Quote& other) {
        const int64_t behind = seen.at - day.latency - other.at;
        return behind >= 0 && behind < kRow;
      });
  return quote != day.quotes.end() ? &*quote : nullptr;
}

/// What the tape says of one symbol at a moment at which no quote came.
struct Market {
  std::optional<int64_t> last;
  std::optional<int64_t> bid;
  std::optional<int64_t> ask;
};

Market MarketAt(const DrawnOrderDay& day, int symbol, int64_t at) {
  Market market;
  for (const DrawnOrderDay::Quote& quote : day.quotes) {
    if (quote.symbol != symbol || quote.at > at) continue;
    if (quote.price) market.last = quote.price;
    if (quote.bid) market.bid = quote.bid;
    if (quote.ask) market.ask = quote.ask;
  }
  return market;
}

/// The limit that the order comes to; none at the market or without a price to reckon from.
std::optional<int64_t> LimitOf(const DrawnOrderDay& day, const DrawnOrderDay::Order& order) {
  if (!order.bidTicks) return order.limit;
  const Market market = MarketAt(day, order.symbol, order.at + day.latency);
  const std::optional<int64_t> from = market.bid ? market.bid : market.last;
  return from ? std::optional(std::max<int64_t>(1, *from + *order.bidTicks)) : std::nullopt;
}

bool IsReached(const DrawnOrderDay& day, bool isBuy, int64_t limit, const std::optional<int64_t>& price) {
  if (!price || (day.fill == "through" && *price == limit)) return false;
  return isBuy ? *price <= limit : *price >= limit;
}

bool HasEnded(const Seen& seen) {
  return seen.execType == 3 || seen.execType == 8 || seen.execType == 10;
}

std::string Place(uint64_t seed, size_t order) {
  return "seed " + std::to_string(seed) + ", order " + std::to_string(order + 1);
}

/// What holds of each report by itself.
void CheckSums(const DrawnOrderDay::Order& order, const Seen& seen) {
  EXPECT_GE(seen.filled, 0);
  EXPECT_LE(seen.filled, order.lots);
  EXPECT_LE(seen.received, seen.filled);
  EXPECT_EQ(HasEnded(seen) ? 0 : order.lots - seen.filled, seen.leaves);
  EXPECT_EQ(seen.execType == 3, seen.filled == order.lots);
  EXPECT_TRUE(seen.execType != 0 || seen.filled == 0);
  EXPECT_TRUE(seen.execType != 6 || seen.filled > 0);
  EXPECT_TRUE(seen.execType != 10 || seen.filled == 0);
  EXPECT_EQ(seen.filled > 0, seen.average != 0);
}

/// What holds of the reports of an order that come in their order.
void CheckCourse(const std::vector<Seen>& reports) {
  for (size_t i = 1; i < reports.size(); ++i) {
    EXPECT_GE(reports[i].filled, reports[i - 1].filled);
    EXPECT_GE(reports[i].received, reports[i - 1].received);
    if (HasEnded(reports[i - 1])) {
      EXPECT_EQ(reports[i - 1].execType, reports[i].execType);
      EXPECT_EQ(reports[i - 1].filled, reports[i].filled);
    }
  }
}

/// An acknowledge or a reject comes one latency after the order; a working order that was cancelled has
/// ended.
void CheckEnds(const DrawnOrderDay& day, const DrawnOrderDay::Order& order,
               const std::vector<Seen>& reports) {
  ASSERT_FALSE(reports.empty());
  EXPECT_TRUE(reports.front().execType == 0 || reports.front().execType == 10);
  EXPECT_EQ(order.at + day.latency, reports.front().at);
  EXPECT_TRUE(HasEnded(reports.back()) || (order.works && !order.cancelledAt));
}

/// Each fill has something on the tape that reaches the order's price at its moment, and isn't better.
void CheckPrices(const DrawnOrderDay& day, const DrawnOrderDay::Order& order,
                 const std::vector<Seen>& reports) {
  const std::optional<int64_t> limit = LimitOf(day, order);
  const int64_t arrival = order.at + day.latency;
  int64_t filled = 0;
  Int128 paid = 0;
  for (const Seen& seen : reports) {
    if (seen.filled == filled) continue;
    const DrawnOrderDay::Quote* const quote = QuoteOf(day, seen);
    const int64_t at = quote != nullptr ? quote->at : arrival;
    const int64_t lots = seen.filled - filled;
    // The average is truncated, so that what was paid for these lots is known to within one per lot.
    const Int128 now = Int128{seen.average} * seen.filled;
    const auto price = static_cast<int64_t>((now - paid + seen.filled - 1) / lots / kUnit);
    filled = seen.filled;
    paid = now;
    EXPECT_GE(at, arrival);
    EXPECT_LT(seen.at - day.latency - at, kRow);
    EXPECT_LE(at, order.cancelledAt ? *order.cancelledAt + day.latency : at);
    if (limit) {
      EXPECT_EQ(*limit * kUnit, seen.average);
      EXPECT_EQ(*limit * kUnit, seen.price);
    }
    if (day.fill == "immediate" && limit) continue;
    std::vector<std::optional<int64_t>> supports;
    if (quote != nullptr) {
      EXPECT_EQ(order.symbol, quote->symbol);
      supports = {quote->price, order.isBuy ? quote->ask : quote->bid};
    } else {
      const Market market = MarketAt(day, order.symbol, at);
      const std::optional<int64_t>& best = order.isBuy ? market.ask : market.bid;
      supports = {best, !limit || !best ? market.last : std::nullopt};
    }
    EXPECT_TRUE(std::any_of(supports.begin(), supports.end(),
                            [&](const std::optional<int64_t>& support) {
                              return limit ? IsReached(day, order.isBuy, *limit, support) : support == price;
                            }))
        << "a fill of " << lots << " at " << at << " ms that the tape doesn't allow";
  }
}

/// A trade of at least one lot for each order that it reaches leaves no working limit order without a fill.
void CheckNothingMissed(const DrawnOrderDay& day, const DrawnOrderDay::Order& order,
                        const std::vector<Seen>& reports) {
  const std::optional<int64_t> limit = LimitOf(day, order);
  if (!limit || !order.works || day.fill == "immediate") return;
  const int64_t from = order.at + day.latency;
  const int64_t to = order.cancelledAt ? *order.cancelledAt + day.latency : INT64_MAX;
  int64_t mustHave = 0;
  for (const DrawnOrderDay::Quote& quote : day.quotes) {
    if (quote.symbol != order.symbol || quote.at < from || quote.at > to) continue;
    if (!IsReached(day, order.isBuy, *limit, quote.price)) continue;
    const bool isAlone =
        std::none_of(day.orders.begin(), day.orders.end(), [&](const DrawnOrderDay::Order& other) {
          return &other != &order && other.symbol == order.symbol && other.at < quote.at;
        });
    mustHave += isAlone ? *quote.quantity * day.partialPercent / 100 : 0;
  }
  EXPECT_GE(reports.back().filled, std::min(mustHave, order.lots));
}

/// Something of the tape that fills orders, and what it is seen to give them.
struct Source {
  int64_t lots = 0;   ///< what it gives all orders together at most
  int64_t share = 0;  ///< what it gives one order at most
  int64_t given = 0;
};

/// A quote: its trade and the best prices that it renews. Of a fill that more than one of them may have
/// given only the order's side is known.
struct Sources {
  Source trade;
  Source bid;
  Source ask;
  int64_t buysByTradeOrAsk = 0;
  int64_t sellsByTradeOrBid = 0;

  Source& Best(bool isBuy) { return isBuy ? ask : bid; }
};

using Tape = std::map<const DrawnOrderDay::Quote*, Sources>;

Tape SourcesOf(const DrawnOrderDay& day) {
  const auto source = [&](const std::optional<int64_t>& lots) {
    return Source{lots.value_or(0), lots.value_or(0) * day.partialPercent / 100};
  };
  Tape tape;
  for (const DrawnOrderDay::Quote& quote : day.quotes) {
    tape[&quote] = {source(quote.quantity), source(quote.bidQuantity), source(quote.askQuantity)};
  }
  return tape;
}

/// The last quote of the symbol until then that tells what `member` is.
const DrawnOrderDay::Quote* LastThatTells(const DrawnOrderDay& day, int symbol, int64_t at,
                                          std::optional<int64_t> DrawnOrderDay::Quote::*member) {
  const DrawnOrderDay::Quote* last = nullptr;
  for (const DrawnOrderDay::Quote& quote : day.quotes) {
    if (quote.symbol == symbol && quote.at <= at && quote.*member) last = &quote;
  }
  return last;
}

void Give(Source& source, int64_t lots) {
  EXPECT_LE(lots, source.share);
  source.given += lots;
}

/// A limit order that comes in meets the best price, or the last trade in place of a missing one.
void GiveOnArrival(const DrawnOrderDay& day, const DrawnOrderDay::Order& order, int64_t lots, Tape& tape) {
  using Quote = DrawnOrderDay::Quote;
  const int64_t at = order.at + day.latency;
  const Quote* const best = LastThatTells(day, order.symbol, at, order.isBuy ? &Quote::ask : &Quote::bid);
  const Quote* const trade = LastThatTells(day, order.symbol, at, &Quote::price);
  const bool standsIn = best == nullptr && order.bidTicks && trade != nullptr;
  ASSERT_TRUE(best != nullptr || standsIn);
  Give(standsIn ? tape[trade].trade : tape[best].Best(order.isBuy), lots);
}

/// A working order meets the trade of a quote and then the best price that it renews.
void GiveWorking(const DrawnOrderDay& day, const DrawnOrderDay::Order& order,
                 const DrawnOrderDay::Quote& quote, const std::vector<int64_t>& lots, Sources& sources) {
  const std::optional<int64_t> limit = LimitOf(day, order);
  const auto reaches = [&](const std::optional<int64_t>& price) {
    return limit ? IsReached(day, order.isBuy, *limit, price) : price.has_value();
  };
  const bool byTrade = reaches(quote.price);
  Source& best = sources.Best(order.isBuy);
  const bool byBest = reaches(order.isBuy ? quote.ask : quote.bid);
  ASSERT_LE(lots.size(), size_t{byTrade} + size_t{byBest});
  if (lots.size() == 2) {
    Give(sources.trade, lots[0]);
    Give(best, lots[1]);
  } else if (byTrade && byBest) {
    EXPECT_LE(lots[0], std::max(sources.trade.share, best.share));
    (order.isBuy ? sources.buysByTradeOrAsk : sources.sellsByTradeOrBid) += lots[0];
  } else {
    Give(byTrade ? sources.trade : best, lots[0]);
  }
}

void GiveAll(const DrawnOrderDay& day, const DrawnOrderDay::Order& order, const std::vector<Seen>& reports,
             Tape& tape) {
  std::map<const DrawnOrderDay::Quote*, std::vector<int64_t>> lotsOf;
  int64_t filled = 0;
  for (const Seen& seen : reports) {
    if (seen.filled > filled) lotsOf[QuoteOf(day, seen)].push_back(seen.filled - filled);
    filled = seen.filled;
  }
  for (const auto& [quote, lots] : lotsOf) {
    if (quote != nullptr) {
      GiveWorking(day, order, *quote, lots, tape[quote]);
    } else if (LimitOf(day, order)) {  // at the market it is filled whole
      ASSERT_EQ(1U, lots.size());
      GiveOnArrival(day, order, lots[0], tape);
    }
  }
}

/// No trade and no best price gives one order more than its share, and all together more than there is.
void CheckShares(const DrawnOrderDay& day, CDrawnRun& run) {
  if (day.fill == "immediate") return;
  Tape tape = SourcesOf(day);
  for (size_t i = 0; i < day.orders.size(); ++i) {
    SCOPED_TRACE("order " + std::to_string(i + 1));
    GiveAll(day, day.orders[i], run.Of(i), tape);
  }
  for (const auto& [quote, sources] : tape) {
    const auto& [trade, bid, ask, buys, sells] = sources;
    EXPECT_LE(bid.given, bid.lots) << "at " << quote->at << " ms";
    EXPECT_LE(ask.given, ask.lots) << "at " << quote->at << " ms";
    const int64_t buysByTrade = std::max<int64_t>(0, buys - (ask.lots - ask.given));
    const int64_t sellsByTrade = std::max<int64_t>(0, sells - (bid.lots - bid.given));
    EXPECT_LE(trade.given + buysByTrade + sellsByTrade, trade.lots) << "at " << quote->at << " ms";
  }
}

TEST(OrderProperties, EveryReportOfADrawnDayIsOneThatTheTapeAllows) {
  int64_t fills = 0;
  int64_t cancels = 0;
  for (uint64_t seed = 1; seed <= 60; ++seed) {
    const DrawnOrderDay day = DrawOrderDay(seed, "");
    CDrawnRun run(day);
    for (size_t i = 0; i < day.orders.size(); ++i) {
      SCOPED_TRACE(Place(seed, i));
      const std::vector<Seen>& reports = run.Of(i);
      CheckEnds(day, day.orders[i], reports);
      for (const Seen& seen : reports) CheckSums(day.orders[i], seen);
      CheckCourse(reports);
      CheckPrices(day, day.orders[i], reports);
      CheckNothingMissed(day, day.orders[i], reports);
      fills += reports.back().filled > 0 ? 1 : 0;
      cancels += reports.back().execType == 8 ? 1 : 0;
    }
    SCOPED_TRACE(Place(seed, 0));
    CheckShares(day, run);
  }
  // The days have something to check.
  EXPECT_GT(fills, 500);
  EXPECT_GT(cancels, 100);
}

TEST(OrderProperties, SumsAndCourseHoldInEveryFurtherWayToAnswer) {
  for (uint64_t seed = 1; seed <= 20; ++seed) {
    for (const char* const ways :
         {R"(, "late_ms": 300)", R"(, "repeat": 0.5, "late_ms": 50)", R"(, "rec_fill_lag_ms": 70)",
          R"(, "reject": 0.3, "lost_ack": 0.3)",
          R"(, "late_ms": 90, "repeat": 0.3, "rec_fill_lag_ms": 40, "lost_ack": 0.2, "reject": 0.1)"}) {
      const DrawnOrderDay day = DrawOrderDay(seed, ways);
      CDrawnRun run(day);
      for (size_t i = 0; i < day.orders.size(); ++i) {
        SCOPED_TRACE(Place(seed, i) + ways);
        for (const Seen& seen : run.Of(i)) CheckSums(day.orders[i], seen);
        CheckCourse(run.Of(i));
        if (run.Of(i).empty()) continue;  // its acknowledge was lost, and nothing else came of it
        EXPECT_EQ(run.Of(i).back().filled, run.Of(i).back().received);
      }
    }
  }
}

TEST(OrderProperties, ReportsThatOvertakeOneAnotherAreStillTheSameReports) {
  for (uint64_t seed = 1; seed <= 10; ++seed) {
    const DrawnOrderDay day = DrawOrderDay(seed, R"(, "late_ms": 2000, "out_of_order": true)");
    DrawnOrderDay punctual = day;
    punctual.ways.clear();
    CDrawnRun run(day);
    CDrawnRun expected(punctual);
    for (size_t i = 0; i < day.orders.size(); ++i) {
      SCOPED_TRACE(Place(seed, i));
      for (const Seen& seen : run.Of(i)) CheckSums(day.orders[i], seen);
      const auto states = [](const std::vector<Seen>& reports) {
        std::vector<std::tuple<int32_t, int64_t, int64_t>> all;
        for (const Seen& seen : reports) all.emplace_back(seen.execType, seen.filled, seen.average);
        std::sort(all.begin(), all.end());
        return all;
      };
      EXPECT_EQ(states(expected.Of(i)), states(run.Of(i)));
    }
  }
}

TEST(OrderProperties, WithoutLatenessNoReportOvertakesAnother) {
  for (uint64_t seed = 1; seed <= 10; ++seed) {
    const DrawnOrderDay punctual = DrawOrderDay(seed, "");
    const DrawnOrderDay day = DrawOrderDay(seed, R"(, "out_of_order": true)");
    EXPECT_EQ(CDrawnRun(punctual).Trace(), CDrawnRun(day).Trace());
    CDrawnRun run(day);
    for (size_t i = 0; i < day.orders.size(); ++i) {
      SCOPED_TRACE(Place(seed, i));
      CheckCourse(run.Of(i));
    }
  }
}

TEST(OrderProperties, TheSameSeedGivesTheSameTraceAndAnotherOneOtherDraws) {
  const DrawnOrderDay day =
      DrawOrderDay(5, R"(, "late_ms": 90, "repeat": 0.3, "lost_ack": 0.2, "reject": 0.3)");
  CDrawnRun first(day, 3);
  CDrawnRun second(day, 3);
  CDrawnRun other(day, 4);
  EXPECT_EQ(first.Trace(), second.Trace());
  EXPECT_NE(first.Trace(), other.Trace());
}

}  // namespace
}  // namespace iorder::testing

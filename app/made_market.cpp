#include "app/made_market.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "app/option_price.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

constexpr int64_t kThousandths = 1000;

/// Half of the strikes lie around the money, `step` apart; the outer ones are two steps apart.
std::vector<int64_t> StrikesAround(int64_t price, int64_t count, int64_t step) {
  const int64_t money = (price + step / 2) / step * step;
  const int64_t inner = count / 4;  // on each side
  std::vector<int64_t> strikes;
  for (int64_t i = -(count / 2); i < count - count / 2; ++i) {
    const int64_t outer = std::max<int64_t>(0, std::abs(i) - inner);
    strikes.push_back(money + (i + (i < 0 ? -outer : outer)) * step);
  }
  return strikes;
}

/// The widest usual step at which the lowest strike still lies above half of the price.
std::vector<int64_t> ChooseStrikes(int64_t price, int count) {
  for (const int64_t step : {100, 50, 25, 10, 5, 2, 1}) {
    std::vector<int64_t> strikes = StrikesAround(price, count, step);
    if (strikes.front() > price / 2) return strikes;
  }
  throw InputError(
      fmt::format("--strikes: {} strikes don't fit around a price of {} points, expected fewer, or a "
                  "higher --price",
                  count, price));
}

}  // namespace

CMadeMarket::CMadeMarket(const MarketShape& shape, uint64_t seed)
    : m_shape(shape), m_random(seed), m_depth(~seed) {
  const double volatility = shape.volatility / 100.0;
  const auto price = static_cast<double>(shape.price);
  // A quarter of a day stands for what is left on the last day.
  m_deviation = price * volatility * std::sqrt((static_cast<double>(shape.daysToExpiry) + 0.25) / 365.0);
  // 252 sessions of 18,000 seconds make a year. Four even draws up to a have the deviation a * 2 / sqrt(3).
  const double secondDeviation = price * kThousandths * volatility / std::sqrt(252.0 * 18000.0);
  m_largestDraw = static_cast<int64_t>(secondDeviation * 0.866);
  // The night brought news too: the opening lies up to 0.5 percent off the last price.
  m_future = shape.price * kThousandths + Between(-5, 5) * shape.price;

  m_series.push_back({.symbol = shape.future});
  const std::vector<int64_t> strikes = ChooseStrikes(shape.price, shape.strikes);
  List(strikes, true);
  List(strikes, false);
  int64_t sum = 0;
  for (size_t i = 0; i < m_series.size(); ++i) {
    m_weights.push_back(sum += m_series[i].weight);
    if (m_series[i].opensAfter == 0) m_auction.push_back(i);
  }
}

int64_t CMadeMarket::Below(int64_t bound) {
  return m_random.Below(static_cast<uint32_t>(bound));
}

int64_t CMadeMarket::Between(int64_t lowest, int64_t highest) {
  return lowest + Below(highest - lowest + 1);
}

void CMadeMarket::List(const std::vector<int64_t>& strikes, bool calls) {
  const auto half = static_cast<int64_t>(strikes.size()) / 2;
  const int64_t near = std::max<int64_t>(1, half / 4);
  for (size_t i = 0; i < strikes.size(); ++i) {
    const int64_t distance = std::abs(static_cast<int64_t>(i) - half);
    const bool inTheMoney = (strikes[i] < m_shape.price) == calls;
    MadeSeries series{.symbol = fmt::format("{}.{}.{}", m_shape.chain, calls ? 'C' : 'P', strikes[i]),
                      .strike = strikes[i],
                      .isCall = calls};
    series.weight = 1 + 4000 * near * near / (near * near + distance * distance) / (inTheMoney ? 4 : 1);
    // Percent of the way to the end of the chain; in the money little trades.
    const int64_t remoteness = 100 * distance / (half + 1) * (inTheMoney ? 2 : 1);
    if (Below(250) < remoteness) {
      series.opensAfter = MadeSeries::kNever;
    } else if (Below(75) < remoteness) {
      series.opensAfter = 1 + Below(1 + m_shape.length * std::min<int64_t>(remoteness, 100) / 150);
    }
    m_series.push_back(std::move(series));
  }
}

MadeTrade CMadeMarket::Trade(int64_t index, int64_t count) {
  const auto auction = static_cast<int64_t>(m_auction.size());
  if (index < auction) return AuctionTrade(m_series[m_auction[static_cast<size_t>(index)]]);
  MadeTrade trade{.after = TradeTime(index - auction, count - auction)};
  MoveFuture(trade.after);
  MadeSeries& series = DrawSeries(trade.after);
  trade.series = &series;
  DrawPrice(trade);
  trade.quantity = Between(1, 5);
  trade.opens = series.volume == 0;
  series.volume += trade.quantity;
  return trade;
}

MadeTrade CMadeMarket::AuctionTrade(MadeSeries& series) {
  MadeTrade trade{.series = &series, .opens = true};
  DrawPrice(trade);
  trade.quantity = Between(5, 80);
  series.volume = trade.quantity;
  return trade;
}

int64_t CMadeMarket::TradeTime(int64_t index, int64_t count) {
  // One trade in each of `count` even slices, which are then bent so that the opening is two and a half times
  // as busy as the average.
  const int64_t length = m_shape.length;
  const int64_t even = (index * length + Below(length)) / count;
  return even * (4 * length + 6 * even) / (10 * length);
}

MadeSeries& CMadeMarket::DrawSeries(int64_t after) {
  MadeSeries& future = m_series.front();
  if (Below(4) == 0) return future;
  const int64_t draw = Below(m_weights.back());
  const auto found = std::upper_bound(m_weights.begin(), m_weights.end(), draw);
  MadeSeries& series = m_series[static_cast<size_t>(found - m_weights.begin())];
  const bool isOpen = series.opensAfter != MadeSeries::kNever && series.opensAfter <= after;
  return isOpen ? series : future;
}

void CMadeMarket::MoveFuture(int64_t after) {
  for (; m_second < after / 1000; ++m_second) {
    for (int draw = 0; draw < 4; ++draw) m_future += Between(-m_largestDraw, m_largestDraw);
    m_future = std::max(m_future, m_shape.price * kThousandths / 2);
  }
}

void CMadeMarket::DrawPrice(MadeTrade& trade) {
  const MadeSeries& series = *trade.series;
  trade.bidQuantity = 1 + m_depth.Below(20);
  trade.askQuantity = 1 + m_depth.Below(20);
  if (series.strike == 0) {
    const int64_t worth = (m_future + kThousandths / 2) / kThousandths * 10;
    trade.price = (m_future + Between(-500, 500) + kThousandths / 2) / kThousandths * 10;
    trade.bid = worth - 10;
    trade.ask = worth + 10;
    return;
  }
  const double future = static_cast<double>(m_future) / kThousandths;
  const auto strike = static_cast<double>(series.strike);
  const double premium =
      series.isCall ? CallPremium(future, strike, m_deviation) : PutPremium(future, strike, m_deviation);
  const int64_t price = RoundToOptionTick(premium);
  // Buyers and sellers meet up to a tick beside it.
  const auto beside = [price](int64_t ticks) {
    return RoundToOptionTick(static_cast<double>(price + ticks * OptionTick(price)) / 10);
  };
  trade.price = beside(Between(-1, 1));
  trade.bid = beside(-1) < price ? beside(-1) : 0;
  trade.ask = beside(1);
}

}  // namespace iorder

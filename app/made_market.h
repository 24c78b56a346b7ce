#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/random.h"

namespace iorder {

/// One series of a made market.
struct MadeSeries {
  std::string symbol;
  int64_t strike = 0;  ///< 0: the future
  bool isCall = false;
  int64_t weight = 0;      ///< how often it trades, beside others
  int64_t opensAfter = 0;  ///< ms behind the opening; 0: in the auction; kNever
  int64_t volume = 0;      ///< lots so far

  static constexpr int64_t kNever = -1;
};

/// What a made market is like.
struct MarketShape {
  int strikes = 0;
  int64_t price = 0;   ///< of the future before the opening, in points
  int volatility = 0;  ///< percent a year
  int64_t daysToExpiry = 0;
  int64_t length = 0;  ///< of the session, ms
  std::string future;  ///< its symbol
  std::string chain;   ///< symbol of the options up to the month
};

/// One trade, and the best prices behind it. Prices are in tenths of a point.
struct MadeTrade {
  int64_t after = 0;  ///< ms behind the opening
  MadeSeries* series = nullptr;
  int64_t price = 0;
  int64_t quantity = 0;
  int64_t bid = 0;  ///< 0: none
  int64_t ask = 0;
  int64_t bidQuantity = 0;
  int64_t askQuantity = 0;
  bool opens = false;  ///< the first one of the series
};

/// A future that moves by small random steps, and a chain of options priced around it. Trades come in order
/// of time.
class CMadeMarket {
 public:
  /// Raises InputError if so many strikes don't fit under the price.
  CMadeMarket(const MarketShape& shape, uint64_t seed);

  /// The future first, then the options, calls before puts, strikes ascending.
  const std::vector<MadeSeries>& Series() const { return m_series; }
  /// The `index`-th of `count` trades, called with 0 to `count` - 1 in order.
  MadeTrade Trade(int64_t index, int64_t count);

 private:
  /// 0 to `bound` - 1, and `lowest` to `highest`; a span fits 32 bits.
  int64_t Below(int64_t bound);
  int64_t Between(int64_t lowest, int64_t highest);
  void List(const std::vector<int64_t>& strikes, bool calls);
  MadeTrade AuctionTrade(MadeSeries& series);
  int64_t TradeTime(int64_t index, int64_t count);
  MadeSeries& DrawSeries(int64_t after);
  void MoveFuture(int64_t after);
  /// Draws the price, and sets the best prices on both sides of what the series is worth.
  void DrawPrice(MadeTrade& trade);

  MarketShape m_shape;
  CRandom m_random;
  CRandom m_depth;            ///< of the best prices' quantities
  double m_deviation = 0;     ///< of the future until expiry, points
  int64_t m_largestDraw = 0;  ///< of the four draws that make one second's move, thousandths of a point
  int64_t m_future = 0;       ///< its price, thousandths of a point
  int64_t m_second = 0;       ///< up to which the future has moved
  std::vector<MadeSeries> m_series;
  std::vector<int64_t> m_weights;  ///< summed from the first option on
  std::vector<size_t> m_auction;   ///< indices of the series that trade in the auction
};

}  // namespace iorder

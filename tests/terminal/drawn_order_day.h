#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/random.h"

namespace iorder::testing {

/// A day of quotes, orders and cancels that is drawn from a seed. Prices are whole units with ticks of 1. All
/// times are ms since the start; a quote has a moment of its own, at which no order or cancel comes in.
struct DrawnOrderDay {
  struct Quote {
    int64_t at = 0;
    int symbol = 0;
    std::optional<int64_t> price;
    std::optional<int64_t> quantity;
    std::optional<int64_t> bid;
    std::optional<int64_t> ask;
    std::optional<int64_t> bidQuantity;
    std::optional<int64_t> askQuantity;
  };
  struct Order {
    int64_t at = 0;
    int symbol = 0;
    bool isBuy = true;
    int64_t lots = 0;
    std::optional<int64_t> limit;  ///< neither limit nor ticks: at the market
    std::optional<int64_t> bidTicks;
    bool works = true;
    std::optional<int64_t> cancelledAt;  ///< the first cancel was sent then
  };

  int64_t latency = 0;
  std::string fill;
  int64_t partialPercent = 100;
  std::string ways;  ///< further members of "orders", with a comma before them
  std::vector<Quote> quotes;
  std::vector<Order> orders;
  std::string lines;  ///< of the day file

  std::string Head() const;
};

/// `ways` are further members of "orders".
DrawnOrderDay DrawOrderDay(uint64_t seed, const std::string& ways);

/// The name of a drawn symbol.
std::string DrawnSymbol(int symbol);

}  // namespace iorder::testing

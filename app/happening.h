#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "records/scaled_value.h"

namespace iorder {

/// A new order left the engine.
struct OrderSent {
  std::string strategy;  ///< key of the strategy; empty if the order names none
  std::string account;   ///< BROKER/ACCOUNT
  std::string symbol;
  std::string side;  ///< B or S
  int64_t lots = 0;
  std::optional<ScaledValue> price;  ///< none for a market order and where the price is told by `priceWords`
  std::string priceWords;            ///< a price relative to the market, as in BID-3T
  bool closes = false;
  std::string text;  ///< the order string as it was sent
};

/// A cancel left the engine.
struct CancelSent {
  std::string report;
  std::string text;
};

/// An option was judged by its opening price.
struct OptionJudged {
  std::string strategy;
  std::string symbol;
  std::string openPrice;  ///< decimal
  bool accepted = false;
};

/// What became of an order, as the engine tells its clients. `result` is the client's code.
struct OrderAnswered {
  std::string strategy;
  std::string symbol;
  int64_t action = 0;
  int64_t result = 0;
};

/// A strategy came into a new state.
struct StateChanged {
  std::string strategy;
  int64_t state = 0;
};

/// A strategy is there, or is gone.
struct StrategyStarted {
  std::string strategy;
};
struct StrategyGone {
  std::string strategy;
};

/// A batch of orders was built.
struct BatchPlaced {
  std::string strategy;
  int64_t cash = 0;  ///< that its orders cost
};

/// A command reached the engine, and wasn't what it can read.
struct CommandRefused {
  std::string reason;
};

/// An exception ended one piece of work of an engine thread.
struct FaultReported {
  std::string thread;
  std::string code;
  std::string text;
};

/// Something that a trader wants to know, read from what the engine sends and logs.
using Happening = std::variant<OrderSent, CancelSent, OptionJudged, OrderAnswered, StateChanged,
                               StrategyStarted, StrategyGone, BatchPlaced, CommandRefused, FaultReported>;

}  // namespace iorder

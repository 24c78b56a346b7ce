#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "app/group_order_happening.h"
#include "records/scaled_value.h"

namespace iorder {

/// A new order left the engine.
struct OrderSent {
  std::string strategy;  ///< key of the strategy; empty if the order is of none
  std::string account;   ///< BROKER/ACCOUNT
  std::string symbol;
  std::string side;  ///< B or S
  int64_t lots = 0;
  std::optional<ScaledValue> price;  ///< none for a market order and where the price is told by `priceWords`
  std::string priceWords;            ///< a price relative to the market, as in BID-3T
  bool closes = false;
  std::optional<GroupString> group;  ///< none: the order is of no group order
  std::string text;                  ///< the order string as it was sent
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

/// An order was filled, in part or whole.
struct OrderFilled {
  std::string strategy;
  std::string symbol;
  std::string report;
  bool closes = false;
  int64_t lots = 0;       ///< of this fill
  ScaledValue price = 0;  ///< of this fill
  int64_t filled = 0;     ///< of the order so far
  int64_t sent = 0;
};

/// What a strategy holds of a symbol in one of its runs, as the engine counts it.
struct PositionChanged {
  std::string strategy;
  int64_t life =
      1;  ///< counts the strategies of this key: one that was deleted counts its runs from the start
  std::string run;  ///< stamp of the run
  std::string symbol;
  int64_t bought = 0;
  std::optional<double> boughtAt;  ///< average
  int64_t sold = 0;
  std::optional<double> soldAt;
  int64_t held = 0;

  bool operator==(const PositionChanged&) const = default;
};

/// A position was valued at a new price; profit in money.
struct PositionValued {
  std::string strategy;
  int64_t life = 1;
  std::string run;
  std::string symbol;
  double last = 0;
  double profit = 0;
};

/// What all strategies of a tag come to, in money.
struct TagTotalChanged {
  std::string tag;
  int64_t cost = 0;
  double profit = 0;
};

/// The profit or loss of a tag has reached its limit. Both are money, or percent of the cost.
struct LimitReached {
  std::string tag;
  std::string side;  ///< profit or loss
  bool isPercent = false;
  std::string reached;  ///< decimal
  std::string limit;
};

/// What ended a strategy's run: stop time, stop command, profit limit or loss limit.
struct RunEnded {
  std::string strategy;
  std::string reason;
};

/// Money of one price point of a symbol.
struct WeightKnown {
  std::string symbol;
  int64_t weight = 1;
};

/// Something that a trader wants to know, read from what the engine sends and logs.
using Happening =
    std::variant<OrderSent, CancelSent, OptionJudged, OrderAnswered, StateChanged, StrategyStarted,
                 StrategyGone, BatchPlaced, OrderFilled, PositionChanged, PositionValued, TagTotalChanged,
                 LimitReached, RunEnded, WeightKnown, GroupOrderLooked, GroupCycleMade, GroupLegChosen,
                 GroupChildAnnounced, GroupChildChanged, GroupLookPlanned, GroupLookPassed, GroupOrderEnded,
                 CommandRefused, FaultReported>;

}  // namespace iorder

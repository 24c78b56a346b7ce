#include "app/happening_text.h"

#include <fmt/format.h>

#include "app/group_order_words.h"
#include "app/symbol_words.h"

namespace iorder {
namespace {

template <typename... Cases>
struct Match : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Match(Cases...) -> Match<Cases...>;

std::string PriceWords(const OrderSent& order) {
  if (order.group) return GroupStringWords(*order.group);
  if (order.price) return "at " + DecimalText(*order.price);
  return order.priceWords.empty() ? "at the market" : "at " + order.priceWords;
}

std::string OrderWords(const OrderSent& order) {
  if (order.symbol.empty()) return "order         " + order.text;
  return fmt::format("order         {} {} {} {}{}, account {}", SideWords(order.side), order.lots,
                     SymbolWords(order.symbol), PriceWords(order), order.closes ? ", closes" : "",
                     order.account);
}

std::string AnswerWords(const OrderAnswered& answer) {
  const char* const what = answer.action == 2                         ? "close order"
                           : answer.action == 3 && answer.result != 3 ? "cancel"
                                                                      : "order";
  const std::string symbol = SymbolWords(answer.symbol);
  switch (answer.result) {
    case -101:
      return fmt::format("refused       {} for {}: the account isn't connected", what, symbol);
    case -1:
    case -2:
      return fmt::format("rejected      {} for {}", what, symbol);
    case 1:
      return fmt::format("reported      {} for {}", what, symbol);
    case 2:
      return fmt::format("filled        {} for {}", what, symbol);
    case 3:
      return fmt::format("cancelled     {} for {}", what, symbol);
    default:
      return fmt::format("answer {:<6} {} for {}", answer.result, what, symbol);
  }
}

std::string FillWords(const OrderFilled& fill) {
  return fmt::format("filled        {} {} {} at {}, {} of {}", fill.closes ? "sold" : "bought", fill.lots,
                     SymbolWords(fill.symbol), DecimalText(fill.price), fill.filled, fill.sent);
}

std::string PositionWords(const PositionChanged& position) {
  std::string words = fmt::format("position      {}: {} holds {}, bought {}", position.strategy,
                                  SymbolWords(position.symbol), position.held, position.bought);
  if (position.boughtAt) words += " at " + PriceText(*position.boughtAt);
  if (position.sold > 0) words += fmt::format(", sold {}", position.sold);
  if (position.sold > 0 && position.soldAt) words += " at " + PriceText(*position.soldAt);
  return words;
}

std::string LimitWords(const LimitReached& limit) {
  return fmt::format("limit         {}: the {} limit of {} is reached with {}{}", limit.tag, limit.side,
                     limit.limit, limit.reached, limit.isPercent ? " percent of the cost" : "");
}

}  // namespace

std::string SideWords(const std::string& side) {
  if (side == "B") return "buy";
  return side == "S" ? "sell" : side;
}

std::string StateWords(int64_t state) {
  switch (state) {
    case -3:
      return "an order was rejected";
    case -2:
      return "stopped by command";
    case -1:
      return "not running";
    case 0:
      return "building the chain";
    case 1:
      return "ready to start";
    case 2:
      return "running, no orders out";
    case 3:
      return "placing orders";
    case 4:
      return "orders are out";
    case 5:
      return "cancelling to order anew";
    case 6:
      return "cancels are out";
    case 8:
      return "orders were filled";
    default:
      return fmt::format("state {}", state);
  }
}

std::string Words(const Happening& happening) {
  return std::visit(
      Match{
          [](const OrderSent& order) { return OrderWords(order); },
          [](const CancelSent& cancel) { return "cancel        report " + cancel.report; },
          [](const OptionJudged& judged) {
            return fmt::format("{}      {} opened at {}", judged.accepted ? "accepted" : "rejected",
                               SymbolWords(judged.symbol), judged.openPrice);
          },
          [](const OrderAnswered& answer) { return AnswerWords(answer); },
          [](const StateChanged& change) {
            return fmt::format("state         {}: {}", change.strategy, StateWords(change.state));
          },
          [](const StrategyStarted& started) { return "strategy      " + started.strategy + " is there"; },
          [](const StrategyGone& gone) { return "strategy      " + gone.strategy + " is gone"; },
          [](const BatchPlaced& batch) {
            return fmt::format("batch         {}: the orders cost {}", batch.strategy, batch.cash);
          },
          [](const OrderFilled& fill) { return FillWords(fill); },
          [](const PositionChanged& position) { return PositionWords(position); },
          [](const PositionValued& valued) {
            return fmt::format("profit        {}: {} at {}, {}", valued.strategy, SymbolWords(valued.symbol),
                               PriceText(valued.last), MoneyText(valued.profit));
          },
          [](const TagTotalChanged& total) {
            return fmt::format("total         {}: cost {}, profit {}", total.tag, total.cost,
                               MoneyText(total.profit));
          },
          [](const LimitReached& limit) { return LimitWords(limit); },
          [](const RunEnded& ended) {
            return fmt::format("end           {}: by {}", ended.strategy, ended.reason);
          },
          [](const WeightKnown& known) {
            return fmt::format("weight        {}: a point is worth {}", SymbolWords(known.symbol),
                               known.weight);
          },
          [](const GroupOrderLooked& look) { return Words(look); },
          [](const GroupCycleMade& cycle) { return Words(cycle); },
          [](const GroupLegChosen& leg) { return Words(leg); },
          [](const GroupChildAnnounced& child) { return Words(child); },
          [](const GroupChildChanged& child) { return Words(child); },
          [](const GroupLookPlanned& look) { return Words(look); },
          [](const GroupLookPassed& look) { return Words(look); },
          [](const GroupOrderEnded& ended) { return Words(ended); },
          [](const CommandRefused& refused) {
            return "not readable  the command isn't JSON: " + refused.reason;
          },
          [](const FaultReported& fault) {
            return fmt::format("fault         {} on {}: {}", fault.code, fault.thread, fault.text);
          },
      },
      happening);
}

}  // namespace iorder

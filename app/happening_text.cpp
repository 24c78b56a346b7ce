#include "app/happening_text.h"

#include <fmt/format.h>

#include <optional>

#include "app/symbol_words.h"
#include "records/json_document.h"

namespace iorder {
namespace {

template <typename... Cases>
struct Match : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Match(Cases...) -> Match<Cases...>;

std::string SideWords(const OrderSent& order) {
  if (order.side == "B") return "buy";
  return order.side == "S" ? "sell" : order.side;
}

std::string PriceWords(const OrderSent& order) {
  if (order.price) return "at " + DecimalText(*order.price);
  return order.priceWords.empty() ? "at the market" : "at " + order.priceWords;
}

std::string OrderWords(const OrderSent& order) {
  if (order.symbol.empty()) return "order         " + order.text;
  return fmt::format("order         {} {} {} {}{}, account {}", SideWords(order), order.lots,
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

/// The members of one JSON object, written in their order.
class CMembers {
 public:
  explicit CMembers(std::string_view at) : m_writer(m_buffer) {
    m_writer.StartObject();
    Text("at", at);
  }
  void Text(std::string_view name, std::string_view text) {
    Name(name);
    m_writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }
  void Number(std::string_view name, int64_t number) {
    Name(name);
    m_writer.Int64(number);
  }
  void Double(std::string_view name, std::optional<double> number) {
    Name(name);
    if (number) {
      m_writer.Double(*number);
    } else {
      m_writer.Null();
    }
  }
  void Flag(std::string_view name, bool flag) {
    Name(name);
    m_writer.Bool(flag);
  }
  /// A number by the digits that it is spelled with.
  void Digits(std::string_view name, std::string_view digits) {
    Name(name);
    m_writer.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
  }
  void Null(std::string_view name) {
    Name(name);
    m_writer.Null();
  }
  std::string Close() {
    m_writer.EndObject();
    return {m_buffer.GetString(), m_buffer.GetSize()};
  }

 private:
  void Name(std::string_view name) {
    m_writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
  }

  rapidjson::StringBuffer m_buffer;
  CJsonWriter m_writer;
};

void Write(CMembers& members, const OrderSent& order) {
  members.Text("kind", "order");
  members.Text("strategy", order.strategy);
  members.Text("account", order.account);
  members.Text("symbol", order.symbol);
  members.Text("side", SideWords(order));
  members.Number("lots", order.lots);
  if (order.price) {
    members.Digits("price", DecimalText(*order.price));
  } else if (!order.priceWords.empty()) {
    members.Text("price", order.priceWords);
  } else {
    members.Null("price");
  }
  members.Flag("closes", order.closes);
  members.Text("text", order.text);
}

void Write(CMembers& members, const CancelSent& cancel) {
  members.Text("kind", "cancel");
  members.Text("report", cancel.report);
  members.Text("text", cancel.text);
}

void Write(CMembers& members, const OptionJudged& judged) {
  members.Text("kind", "judged");
  members.Text("strategy", judged.strategy);
  members.Text("symbol", judged.symbol);
  members.Digits("open", judged.openPrice);
  members.Flag("accepted", judged.accepted);
}

void Write(CMembers& members, const OrderAnswered& answer) {
  members.Text("kind", "answer");
  members.Text("strategy", answer.strategy);
  members.Text("symbol", answer.symbol);
  members.Number("action", answer.action);
  members.Number("result", answer.result);
}

void Write(CMembers& members, const StateChanged& change) {
  members.Text("kind", "state");
  members.Text("strategy", change.strategy);
  members.Number("state", change.state);
  members.Text("words", StateWords(change.state));
}

void Write(CMembers& members, const StrategyStarted& started) {
  members.Text("kind", "started");
  members.Text("strategy", started.strategy);
}

void Write(CMembers& members, const StrategyGone& gone) {
  members.Text("kind", "gone");
  members.Text("strategy", gone.strategy);
}

void Write(CMembers& members, const BatchPlaced& batch) {
  members.Text("kind", "batch");
  members.Text("strategy", batch.strategy);
  members.Number("cash", batch.cash);
}

void Write(CMembers& members, const OrderFilled& fill) {
  members.Text("kind", "fill");
  members.Text("strategy", fill.strategy);
  members.Text("symbol", fill.symbol);
  members.Text("report", fill.report);
  members.Flag("closes", fill.closes);
  members.Number("lots", fill.lots);
  members.Digits("price", DecimalText(fill.price));
  members.Number("filled", fill.filled);
  members.Number("sent", fill.sent);
}

void Write(CMembers& members, const PositionChanged& position) {
  members.Text("kind", "position");
  members.Text("strategy", position.strategy);
  members.Number("life", position.life);
  members.Text("run", position.run);
  members.Text("symbol", position.symbol);
  members.Number("bought", position.bought);
  members.Double("bought_at", position.boughtAt);
  members.Number("sold", position.sold);
  members.Double("sold_at", position.soldAt);
  members.Number("held", position.held);
}

void Write(CMembers& members, const PositionValued& valued) {
  members.Text("kind", "profit");
  members.Text("strategy", valued.strategy);
  members.Number("life", valued.life);
  members.Text("run", valued.run);
  members.Text("symbol", valued.symbol);
  members.Double("last", valued.last);
  members.Double("profit", valued.profit);
}

void Write(CMembers& members, const TagTotalChanged& total) {
  members.Text("kind", "total");
  members.Text("tag", total.tag);
  members.Number("cost", total.cost);
  members.Double("profit", total.profit);
}

void Write(CMembers& members, const LimitReached& limit) {
  members.Text("kind", "limit");
  members.Text("tag", limit.tag);
  members.Text("side", limit.side);
  members.Flag("percent", limit.isPercent);
  members.Digits("reached", limit.reached);
  members.Digits("limit", limit.limit);
}

void Write(CMembers& members, const RunEnded& ended) {
  members.Text("kind", "ended");
  members.Text("strategy", ended.strategy);
  members.Text("by", ended.reason);
}

void Write(CMembers& members, const WeightKnown& known) {
  members.Text("kind", "weight");
  members.Text("symbol", known.symbol);
  members.Number("weight", known.weight);
}

void Write(CMembers& members, const CommandRefused& refused) {
  members.Text("kind", "refused");
  members.Text("reason", refused.reason);
}

void Write(CMembers& members, const FaultReported& fault) {
  members.Text("kind", "fault");
  members.Text("thread", fault.thread);
  members.Text("code", fault.code);
  members.Text("text", fault.text);
}

}  // namespace

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
          [](const CommandRefused& refused) {
            return "not readable  the command isn't JSON: " + refused.reason;
          },
          [](const FaultReported& fault) {
            return fmt::format("fault         {} on {}: {}", fault.code, fault.thread, fault.text);
          },
      },
      happening);
}

std::string Json(std::string_view at, const Happening& happening) {
  CMembers members(at);
  std::visit([&members](const auto& what) { Write(members, what); }, happening);
  return members.Close();
}

}  // namespace iorder

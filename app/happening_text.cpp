#include "app/happening_text.h"

#include <fmt/format.h>

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
  const char* const what = answer.action == 2 ? "close order" : "order";
  const std::string symbol = SymbolWords(answer.symbol);
  switch (answer.result) {
    case -101:
      return fmt::format("refused       {} for {}: the account isn't connected", what, symbol);
    case -1:
    case -2:
      return fmt::format("rejected      {} for {}", what, symbol);
    case 1:
      return fmt::format("working       {} for {}", what, symbol);
    case 2:
      return fmt::format("filled        {} for {}", what, symbol);
    case 3:
      return fmt::format("cancelled     {} for {}", what, symbol);
    default:
      return fmt::format("answer {:<6} {} for {}", answer.result, what, symbol);
  }
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

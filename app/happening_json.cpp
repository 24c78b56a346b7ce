#include "app/happening_json.h"

#include "app/group_order_json.h"
#include "app/happening_text.h"
#include "app/object_writer.h"
#include "app/symbol_words.h"

namespace iorder {
namespace {

void Write(CObjectWriter& members, const OrderSent& order) {
  members.Text("kind", "order");
  members.Text("strategy", order.strategy);
  members.Text("account", order.account);
  members.Text("symbol", order.symbol);
  members.Text("side", SideWords(order.side));
  members.Number("lots", order.lots);
  if (order.price) {
    members.Digits("price", DecimalText(*order.price));
  } else if (!order.priceWords.empty()) {
    members.Text("price", order.priceWords);
  } else {
    members.Null("price");
  }
  members.Flag("closes", order.closes);
  if (order.group) WriteString(members, *order.group);
  members.Text("text", order.text);
}

void Write(CObjectWriter& members, const CancelSent& cancel) {
  members.Text("kind", "cancel");
  members.Text("report", cancel.report);
  members.Text("text", cancel.text);
}

void Write(CObjectWriter& members, const OptionJudged& judged) {
  members.Text("kind", "judged");
  members.Text("strategy", judged.strategy);
  members.Text("symbol", judged.symbol);
  members.Digits("open", judged.openPrice);
  members.Flag("accepted", judged.accepted);
}

void Write(CObjectWriter& members, const OrderAnswered& answer) {
  members.Text("kind", "answer");
  members.Text("strategy", answer.strategy);
  members.Text("symbol", answer.symbol);
  members.Number("action", answer.action);
  members.Number("result", answer.result);
}

void Write(CObjectWriter& members, const StateChanged& change) {
  members.Text("kind", "state");
  members.Text("strategy", change.strategy);
  members.Number("state", change.state);
  members.Text("words", StateWords(change.state));
}

void Write(CObjectWriter& members, const StrategyStarted& started) {
  members.Text("kind", "started");
  members.Text("strategy", started.strategy);
}

void Write(CObjectWriter& members, const StrategyGone& gone) {
  members.Text("kind", "gone");
  members.Text("strategy", gone.strategy);
}

void Write(CObjectWriter& members, const BatchPlaced& batch) {
  members.Text("kind", "batch");
  members.Text("strategy", batch.strategy);
  members.Number("cash", batch.cash);
}

void Write(CObjectWriter& members, const OrderFilled& fill) {
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

void Write(CObjectWriter& members, const PositionChanged& position) {
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

void Write(CObjectWriter& members, const PositionValued& valued) {
  members.Text("kind", "profit");
  members.Text("strategy", valued.strategy);
  members.Number("life", valued.life);
  members.Text("run", valued.run);
  members.Text("symbol", valued.symbol);
  members.Double("last", valued.last);
  members.Double("profit", valued.profit);
}

void Write(CObjectWriter& members, const TagTotalChanged& total) {
  members.Text("kind", "total");
  members.Text("tag", total.tag);
  members.Number("cost", total.cost);
  members.Double("profit", total.profit);
}

void Write(CObjectWriter& members, const LimitReached& limit) {
  members.Text("kind", "limit");
  members.Text("tag", limit.tag);
  members.Text("side", limit.side);
  members.Flag("percent", limit.isPercent);
  members.Digits("reached", limit.reached);
  members.Digits("limit", limit.limit);
}

void Write(CObjectWriter& members, const RunEnded& ended) {
  members.Text("kind", "ended");
  members.Text("strategy", ended.strategy);
  members.Text("by", ended.reason);
}

void Write(CObjectWriter& members, const WeightKnown& known) {
  members.Text("kind", "weight");
  members.Text("symbol", known.symbol);
  members.Number("weight", known.weight);
}

void Write(CObjectWriter& members, const CommandRefused& refused) {
  members.Text("kind", "refused");
  members.Text("reason", refused.reason);
}

void Write(CObjectWriter& members, const FaultReported& fault) {
  members.Text("kind", "fault");
  members.Text("thread", fault.thread);
  members.Text("code", fault.code);
  members.Text("text", fault.text);
}

}  // namespace

std::string Json(std::string_view at, const Happening& happening) {
  CObjectWriter members;
  members.Text("at", at);
  std::visit([&members](const auto& what) { Write(members, what); }, happening);
  return members.Close();
}

}  // namespace iorder

#include "tests/terminal/drawn_order_day.h"

#include <iterator>

namespace iorder::testing {
namespace {

constexpr int kSlots = 150;
constexpr int64_t kSlotMs = 100;

class CDraw {
 public:
  explicit CDraw(uint64_t seed) : m_random(seed) {}

  int64_t From(int64_t least, int64_t most) {
    return least + m_random.Below(static_cast<uint32_t>(most - least + 1));
  }
  bool OneIn(uint32_t count) { return m_random.Below(count) == 0; }

 private:
  CRandom m_random;
};

std::string TimeText(int64_t ms) {
  const int64_t time = ms + 45 * 60000;
  const auto two = [](int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  const std::string rest = std::to_string(1000 + time % 1000).substr(1);
  return "08:" + two(time / 60000) + ":" + two(time / 1000 % 60) + "." + rest;
}

DrawnOrderDay::Quote DrawQuote(CDraw& draw, int64_t at) {
  DrawnOrderDay::Quote quote;
  quote.at = at;
  quote.symbol = static_cast<int>(draw.From(0, 1));
  if (!draw.OneIn(4)) {
    quote.price = draw.From(5, 15);
    quote.quantity = draw.From(0, 9);
  }
  if (draw.OneIn(3)) {
    quote.bid = draw.From(4, 12);
    quote.bidQuantity = draw.From(0, 9);
  }
  if (draw.OneIn(3)) {
    quote.ask = draw.From(quote.bid.value_or(7) + 1, 16);
    quote.askQuantity = draw.From(0, 9);
  }
  return quote;
}

std::string Line(const DrawnOrderDay::Quote& quote) {
  std::string line =
      "{\"at\": \"" + TimeText(quote.at) + "\", \"quote\": \"" + DrawnSymbol(quote.symbol) + "\"";
  const auto add = [&](const char* key, const std::optional<int64_t>& value) {
    if (value) line += std::string(", \"") + key + "\": " + std::to_string(*value);
  };
  add("price", quote.price);
  add("qty", quote.quantity);
  add("bid", quote.bid);
  add("ask", quote.ask);
  add("bid_qty", quote.bidQuantity);
  add("ask_qty", quote.askQuantity);
  return line + "}\n";
}

DrawnOrderDay::Order DrawOrder(CDraw& draw, int64_t at) {
  DrawnOrderDay::Order order;
  order.at = at;
  order.symbol = static_cast<int>(draw.From(0, 1));
  order.isBuy = draw.OneIn(2);
  order.lots = draw.From(1, 12);
  const int64_t kind = draw.From(0, 9);
  if (kind < 7) {
    order.limit = draw.From(5, 15);
    order.works = !draw.OneIn(5);
  } else if (kind < 9) {
    order.bidTicks = draw.From(-3, 3);
  } else {
    order.works = draw.OneIn(2);
  }
  return order;
}

std::string Line(const DrawnOrderDay::Order& order) {
  std::string text = "NEW TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=" + DrawnSymbol(order.symbol);
  text += std::string(",SIDE=") + (order.isBuy ? "B" : "S") + ",QTY=" + std::to_string(order.lots);
  if (order.bidTicks) {
    const std::string sign = *order.bidTicks < 0 ? "" : "+";
    text += ",PRICESTRING=BID" + sign + std::to_string(*order.bidTicks) + "T";
  } else {
    text += ",PRICE=" + (order.limit ? std::to_string(*order.limit) + "0000000000" : "-9223372036854775808");
  }
  text += std::string(",ORDERTYPE=") + (order.limit || order.bidTicks ? "2" : "25");
  text += std::string(",POSITIONEFFECT=0,TIMEINFORCE=") + (order.works ? "1" : "2") + ",USERKEY2=K@1";
  return "{\"at\": \"" + TimeText(order.at) + "\", \"command\": \"" + text + "\"}\n";
}

void DrawCancel(CDraw& draw, int64_t at, DrawnOrderDay& day) {
  const size_t number = static_cast<size_t>(draw.From(1, static_cast<int64_t>(day.orders.size()) + 1));
  day.lines += "{\"at\": \"" + TimeText(at) + "\", \"command\": \"CANCEL REPORTID=R" +
               std::to_string(number) + "\"}\n";
  if (number <= day.orders.size() && !day.orders[number - 1].cancelledAt) {
    day.orders[number - 1].cancelledAt = at;
  }
}

}  // namespace

std::string DrawnSymbol(int symbol) {
  return "ND.O.TWF.TX.202403.C." + std::to_string(18000 + 100 * symbol);
}

std::string DrawnOrderDay::Head() const {
  return ", \"subscriptions\": \"open\", \"orders\": {\"latency_ms\": " + std::to_string(latency) +
         ", \"fill\": \"" + fill + "\", \"partial\": 0." + std::to_string(partialPercent) + ways + "}";
}

DrawnOrderDay DrawOrderDay(uint64_t seed, const std::string& ways) {
  constexpr const char* kFills[] = {"touch", "through", "immediate", "touch"};
  constexpr int64_t kLatencies[] = {0, 10, 30, 120};
  constexpr int64_t kShares[] = {99, 50, 30};
  CDraw draw(seed);
  DrawnOrderDay day;
  day.ways = ways;
  day.latency = kLatencies[draw.From(0, std::ssize(kLatencies) - 1)];
  day.fill = kFills[draw.From(0, std::ssize(kFills) - 1)];
  day.partialPercent = kShares[draw.From(0, std::ssize(kShares) - 1)];
  day.lines = R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"record": "Security.Info", "items": [{"name": "ND.O.TWF", "fields": {"ND.O.TWF.TX": "{\"TickSize\": \"1\"}"}}]}
)";
  for (int symbol = 0; symbol < 2; ++symbol) {
    day.lines += "{\"quote\": \"" + DrawnSymbol(symbol) + "\", \"mcode\": 1}\n";
  }
  for (int64_t slot = 0; slot < kSlots; ++slot) {
    if (draw.OneIn(3)) {
      day.orders.push_back(DrawOrder(draw, slot * kSlotMs));
      day.lines += Line(day.orders.back());
    }
    if (draw.OneIn(5)) {
      DrawCancel(draw, slot * kSlotMs + 25, day);
    }
    day.quotes.push_back(DrawQuote(draw, slot * kSlotMs + 50));
    day.lines += Line(day.quotes.back());
  }
  return day;
}

}  // namespace iorder::testing

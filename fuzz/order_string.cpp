#include "strategy/order_string.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "app/happening_reader.h"
#include "app/happening_text.h"
#include "fuzz/fuzz_target.h"
#include "platform/text.h"
#include "records/number_text.h"
#include "terminal/order_request.h"
#include "terminal/order_text.h"
#include "terminal/tick_ladder.h"

namespace iorder::fuzzing {
namespace {

std::wstring Joined(const OrderFields& fields) {
  std::wstring text;
  for (const auto& [key, value] : fields) text += (text.empty() ? L"" : L",") + key + L"=" + value;
  return text;
}

void CheckPrice(const OrderRequest& request, const CTickLadder& ladder) {
  if (request.words) {
    const ScaledValue price = ladder.Step(static_cast<ScaledValue>(kScale), request.words->ticks);
    Require(price > 0, "a price in words comes to a price");
    return;
  }
  if (request.isAtMarket) return;
  if (request.chase) {
    Require(request.chase->times >= 0 && request.chase->timeout >= Milliseconds(0), "a chase goes forward");
    return;
  }
  Require(request.price != NoValue, "a limit order has its price");
  Require(ladder.Step(request.price, 1) >= request.price, "a tick up is no lower price");
  const ScaledValue lower = ladder.Step(request.price, -1);
  Require(lower <= request.price || request.price <= 0 || lower == ladder.Step(0, -1),
          "a tick down is no higher price, but for the lowest one");
}

/// What a market takes has all that a market needs.
void CheckRequest(const OrderRequest& request, const CTickLadder& ladder) {
  if (!request.mistake.empty()) return;
  Require(request.quantity >= 1, "an order has lots");
  CheckPrice(request, ladder);
}

/// The engine's own orders are read as they were written, as long as no text in them holds a comma.
void CheckRoundTrip(const OrderFields& fields) {
  CStrategyIdentity identity;
  identity.m_strBrokerID = OrderField(fields, L"BROKERID");
  identity.m_strAccount = OrderField(fields, L"ACCOUNT");
  identity.m_strUserKey1 = OrderField(fields, L"USERKEY1");
  identity.m_strProcessID = OrderField(fields, L"PROCESSID");
  COrder order;
  order.strSymbol = OrderField(fields, L"SYMBOL");
  order.strSide = L"B";
  order.lQty = 1 + (LeadingInt32(OrderField(fields, L"QTY")) & 0xFFFF);
  order.llPrice = LeadingInt64(OrderField(fields, L"PRICE"));
  const OrderFields again = ParseOrderText(FormatOrder(identity, L"1", order));
  const OrderRequest request = ReadOrderRequest(again, true);
  Require(OrderField(again, L"BROKERID") == identity.m_strBrokerID, "the broker comes back");
  Require(OrderField(again, L"ACCOUNT") == identity.m_strAccount, "the account comes back");
  Require(OrderField(again, L"USERKEY1") == identity.m_strUserKey1, "a user's key comes back");
  Require(request.symbol == order.strSymbol, "the symbol comes back");
  Require(request.quantity == order.lQty, "the lots come back");
  Require(request.price == order.llPrice, "the price comes back");
  Require(request.mistake.empty() == (order.llPrice != NoValue), "a market takes the engine's orders");
}

}  // namespace
}  // namespace iorder::fuzzing

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace iorder;
  using namespace iorder::fuzzing;
  // The first line says the ticks of the product, the rest is an order or cancel string.
  const std::string_view input = TextOf(data, size);
  const size_t lineEnd = std::min(input.find('\n'), input.size());
  const CTickLadder ladder(ToWide(input.substr(0, lineEnd)));
  const std::string text(input.substr(std::min(lineEnd + 1, input.size())));

  const OrderFields fields = ParseOrderText(ToWide(text));
  Require(ParseOrderText(Joined(fields)) == fields, "the fields say all that was read");
  for (const bool chases : {false, true}) CheckRequest(ReadOrderRequest(fields, chases), ladder);
  CheckRoundTrip(fields);

  std::string words;
  CHappeningReader reader([&words](const Happening& happening) { words = Words(happening); });
  for (const char* const topic : {"TRADE.NEWORDER", "TRADE.CANCELORDER"}) {
    reader.OnCommand(topic, text);
    Require(words.find('\n') == std::string::npos || text.find('\n') != std::string::npos,
            "an order is told in one line");
  }
  return 0;
}

#include "app/happening_reader.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <optional>

#include "app/text_fields.h"
#include "records/json_document.h"

namespace iorder {
namespace {

constexpr std::string_view kEnginePrefix = "<CIntelligentOrder>";
constexpr std::string_view kStrategyPrefix = "[OpenLottery]<";
/// The sender says so in place of a price.
constexpr std::string_view kNoPriceText = "-9223372036854775808";

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// The value of a key in a comma-separated KEY=VALUE text; empty if it isn't there.
std::string_view OrderField(std::string_view order, std::string_view key) {
  while (!order.empty()) {
    std::string_view pair = order.substr(0, order.find(','));
    order.remove_prefix(std::min(order.size(), pair.size() + 1));
    if (pair.size() > key.size() && pair.starts_with(key) && pair[key.size()] == '=') {
      return pair.substr(key.size() + 1);
    }
  }
  return {};
}

/// A group order's string has no price of its own, and its user keys are the client's.
GroupString ReadGroupString(std::string_view text) {
  GroupString group;
  group.order.id = OrderField(text, "STRATEGY");
  group.groupId = OrderField(text, "GROUPID");
  group.chase = OrderField(text, "CHASEPRICE");
  return group;
}

void ReadOwnerAndPrice(std::string_view text, OrderSent& order) {
  if (OrderField(text, "SYNTHETIC") == "1") {
    order.group = ReadGroupString(text);
    return;
  }
  const std::string_view owner = OrderField(text, "USERKEY2");
  order.strategy = owner.substr(0, owner.find('@'));
  const std::string_view price = OrderField(text, "PRICE");
  if (price != kNoPriceText) order.price = ReadInteger(price);
  order.priceWords = OrderField(text, "PRICESTRING");
}

OrderSent ReadOrder(std::string_view text) {
  OrderSent order;
  ReadOwnerAndPrice(text, order);
  order.account = std::string(OrderField(text, "BROKERID")) + '/' + std::string(OrderField(text, "ACCOUNT"));
  order.symbol = OrderField(text, "SYMBOL");
  order.side = OrderField(text, "SIDE");
  order.lots = ReadInteger(OrderField(text, "QTY")).value_or(0);
  order.closes = OrderField(text, "POSITIONEFFECT") == "1";
  order.text = text;
  return order;
}

}  // namespace

void CHappeningReader::OnCommand(std::string_view topic, std::string_view text) {
  if (topic == "TRADE.NEWORDER") {
    m_tell(ReadOrder(text));
  } else if (topic == "TRADE.CANCELORDER") {
    m_tell(CancelSent{std::string(OrderField(text, "REPORTID")), std::string(text)});
  } else if (topic == "MSG.NewStrategyOrder") {
    // The same text goes out on a second topic.
    OnMessage(text);
  } else if (topic == "API_MSG.NewStrategyOrder" && text.find("\"TotalProfit\"") != std::string_view::npos) {
    m_positions.OnTotal(text);
  }
}

void CHappeningReader::OnMessage(std::string_view json) {
  rapidjson::Document message;
  if (ParseJson(std::string(json), message)) return;
  const std::string strategy = TextOf(message, "StrategyType") + '_' + TextOf(message, "StrategyID") + '_' +
                               TextOf(message, "StrategySN");
  const std::string kind = TextOf(message, "MsgType");
  if (kind == "ClearReport") m_positions.OnClear(strategy, TextOf(message, "StrategyTag"));
  const rapidjson::Value* const data = FindMember(message, "Data");
  if (data == nullptr) return;
  if (kind == "Scanner") {
    const rapidjson::Value* const price = FindMember(*data, "OpenPrice");
    const std::optional<int64_t> accepted = IntegerOf(*data, "OpenPriceOK");
    if (price == nullptr || !accepted) return;
    m_tell(OptionJudged{strategy, TextOf(*data, "Symbol"), WriteJson(*price), *accepted == 1});
  } else if (kind == "Order") {
    const int64_t result = IntegerOf(*data, "Result").value_or(0);
    const int64_t action = IntegerOf(*data, "Action").value_or(0);
    // An announcement: the order or cancel itself follows.
    const bool announces = FindMember(*data, "Date") != nullptr;
    if (!announces) m_tell(OrderAnswered{strategy, TextOf(*data, "Symbol"), action, result});
  } else {
    m_positions.OnMessage(strategy, kind, *data);
  }
}

void CHappeningReader::OnLog(std::string_view text) {
  TakePrefix(text, kEnginePrefix);
  if (TakePrefix(text, kStrategyPrefix)) {
    const size_t end = text.find("> ");
    if (end == std::string_view::npos) return;
    // Behind the key stands the number of the object.
    const std::string_view owner = text.substr(0, end);
    OnStrategyLog(std::string(owner.substr(0, owner.rfind('.'))), text.substr(end + 2));
  } else if (text.starts_with("[OpenLottery] Start. ")) {
    const std::string strategy(Between(text, "strStrategyKey=", ", idx=").value_or(""));
    if (m_states.try_emplace(strategy, -1).second) m_tell(StrategyStarted{strategy});
  } else if (const auto gone = Between(text, "DelStrategy. StrategyKey=", "\n")) {
    // The line ends with a full stop of its own.
    const std::string strategy(gone->substr(0, gone->rfind('.')));
    m_ending.erase(strategy);
    m_positions.OnGone(strategy);
    if (m_states.erase(strategy) != 0) m_tell(StrategyGone{strategy});
  } else if (text.starts_with("JSON Parse Fail! ")) {
    m_tell(CommandRefused{std::string(Between(text, "JSON Parse Fail! ", ", strOrderInfo=").value_or(""))});
  } else {
    m_positions.OnLog(text);
  }
}

void CHappeningReader::OnStrategyLog(const std::string& strategy, std::string_view text) {
  m_positions.OnStrategyLog(strategy, text);
  if (text.starts_with("Reset. ")) {
    m_ending.erase(strategy);
    ChangeState(strategy, 0);
  } else if (text.starts_with("TimeStamp=")) {
    ChangeState(strategy, 1);
  } else if (text == "Start. m_lStatus=1.") {
    ChangeState(strategy, 2);
  } else if (text == "Wait Reset.") {
    m_ending.insert(strategy);
    ChangeState(strategy, -1);
  } else if (text == "Stop.") {
    m_ending.insert(strategy);
    ChangeState(strategy, -2);
  } else if (text.starts_with("DoPlaceOrder Done. ")) {
    if (const auto cash = IntegerBetween(text, "llTotalCashOrder=", "."))
      m_tell(BatchPlaced{strategy, *cash});
    if (const auto state = IntegerBetween(text, "m_lStatus=", ",")) ChangeState(strategy, *state);
  } else if (text.starts_with("DoPlaceOrder. m_lStatus=") || text.starts_with("Start. m_lStatus=")) {
    if (const auto state = IntegerBetween(text, "m_lStatus=", ".")) ChangeState(strategy, *state);
  } else if (text.starts_with("DoCancelOrderOpen Done. ")) {
    // At a stop the state that the cancels leave lasts for a moment only, and what follows isn't logged.
    const auto state = IntegerBetween(text, "m_lStatus=", ".");
    if (state && !m_ending.contains(strategy)) ChangeState(strategy, *state);
  } else if (text.starts_with("OnReportUpdate. ")) {
    if (const auto state = IntegerBetween(text, "m_lStatus=", ",")) ChangeState(strategy, *state);
  }
}

void CHappeningReader::ChangeState(const std::string& strategy, int64_t state) {
  const auto [known, isNew] = m_states.try_emplace(strategy, state);
  if (!isNew && known->second == state) return;
  known->second = state;
  m_tell(StateChanged{strategy, state});
}

void CHappeningReader::OnFault(std::string_view thread, std::string_view code, std::string_view text) {
  m_tell(FaultReported{std::string(thread), std::string(code), std::string(text)});
}

}  // namespace iorder

#include "tests/checkers/order_checker.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>

namespace iorder::testing {
namespace {

constexpr std::string_view kSent = "NewOrder. ";
constexpr std::string_view kCancelled = "CancelOrder. ";
constexpr std::string_view kWorkedOut = "GetCalOrderPrice(c). ";
constexpr int64_t kMostLots = 100;

bool IsNumber(const std::string& text) {
  int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

/// A decimal's ten places; none if it has other characters.
std::optional<Scaled> PlacesOf(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return ScaledOf(number);
}

/// The tick at a price, of "0.1" or "0:0.1;10:0.5;50:1"; 0: none.
Scaled TickAt(std::string_view ladder, Scaled price) {
  if (ladder.find(':') == std::string_view::npos) return PlacesOf(ladder).value_or(0);
  Scaled tick = ScaledOf(1.0);
  while (!ladder.empty()) {
    const std::string_view band = ladder.substr(0, ladder.find(';'));
    ladder.remove_prefix(std::min(band.size() + 1, ladder.size()));
    const size_t colon = band.find(':');
    if (colon == std::string_view::npos) break;
    if (price < PlacesOf(band.substr(0, colon)).value_or(0)) break;
    tick = PlacesOf(band.substr(colon + 1)).value_or(0);
  }
  return tick;
}

/// "BID-3T" of a type's ticks.
std::string BidWords(int64_t ticks) {
  return ticks > 0 ? fmt::format("BID-{}T", ticks) : fmt::format("BID+{}T", -ticks);
}

std::string SaleText(const std::string& type, int64_t ticks) {
  constexpr std::string_view kNoPrice = "PRICE=-9223372036854775808";
  if (type == "MWP") return fmt::format("{},ORDERTYPE=25,POSITIONEFFECT=1,TIMEINFORCE=2", kNoPrice);
  if (type == "M") return fmt::format("{},ORDERTYPE=1,POSITIONEFFECT=1,TIMEINFORCE=2", kNoPrice);
  return fmt::format("PRICESTRING={},ORDERTYPE=2,POSITIONEFFECT=1,TIMEINFORCE=1", BidWords(ticks));
}

}  // namespace

void COrderChecker::OnStep(const TraceStep& step) {
  if (const auto attribute = ReadAttribute(step)) {
    if (attribute->name == "TickSize") m_ticks[attribute->symbol] = attribute->value;
  } else if (step.LineStarts(kWorkedOut)) {
    m_worked[{step.strategy, FieldText(step.line, "Symbol").value_or("")}] =
        ScaledOf(FieldDecimal(step.line, "dbOrderPrice"));
  } else if (step.LineStarts(kSent) || step.LineStarts(kCancelled)) {
    const size_t begin = step.line.find(". ") + 2;
    m_announced[step.thread] = {step.strategy, step.line.substr(begin, step.line.size() - begin - 1)};
  } else if (step.IsCommand(kNewOrder) || step.IsCommand(kCancelOrder)) {
    const Announced announced = std::exchange(m_announced[step.thread], {});
    const KnownStrategy* const strategy = m_book.Find(announced.strategy);
    if (strategy == nullptr) {
      if (step.text.find("STRATEGYNAME=OpenLottery") != std::string::npos || step.IsCommand(kCancelOrder))
        Complain(step.at, "leaves without a line in the log: " + step.text);
      return;
    }
    if (announced.text != step.text) Complain(step.at, "differs from its line in the log: " + step.text);
    OnOrder(step, *strategy);
  }
}

void COrderChecker::OnOrder(const TraceStep& step, const KnownStrategy& strategy) {
  if (step.IsCommand(kCancelOrder)) {
    const std::string report = FieldText(step.text, "REPORTID").value_or("");
    if (step.text != "REPORTID=" + report || step.first != 1 || step.second != 1)
      Complain(step.at, "isn't of a cancel's form: " + step.text);
    return;
  }
  if (step.first != 1 || step.second != 2) Complain(step.at, "leaves with other integers: " + step.text);
  CheckTemplate(step, strategy);
  if (FieldText(step.text, "SIDE") == "B") {
    CheckBuy(step, strategy);
  } else {
    CheckSale(step, strategy);
  }
}

void COrderChecker::CheckTemplate(const TraceStep& step, const KnownStrategy& strategy) {
  const auto field = [&](std::string_view name) { return FieldText(step.text, name).value_or("?"); };
  const OrderInfo& info = strategy.info;
  const std::string price =
      FieldText(step.text, "PRICE") ? "PRICE=" + field("PRICE") : "PRICESTRING=" + field("PRICESTRING");
  const std::string expected = fmt::format(
      "TYPE=O,BROKERID={},ACCOUNT={},SYMBOL={},SIDE={},QTY={},{},ORDERTYPE={},POSITIONEFFECT={},TIMEINFORCE={"
      "},"
      "SYNTHETIC=0,STRATEGYNAME=OpenLottery,USERKEY1={},USERKEY2={},USERKEY3={},PROCESSID={}",
      info.broker, info.account, field("SYMBOL"), field("SIDE"), field("QTY"), price, field("ORDERTYPE"),
      field("POSITIONEFFECT"), field("TIMEINFORCE"), info.userKey1, field("USERKEY2"), info.userKey3,
      field("PROCESSID"));
  const bool isNumeric = IsNumber(field("QTY")) && IsNumber(field("PROCESSID"));
  const bool isOfStrategy = field("USERKEY2").starts_with(info.key + "@");
  if (step.text != expected || !isNumeric || !isOfStrategy)
    ComplainByInfo(step.at, strategy.number, "isn't of the form " + expected + ": " + step.text);
}

void COrderChecker::CheckBuy(const TraceStep& step, const KnownStrategy& strategy) {
  const int64_t lots = FieldInteger(step.text, "QTY");
  if (lots < 1 || lots > kMostLots) Complain(step.at, fmt::format("buys {} lots: {}", lots, step.text));
  if (step.text.find(",ORDERTYPE=2,POSITIONEFFECT=0,TIMEINFORCE=1,") == std::string::npos)
    Complain(step.at, "isn't a limit order that opens: " + step.text);
  if (step.thread != kBatchThread) Complain(step.at, "a buy leaves from " + step.thread);
  const std::string symbol = FieldText(step.text, "SYMBOL").value_or("");
  const Scaled price = FieldInteger(step.text, "PRICE");
  Scaled expected = strategy.info.price;
  if (strategy.info.calculates) {
    const auto worked = m_worked.find({strategy.number, symbol});
    expected = worked == m_worked.end() ? kNone : worked->second;
    CheckTick(step, symbol, price);
  }
  // One more conversion to a double and back may move a large price by its last place.
  const bool isKnown = price != kNone && expected != kNone;
  if (!isKnown || std::abs(price - expected) > 1)
    ComplainByInfo(step.at, strategy.number, fmt::format("buys at {} in place of {}", price, expected));
}

void COrderChecker::CheckTick(const TraceStep& step, const std::string& symbol, Scaled price) {
  const auto found = m_ticks.find(symbol);
  const Scaled tick = found == m_ticks.end() ? 0 : TickAt(found->second, price);
  // A price that was rounded up to the next band lies on that band's first tick.
  if (tick > 0 && price % tick > 1 && tick - price % tick > 1)
    Complain(step.at, fmt::format("the price {} isn't on the tick {}: {}", price, tick, step.text));
}

void COrderChecker::CheckSale(const TraceStep& step, const KnownStrategy& strategy) {
  const OrderInfo& info = strategy.info;
  if (FieldText(step.text, "SIDE") != "S") Complain(step.at, "has no side: " + step.text);
  if (FieldInteger(step.text, "QTY") < 1) Complain(step.at, "sells nothing: " + step.text);
  const std::string byTime = SaleText(info.closeType, info.closeTicks);
  const std::string byProfit = SaleText(info.profitCloseType, info.profitCloseTicks);
  if (step.text.find("," + byTime + ",") == std::string::npos &&
      step.text.find("," + byProfit + ",") == std::string::npos)
    ComplainByInfo(step.at, strategy.number,
                   fmt::format("a close is neither '{}' nor '{}': {}", byTime, byProfit, step.text));
}

}  // namespace iorder::testing

#include "tests/checkers/batch_checker.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace iorder::testing {
namespace {

constexpr std::string_view kNewSymbols = "DoPlaceOrder. arSymbol.GetCount()";
constexpr std::string_view kScanned = "DoPlaceOrder. m_arScannedSymbolCall";
constexpr std::string_view kWorkedOut = "GetCalOrderPrice(c). ";
constexpr std::string_view kNotPlaced = "NewOrderOpen Fail. ";
constexpr std::string_view kSent = "NewOrder. ";
constexpr std::string_view kRefused = "NewOrder Fail. Account not Ready. ";
constexpr std::string_view kDone = "DoPlaceOrder Done. ";
constexpr double kNoPrice = 9.223372036854776e18;
constexpr int kMostPasses = 100;

/// The tokens of a symbol from `begin` on, up to `end`.
std::string Tokens(const std::string& symbol, int begin, int end) {
  std::string tokens;
  size_t at = 0;
  for (int i = 0; i < end && at <= symbol.size(); ++i) {
    const size_t dot = std::min(symbol.find('.', at), symbol.size());
    if (i >= begin) tokens += (tokens.empty() ? "" : ".") + symbol.substr(at, dot - at);
    at = dot + 1;
  }
  return tokens;
}

Scaled StrikeOf(const std::string& symbol) {
  const std::string text =
      Tokens(symbol, 6, 7) + (Tokens(symbol, 7, 8).empty() ? "" : "." + Tokens(symbol, 7, 8));
  double strike = 0;
  std::from_chars(text.data(), text.data() + text.size(), strike);
  return ScaledOf(strike);
}

/// A price in ten places as the engine's double of it.
double PriceOf(Scaled price) {
  return static_cast<double>(price) / 1e10 + (price > 0 ? 5e-12 : -5e-12);
}

std::string StampAt(LocalTime at) {
  const DateTime time = ToDateTime(at);
  return fmt::format("{:02}{:02}{:02}{:03}", time.hour, time.minute, time.second, time.millisecond);
}

/// The lots that each price gets, in the order in which they are served, and the cash that is left.
std::pair<std::vector<int64_t>, int64_t> Spread(const std::vector<double>& prices, double weight,
                                                int64_t cash) {
  std::vector<int64_t> lots(prices.size());
  int64_t left = cash;
  bool added = true;
  for (int pass = 0; added && pass < kMostPasses; ++pass) {
    added = false;
    for (size_t i = 0; i < prices.size(); ++i) {
      if (prices[i] == kNoPrice) continue;
      const auto cost = static_cast<int64_t>(prices[i] * weight);
      if (cost < 1) {
        left = -1;
      } else if (left >= cost) {
        left -= cost;
        ++lots[i];
        added = true;
      }
    }
  }
  return {lots, left};
}

}  // namespace

void CBatchChecker::OnStep(const TraceStep& step) {
  if (const auto attribute = ReadAttribute(step); attribute && attribute->name == "Weight")
    m_weights[attribute->symbol] = attribute->AsWeight();
  if (step.IsCommand(kNewOrder)) {
    if (const KnownStrategy* const strategy = m_book.Find(std::exchange(m_sending[step.thread], 0)))
      CheckStamp(step, *strategy);
  }
  if (const KnownStrategy* const strategy = m_book.Find(step.strategy)) OnStrategyLine(step, *strategy);
}

void CBatchChecker::OnStrategyLine(const TraceStep& step, const KnownStrategy& strategy) {
  Course& course = m_courses[step.strategy];
  if (step.LineStarts("Reset. ")) {
    course.taken.clear();
    course.isHot = strategy.info.chain.ends_with(".HOT");
    course.wasHot |= course.isHot;
  }
  if (step.LineStarts("LogOpenPrice. ") && course.isHot)
    course.chain = Tokens(FieldText(step.line, "Symbol").value_or(""), 0, 5);
  if (step.LineStarts(kSent)) m_sending[step.thread] = step.strategy;
  if (step.thread != kBatchThread) return;
  Batch& batch = course.batch;
  if (step.LineStarts(kNewSymbols)) {
    batch = {};
    batch.newSymbols = FieldInteger(step.line, "arSymbol.GetCount()");
    batch.isOpen = batch.newSymbols > 0;
    if (batch.isOpen) course.stamp = StampAt(step.at);
  } else if (!batch.isOpen) {
    return;
  } else if (step.LineStarts(kScanned)) {
    batch.calls = FieldInteger(step.line, "m_arScannedSymbolCall.GetCount()");
    batch.puts = FieldInteger(step.line, "m_arScannedSymbolPut.GetCount()");
  } else if (step.LineStarts(kWorkedOut)) {
    const double price = FieldDecimal(step.line, "dbOrderPrice");
    batch.worked[FieldText(step.line, "Symbol").value_or("")] =
        price >= kNoPrice ? kNoPrice : PriceOf(ScaledOf(price));
  } else if (step.LineStarts(kNotPlaced)) {
    OnPlaced(step, batch, FieldText(step.line, "Symbol").value_or(""), 0);
  } else if (step.LineStarts(kSent) || step.LineStarts(kRefused)) {
    if (FieldText(step.line, "SIDE") == "B")
      OnPlaced(step, batch, FieldText(step.line, "SYMBOL").value_or(""), FieldInteger(step.line, "QTY"));
  } else if (step.LineStarts(kDone)) {
    OnDone(step, strategy, course);
    batch.isOpen = false;
  }
}

void CBatchChecker::OnPlaced(const TraceStep& step, Batch& batch, const std::string& symbol, int64_t lots) {
  const bool isCall = symbol.find(".C.") != std::string::npos;
  if (!isCall && symbol.find(".P.") == std::string::npos)
    Complain(step.at, "a batch places what is no option: " + symbol);
  batch.placed.push_back({symbol, lots, isCall, StrikeOf(symbol)});
}

void CBatchChecker::OnDone(const TraceStep& step, const KnownStrategy& strategy, Course& course) {
  Batch& batch = course.batch;
  CheckOrder(step, batch);
  CheckLots(step, strategy, course);
  std::set<std::string> symbols;
  for (const Placed& placed : batch.placed) symbols.insert(placed.symbol);
  if (!std::includes(symbols.begin(), symbols.end(), course.taken.begin(), course.taken.end()))
    Complain(step.at, "a batch leaves out a symbol of the batch before it");
  const auto added = static_cast<int64_t>(symbols.size() - std::min(course.taken.size(), symbols.size()));
  if (added > batch.newSymbols)
    Complain(step.at, fmt::format("a batch of {} new symbols has {}", batch.newSymbols, added));
  course.taken = symbols;
}

void CBatchChecker::CheckOrder(const TraceStep& step, const Batch& batch) {
  const auto calls = std::count_if(batch.placed.begin(), batch.placed.end(),
                                   [](const Placed& placed) { return placed.isCall; });
  const auto puts = static_cast<int64_t>(batch.placed.size()) - calls;
  if (calls != batch.calls || puts != batch.puts)
    Complain(step.at, fmt::format("a batch of {} calls and {} puts places {} and {}", batch.calls, batch.puts,
                                  calls, puts));
  for (size_t i = 1; i < batch.placed.size(); ++i) {
    const Placed& before = batch.placed[i - 1];
    const Placed& next = batch.placed[i];
    const bool isBehind = before.isCall == next.isCall
                              ? (next.isCall ? before.strike >= next.strike : before.strike <= next.strike)
                              : before.isCall;
    if (!isBehind) Complain(step.at, next.symbol + " is served behind " + before.symbol);
  }
}

void CBatchChecker::CheckLots(const TraceStep& step, const KnownStrategy& strategy, const Course& course) {
  const Batch& batch = course.batch;
  std::vector<double> prices;
  for (const Placed& placed : batch.placed) {
    const auto worked = batch.worked.find(placed.symbol);
    const bool isWorked = strategy.info.calculates && worked != batch.worked.end();
    prices.push_back(isWorked                   ? worked->second
                     : strategy.info.calculates ? kNoPrice
                                                : strategy.info.priceValue);
  }
  const double weight = WeightOf(course);
  const auto [lots, left] = Spread(prices, weight, strategy.info.cash);
  for (size_t i = 0; i < lots.size(); ++i) {
    if (lots[i] != batch.placed[i].lots)
      ComplainByInfo(step.at, strategy.number,
                     fmt::format("{} gets {} lots in place of {}", batch.placed[i].symbol,
                                 batch.placed[i].lots, lots[i]));
  }
  const int64_t told = FieldInteger(step.line, "llTotalCashOrder");
  const auto spent =
      static_cast<int64_t>(static_cast<uint64_t>(strategy.info.cash) - static_cast<uint64_t>(left));
  if (told != spent)
    ComplainByInfo(step.at, strategy.number,
                   fmt::format("a batch tells a cash of {} in place of {}", told, spent));
}

void CBatchChecker::CheckStamp(const TraceStep& step, const KnownStrategy& strategy) {
  const std::string userKey = FieldText(step.text, "USERKEY2").value_or("");
  const std::string expected = strategy.info.key + "@" + m_courses[strategy.number].stamp;
  if (userKey != expected)
    ComplainByInfo(step.at, strategy.number,
                   fmt::format("an order carries '{}' in place of '{}'", userKey, expected));
}

/// A chain of a fixed month has no resolved symbol of its own, so that its weight is 1, or that of the hot
/// chain before it.
double CBatchChecker::WeightOf(const Course& course) const {
  const std::string placed = course.batch.placed.empty() ? std::string() : course.batch.placed.front().symbol;
  const bool isUnknown = course.wasHot && course.chain.empty();
  const auto found = m_weights.find(isUnknown ? Tokens(placed, 0, 5) : course.chain);
  return found == m_weights.end() ? 1.0 : found->second;
}

}  // namespace iorder::testing

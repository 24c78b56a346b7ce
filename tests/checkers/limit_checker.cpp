#include "tests/checkers/limit_checker.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace iorder::testing {
namespace {

constexpr std::string_view kTakenUp = "<CIntelligentOrder>New Intelligent Order : ";
constexpr std::string_view kMonitor = "<CIntelligentOrder>[OpenLottery] CalPositionProfit.";
constexpr int32_t kSetLimits = 3;
constexpr double kNear = 1e-5;

const JsonNode* BlockOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  return node != nullptr && node->IsObject() ? node : nullptr;
}

double NumberOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  return node != nullptr && node->kind == JsonNode::Kind::kNumber ? DecimalOf(object, name) : -1.0;
}

double Hundredths(double number) {
  return std::trunc(number * 100.0);
}

/// By how much an amount above 0 is above its limit; below 0 if it isn't. None where there is no limit.
std::optional<double> Above(int64_t enable, int64_t value, double percent, double cost, double amount) {
  if (enable == 0) return std::nullopt;
  if (Hundredths(percent) > 0) return amount / cost * 10000.0 - Hundredths(percent);
  if (value > 0) return amount - static_cast<double>(value);
  return std::nullopt;
}

}  // namespace

void CLimitChecker::OnStep(const TraceStep& step) {
  if (step.IsLog() && step.text.starts_with(kTakenUp)) {
    OnCommand(step.text.substr(kTakenUp.size()));
  } else if (step.IsLog() && step.text.starts_with(kMonitor)) {
    OnFired(step);
  } else if (step.LineStarts("OnPositionProfit Result. ")) {
    if (const KnownStrategy* const strategy = m_book.Find(step.strategy)) m_due.insert(strategy->info.tag);
  }
}

void CLimitChecker::OnCommand(const std::string& text) {
  JsonNode command;
  try {
    command = ParseJson(text, {});
  } catch (const InputError&) {
    return;
  }
  if (TextOf(command, "StrategyType") != "OpenLottery" || ActionOf(command) != kSetLimits) return;
  const std::string tag = TagOf(command);
  Limits& limits = m_limits[tag];
  m_former[tag].push_back(limits);
  for (const auto& [name, side] : {std::pair{"Profit", &limits.profit}, std::pair{"Loss", &limits.loss}}) {
    const JsonNode* const block = BlockOf(command, name);
    if (block == nullptr) continue;
    side->enable = WholeOf(*block, "Enable", INT32_MIN, INT32_MAX).value_or(0);
    side->value = static_cast<int64_t>(NumberOf(*block, "Value"));
    side->percent = NumberOf(*block, "Value%");
  }
  m_due.insert(tag);
}

void CLimitChecker::OnFired(const TraceStep& step) {
  const std::string_view words = std::string_view(step.text).substr(kMonitor.size());
  if (words.starts_with("ClosPos.")) {
    m_told.insert(FieldText(words, "strStrategyID").value_or("") + " " +
                  FieldText(words, "m_strStrStrategySN").value_or(""));
    return;
  }
  Fired fired;
  fired.tag = FieldText(words, "strStrategyTag").value_or("");
  fired.isLoss = words.starts_with("L");
  fired.isPercent = words.starts_with("PP.") || words.starts_with("LP.");
  fired.reached = FieldDecimal(words, fired.isPercent ? "dbTotalPnLP" : "dbTotalPnL");
  const std::string limit = fired.isLoss ? (fired.isPercent ? "dbLossValueP" : "llLossValue")
                                         : (fired.isPercent ? "dbProfitValueP" : "llProfitValue");
  fired.limit = FieldDecimal(words, limit);
  m_fired.push_back(fired);
}

void CLimitChecker::OnMomentEnd(LocalTime at) {
  for (const Fired& fired : m_fired) CheckFired(at, fired);
  for (const std::string& tag : m_due) CheckMissed(at, tag);
  m_former.clear();
  m_due.clear();
  m_fired.clear();
  m_told.clear();
}

std::vector<Totals> CLimitChecker::SumsOf(const std::string& tag, LocalTime at) const {
  std::vector<Totals> sums{Totals()};
  for (const KnownStrategy* const strategy : m_book.OfTag(tag, at)) {
    std::vector<Totals> choices = m_profits.InMoment(strategy->number);
    if (strategy->goneAt) choices.emplace_back();
    std::vector<Totals> next;
    for (const Totals& sum : sums) {
      for (const Totals& choice : choices) {
        next.push_back(sum);
        next.back() += choice;
      }
    }
    sums = std::move(next);
  }
  return sums;
}

bool CLimitChecker::IsUnsure(const std::string& tag, LocalTime at) const {
  if (m_book.HasChanged(at)) return true;
  const auto strategies = m_book.OfTag(tag, at);
  return std::any_of(strategies.begin(), strategies.end(), [&](const KnownStrategy* strategy) {
    return m_positions.IsUnsure(strategy->number, at);
  });
}

/// The amount is the tag's, in this moment, and at its limit or beyond.
void CLimitChecker::CheckFired(LocalTime at, const Fired& fired) {
  if (m_book.HasChanged(at)) return;
  for (const KnownStrategy* const strategy : m_book.OfTag(fired.tag, at)) {
    const std::string& key = strategy->info.key;
    const std::string name = key.substr(key.find('_') + 1);
    const bool isTold = std::any_of(m_told.begin(), m_told.end(), [&](std::string told) {
      std::replace(told.begin(), told.end(), ' ', '_');
      return told == name;
    });
    if (!isTold && !strategy->goneAt) Complain(at, "a limit fired and doesn't close out " + key);
  }
  if (IsUnsure(fired.tag, at)) return;
  std::vector<Limits> limits = m_former[fired.tag];
  limits.push_back(m_limits[fired.tag]);
  const std::vector<Totals> sums = SumsOf(fired.tag, at);
  const bool isRight = std::any_of(sums.begin(), sums.end(), [&](const Totals& sum) {
    return std::any_of(limits.begin(), limits.end(), [&](const Limits& set) {
      const Side& side = fired.isLoss ? set.loss : set.profit;
      const auto cost = static_cast<double>(sum.cost.exact);
      const double amount = static_cast<double>(sum.profit.exact) * (fired.isLoss ? -1.0 : 1.0);
      const double reached = fired.isPercent ? amount / cost * 100.0 : amount;
      const double limit = fired.isPercent ? side.percent : static_cast<double>(side.value);
      const bool hasPercent = Hundredths(side.percent) > 0;
      return side.enable != 0 && fired.isPercent == hasPercent && std::abs(fired.limit - limit) < kNear &&
             std::abs(fired.reached - reached) < kNear && reached > limit - 0.011 * fired.isPercent - kNear;
    });
  });
  if (!isRight)
    Complain(at, fmt::format("a limit of {} fires for '{}' at {}, which its strategies don't come to",
                             fired.limit, fired.tag, fired.reached));
}

/// The last pass of the moment saw the last totals and the last limits.
void CLimitChecker::CheckMissed(LocalTime at, const std::string& tag) {
  if (IsUnsure(tag, at)) return;
  const auto hasFired =
      std::any_of(m_fired.begin(), m_fired.end(), [&](const Fired& fired) { return fired.tag == tag; });
  const auto found = m_limits.find(tag);
  if (hasFired || found == m_limits.end()) return;
  Totals sum;
  for (const KnownStrategy* const strategy : m_book.OfTag(tag, at)) {
    const std::vector<Totals> now = m_profits.Now(strategy->number);
    if (strategy->goneAt || now.size() > 1) return;
    sum += now.front();
  }
  const auto cost = static_cast<double>(sum.cost.exact);
  const auto profit = static_cast<double>(sum.profit.exact);
  if (cost < 0.01 + kNear || std::abs(profit) < 0.01 + kNear) return;
  const Side& side = profit > 0 ? found->second.profit : found->second.loss;
  const std::optional<double> above = Above(side.enable, side.value, side.percent, cost, std::abs(profit));
  if (above && *above > kNear)
    Complain(at, fmt::format("'{}' is at {} on a cost of {}, and its limit doesn't fire", tag, profit, cost));
}

}  // namespace iorder::testing

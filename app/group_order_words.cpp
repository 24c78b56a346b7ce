#include "app/group_order_words.h"

#include <fmt/format.h>

#include "app/symbol_words.h"
#include "app/text_fields.h"
#include "records/exec_type.h"

namespace iorder {
namespace {

std::string Line(std::string_view what, const GroupOrderName& order, std::string_view words) {
  return fmt::format("{:<14}{}: {}", what, GroupOrderWords(order), words);
}

/// The sum of a stop condition by its name.
std::string SumName(const GroupOrderLooked& look) {
  if (look.field.empty()) return "a sum without a field";
  return look.factor == 1 ? look.field : fmt::format("{} x {}", look.field, PriceText(look.factor));
}

constexpr double kDeltaScale = 100;

bool IsDelta(const std::string& field) {
  return field == "Delta";
}

/// To six places: enough for a reader.
std::string ShortFigure(const std::string& field, ScaledValue figure) {
  if (figure == NoValue) return "none";
  return PriceText(static_cast<double>(figure) / kScale / (IsDelta(field) ? kDeltaScale : 1));
}

/// How far off a figure is; nothing for one that is met.
std::string OffWords(const GroupCandidate& candidate, const std::string& field) {
  if (candidate.isWrapped) return ", too far off to count";
  return candidate.distance == 0 ? "" : ", off by " + ShortFigure(field, candidate.distance);
}

std::string ChoiceWords(const GroupLegChosen& leg) {
  const std::string wanted =
      leg.field.empty() ? "no condition" : leg.field + ' ' + ShortFigure(leg.field, leg.wanted);
  if (leg.symbol.empty()) return "no option for " + wanted;
  const std::string symbol = SymbolWords(leg.symbol);
  if (!leg.found) return fmt::format("{} as before, no option for {}", symbol, wanted);
  if (leg.field.empty()) return fmt::format("{} by {}", symbol, wanted);
  if (leg.found->figure == NoValue) return fmt::format("{}, no figure yet for {}", symbol, wanted);
  return fmt::format("{}, {} {} for {}{}", symbol, leg.field, ShortFigure(leg.field, leg.found->figure),
                     ShortFigure(leg.field, leg.wanted), OffWords(*leg.found, leg.field));
}

std::string NextWords(const GroupLegChosen& leg) {
  if (leg.field.empty()) return "";
  std::string words;
  for (const GroupCandidate& candidate : leg.next) {
    const std::string figure = candidate.figure == NoValue ? "no figure yet"
                                                           : ShortFigure(leg.field, candidate.figure) +
                                                                 OffWords(candidate, leg.field);
    words +=
        fmt::format("{}{} ({})", words.empty() ? "; next " : ", ", SymbolWords(candidate.symbol), figure);
  }
  return words;
}

std::string OffsetWords(const GroupLegChosen& leg) {
  std::string words;
  for (const GroupLots& offset : leg.offsets) {
    words +=
        fmt::format("{}{} {}", words.empty() ? "; offsets " : ", ", offset.lots, SymbolWords(offset.symbol));
  }
  return words;
}

std::string LotsWords(const GroupLegChosen& leg) {
  const char* const side = leg.side == "S" ? "sell" : "buy";
  if (leg.lots <= 0) return fmt::format("{} none of", side);
  return fmt::format("{} {}{}", side, leg.lots, leg.isDoubled ? " (doubled)" : "");
}

std::string ChaseWords(const std::string& chase) {
  const auto times = IntegerBetween(chase, "0|", "|");
  const auto timeout = IntegerBetween(chase, "0|" + std::to_string(times.value_or(0)) + "|", "|");
  if (!times || !timeout) return "chasing the market by " + chase;
  return fmt::format("chasing the market {} times every {} ms", *times, *timeout);
}

std::string CheckWords(const GroupCheck& check) {
  return fmt::format("{} {} {} {} to {}", check.field, PriceText(check.value),
                     check.isOut ? "outside" : "within", PriceText(check.low), PriceText(check.high));
}

}  // namespace

std::string GroupOrderWords(const GroupOrderName& order) {
  const std::string id = order.id.empty() ? "(no id)" : order.id;
  return order.isIdShared ? fmt::format("group order {} #{}", id, order.number) : "group order " + id;
}

std::string FigureText(const std::string& field, ScaledValue figure) {
  constexpr int kPlaces = 10;
  constexpr int kDeltaPlaces = 12;
  return DecimalText(figure, IsDelta(field) ? kDeltaPlaces : kPlaces);
}

std::string ChildStateWords(int32_t state) {
  switch (state) {
    case exec_type::kWorking:
      return "works";
    case exec_type::kPartlyFilled:
      return "is filled in part";
    case exec_type::kFilled:
      return "is filled";
    case exec_type::kCancelled:
      return "is cancelled";
    case exec_type::kRejected:
      return "is rejected";
    case NoInt:
      return "names no state";
    default:
      return fmt::format("has state {}", state);
  }
}

std::string EndWords(GroupOrderEnd end) {
  switch (end) {
    case GroupOrderEnd::kTarget:
      return "done, target reached";
    case GroupOrderEnd::kNoLeg:
      return "no option found";
    case GroupOrderEnd::kNothing:
      return "no order made, nothing will move it";
    case GroupOrderEnd::kReplaced:
      return "replaced by another order of the same id";
    case GroupOrderEnd::kAsleep:
      return "its timer was taken by another order, will never wake";
  }
  return "";
}

std::string GroupStringWords(const GroupString& string) {
  std::string words = string.chase.empty() ? "at the market" : ChaseWords(string.chase);
  words += ", ";
  if (string.leg != 0) words += fmt::format("leg {} of ", string.leg);
  words += GroupOrderWords(string.order);
  if (!string.group.empty()) words += ", in group " + string.group;
  if (string.offsets) words += ", offsets what is held";
  return words;
}

std::string Words(const GroupOrderLooked& look) {
  const std::string target = PriceText(look.target);
  std::string words = look.sum ? fmt::format("{} is {}", SumName(look), PriceText(*look.sum)) : "no position";
  if (look.isDone) {
    words += look.sum ? fmt::format(", the target {} is reached", target) : ", and the target is 0";
  } else {
    words += fmt::format(", {}must {} to {}", look.sum ? "" : SumName(look) + " ",
                         look.mustRise.value_or(false) ? "rise" : "fall", target);
  }
  return Line("look", look.order, words);
}

std::string Words(const GroupCycleMade& cycle) {
  std::string words = fmt::format("cycle {}", cycle.cycle);
  for (const GroupCheck& check : cycle.checks) words += ", " + CheckWords(check);
  if (cycle.doubledLeg != 0) words += fmt::format(", leg {} is doubled", cycle.doubledLeg);
  words += fmt::format(", {} {}", cycle.orders, cycle.orders == 1 ? "order" : "orders");
  return Line("cycle", cycle.order, words);
}

std::string Words(const GroupLegChosen& leg) {
  return Line(fmt::format("leg {}", leg.leg), leg.order,
              fmt::format("{} {}{}{}", LotsWords(leg), ChoiceWords(leg), NextWords(leg), OffsetWords(leg)));
}

std::string Words(const GroupChildAnnounced& child) {
  return Line("child", child.order, child.child + " is there");
}

std::string Words(const GroupChildChanged& child) {
  const std::string who = child.child.empty() ? "a record without a key" : child.child;
  return Line("child", child.order,
              fmt::format("{} {}{}, {}", who, ChildStateWords(child.state),
                          child.fails ? ", which fails the group order" : "",
                          child.live == 0 ? "none left" : fmt::format("{} left", child.live)));
}

std::string Words(const GroupLookPlanned& look) {
  return Line("next look", look.order, "at " + look.time.substr(look.time.find('T') + 1));
}

std::string Words(const GroupLookPassed& look) {
  return Line("no look", look.order, look.live != 0 ? "children live" : "a cycle is under way");
}

std::string Words(const GroupOrderEnded& ended) {
  return Line("end", ended.order, EndWords(ended.end));
}

}  // namespace iorder

#include "tests/checkers/leg_checker.h"

#include <fmt/format.h>

#include <algorithm>

#include "tests/checkers/chain.h"

namespace iorder::testing {
namespace {

std::string PutOf(std::string call) {
  for (size_t at = call.find(".C."); at != std::string::npos; at = call.find(".C.", at + 1))
    call.replace(at, 3, ".P.");
  return call;
}

/// There is one database, the same all day, and it works.
bool HasOneDatabase(const Day& day) {
  return day.head.hasDatabase && std::none_of(day.lines.begin(), day.lines.end(), [](const DayLine& line) {
           const auto* const symbols = std::get_if<SymbolsAction>(&line.action);
           const auto* const fault = std::get_if<FaultAction>(&line.action);
           const bool fails = fault != nullptr && (fault->kind == FaultAction::Kind::kDatabase ||
                                                   fault->kind == FaultAction::Kind::kSink);
           return fails || (symbols != nullptr && symbols->database);
         });
}

std::string TextOf(const WorkedString& string) {
  return fmt::format("{} {} of {} in leg {}{}", string.side == kSell ? "S" : "B", string.lots, string.symbol,
                     string.leg, string.isOffset ? ", which is held" : "");
}

}  // namespace

CLegChecker::CLegChecker(const CGroupBook& book, const Day& day, Violations& violations)
    : CChecker("legs", violations), m_book(book), m_day(day), m_knowsChains(HasOneDatabase(day)) {}

void CLegChecker::OnMomentEnd(LocalTime /*at*/) {
  for (const CGroupBook::Cycle& cycle : m_book.Cycles()) {
    if (cycle.worked.stops) continue;
    CheckOptions(cycle);
    CheckStrings(cycle);
  }
}

void CLegChecker::CheckOptions(const CGroupBook::Cycle& cycle) {
  const GroupCommand& command = cycle.order->command;
  std::vector<std::string> expected = cycle.order->records;
  if (cycle.look.command) {
    if (!m_knowsChains) return;
    expected.clear();
    const std::vector<std::string> calls = CallsOf(m_day, command.chain, cycle.look.at);
    for (const std::string& call : calls) {
      if (command.HasLeg("Call")) expected.push_back("OPT.REAL." + call);
    }
    for (const std::string& call : calls) {
      if (command.HasLeg("Put")) expected.push_back("OPT.REAL." + PutOf(call));
    }
  }
  const auto& seen = cycle.look.options;
  const bool isSame =
      std::equal(expected.begin(), expected.end(), seen.begin(), seen.end(),
                 [](const std::string& name, const OptionSeen& option) { return name == option.record; });
  if (!isSame)
    Complain(cycle.look.at, fmt::format("'{}' looks at {} options of the {} of its chain, or at others",
                                        command.id, seen.size(), expected.size()));
}

void CLegChecker::CheckStrings(const CGroupBook::Cycle& cycle) {
  const auto& expected = cycle.worked.strings;
  const auto& sent = cycle.look.strings;
  for (size_t i = 0; i < std::max(expected.size(), sent.size()); ++i) {
    const std::string what = i < expected.size() ? TextOf(expected[i]) : "nothing";
    const std::string text = i < sent.size() ? sent[i].text : "nothing";
    const bool isSame = i < expected.size() && i < sent.size() &&
                        FieldText(text, "SYMBOL") == expected[i].symbol &&
                        FieldText(text, "SIDE") == (expected[i].side == kSell ? "S" : "B") &&
                        FieldText(text, "QTY") == std::to_string(expected[i].lots);
    // Without any string the cycle didn't go on.
    if (!isSame && !sent.empty())
      Complain(cycle.look.at,
               fmt::format("'{}' sends {} in place of {}", cycle.order->command.id, text, what));
  }
}

}  // namespace iorder::testing

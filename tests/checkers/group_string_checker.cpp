#include "tests/checkers/group_string_checker.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace iorder::testing {
namespace {

/// {8-4-4-4-12}
bool IsGuid(const std::string& text) {
  constexpr std::string_view kForm = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return text.size() == kForm.size() &&
         std::equal(text.begin(), text.end(), kForm.begin(), [&](char character, char form) {
           return form == 'X' ? kDigits.find(character) != std::string_view::npos : character == form;
         });
}

bool IsNumber(const std::string& text) {
  const size_t first = text.starts_with('-') ? 1 : 0;
  return text.size() > first && text.find_first_not_of("0123456789", first) == std::string::npos;
}

std::string TypeOf(const std::string& symbol) {
  const size_t begin = symbol.find_first_not_of('.', symbol.find('.'));
  return begin == std::string::npos ? "" : symbol.substr(begin, symbol.find('.', begin) - begin);
}

}  // namespace

void CGroupStringChecker::OnMomentEnd(LocalTime /*at*/) {
  for (const CGroupBook::Cycle& cycle : m_book.Cycles()) {
    // Others are no strings of this cycle: the checker of the legs tells.
    if (cycle.look.strings.size() == cycle.worked.strings.size()) Check(cycle);
  }
}

void CGroupStringChecker::Check(const CGroupBook::Cycle& cycle) {
  const GroupOrder& order = *cycle.order;
  const GroupCommand& command = order.command;
  std::map<size_t, std::string> groups;
  for (size_t i = 0; i < cycle.worked.strings.size(); ++i) {
    const WorkedString& worked = cycle.worked.strings[i];
    const TraceStep& sent = cycle.look.strings[i];
    const auto field = [&](std::string_view name) { return FieldText(sent.text, name).value_or("?"); };
    if (sent.first != 1 || sent.second != 2) Complain(sent.at, "leaves with other integers: " + sent.text);

    std::string groupId;
    if (worked.group) {
      groupId = groups.try_emplace(*worked.group, field("GROUPID")).first->second;
      if (!IsGuid(groupId)) Complain(sent.at, "'" + groupId + "' is no GUID: " + sent.text);
    }
    const std::string chase = cycle.worked.chase.value_or(field("CHASEPRICE"));
    const std::string expected = fmt::format(
        "TYPE={},BROKERID={},ACCOUNT={},SYMBOL={},SIDE={},QTY={},PRICE=0,ORDERTYPE=10,POSITIONEFFECT=4,"
        "TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE={},GROUPID={},CHASEPRICE={},STRATEGY={},STRATEGYNAME={},"
        "USERKEY1={},USERKEY2={},USERKEY3={},PROCESSID={}",
        TypeOf(order.symbols[worked.leg]), command.broker, command.account, field("SYMBOL"), field("SIDE"),
        field("QTY"), worked.group ? command.groupTypes[*worked.group] : 0, groupId, chase, command.id,
        command.name, command.userKeys[0], command.userKeys[1], command.userKeys[2], field("PROCESSID"));
    if (sent.text != expected || !IsNumber(field("PROCESSID")))
      Complain(sent.at, "isn't of the form " + expected + ": " + sent.text);
  }
  for (const auto& [group, id] : groups) {
    if (!m_groupIds.insert(id).second) Complain(cycle.look.at, "the group " + id + " has been there before");
  }
}

}  // namespace iorder::testing

#include "app/group_order_reader.h"

#include <algorithm>

#include "app/group_leg.h"
#include "platform/text.h"

namespace iorder {
namespace {

std::optional<double> SumOf(const CStopCheck& check) {
  return check.bPosition ? std::optional(check.dbValue) : std::nullopt;
}

void AddCheck(std::vector<GroupCheck>& checks, int number, const std::wstring& field,
              const std::optional<CBandCheck>& check) {
  if (!check) return;
  checks.push_back({number, ToUtf8(field), check->dbValue, check->dbCentre - check->dbHalfWidth,
                    check->dbCentre + check->dbHalfWidth, check->bOut});
}

size_t DoubledLeg(const stcIntlgntOrd& order) {
  const auto doubled = std::find(order.lMultiplier.begin(), order.lMultiplier.end(), 2);
  return doubled == order.lMultiplier.end() ? 0
                                            : static_cast<size_t>(doubled - order.lMultiplier.begin()) + 1;
}

}  // namespace

void CGroupOrderReader::OnLook(const stcIntlgntOrd& order, const CStopCheck& check) {
  m_known[order.llNumber].sum = SumOf(check);
  GroupOrderLooked look;
  look.order = NameOf(order);
  look.field = ToUtf8(order.strStopName);
  look.sum = SumOf(check);
  look.factor = order.dbStopFactor;
  look.target = order.dbStopValue;
  if (order.lDirection != direction::kUndecided) look.mustRise = order.lDirection == direction::kRise;
  look.isDone = check.bStop;
  m_tell(look);
}

void CGroupOrderReader::OnCycle(const stcIntlgntOrd& order, const CGroupCycle& cycle) {
  Known& known = m_known[order.llNumber];
  GroupCycleMade made;
  made.order = NameOf(order);
  made.cycle = ++known.cycles;
  made.sum = known.sum;
  made.target = order.dbStopValue;
  AddCheck(made.checks, 1, order.strCheckName1, cycle.checks.first);
  AddCheck(made.checks, 2, order.strCheckName2, cycle.checks.second);
  made.doubledLeg = DoubledLeg(order);
  made.orders = cycle.orders.size();
  for (const CLegOrder& string : cycle.orders) made.lots += string.lQty;
  m_tell(made);
  for (size_t leg = 0; leg < kLegs; ++leg) {
    std::optional<GroupLegChosen> chosen = ReadLeg(order, cycle, leg);
    if (!chosen) continue;
    chosen->order = made.order;
    chosen->cycle = made.cycle;
    m_tell(*chosen);
  }
  ExpectStrings(made.order, order, cycle);
}

void CGroupOrderReader::ExpectStrings(const GroupOrderName& name, const stcIntlgntOrd& order,
                                      const CGroupCycle& cycle) {
  for (const CLegOrder& string : cycle.orders) {
    GroupString part;
    part.order = name;
    part.leg = string.leg + 1;
    part.offsets = string.bOffset;
    part.group = ToUtf8(order.strGroup[string.leg]);
    m_strings.emplace(ToUtf8(string.strText), part);
  }
}

void CGroupOrderReader::Complete(OrderSent& order) {
  if (!order.group) return;
  const auto string = m_strings.find(order.text);
  if (string == m_strings.end()) return;
  order.group->order = string->second.order;
  order.group->leg = string->second.leg;
  order.group->offsets = string->second.offsets;
  if (!order.group->groupId.empty()) order.group->group = string->second.group;
  m_strings.erase(string);
}

void CGroupOrderReader::OnEnd(const stcIntlgntOrd& order, GroupOrderEnd end) {
  m_tell(GroupOrderEnded{NameOf(order), end});
}

void CGroupOrderReader::OnChild(const stcIntlgntOrd& order, const std::wstring& levelKey) {
  Known& known = m_known[order.llNumber];
  const auto [child, isNew] = known.children.try_emplace(ToUtf8(levelKey));
  // Its first update may overtake the announcement, and counts it already.
  const bool isCounted = !isNew && !child->second;
  child->second = true;
  if (!isCounted) ++known.live;
  m_tell(GroupChildAnnounced{NameOf(order), child->first, known.live});
}

void CGroupOrderReader::OnChildUpdate(const stcIntlgntOrd& order, const std::wstring& levelKey,
                                      int32_t execType, size_t live) {
  Known& known = m_known[order.llNumber];
  const std::string child = ToUtf8(levelKey);
  known.children.try_emplace(child);
  known.live = live;
  const bool fails = order.bFailed != 0 && !known.isFailed;
  known.isFailed = known.isFailed || fails;
  m_tell(GroupChildChanged{NameOf(order), child, execType, live, fails});
}

void CGroupOrderReader::OnNoLook(const stcIntlgntOrd& order) {
  m_tell(GroupLookPassed{NameOf(order), m_known[order.llNumber].live});
}

void CGroupOrderReader::OnRecheck(const stcIntlgntOrd& order, int32_t timerId, int32_t delayMs) {
  m_tell(GroupLookPlanned{NameOf(order), ToText(m_now + Milliseconds(delayMs)), timerId});
}

GroupOrderName CGroupOrderReader::NameOf(const stcIntlgntOrd& order) {
  std::string id = ToUtf8(order.strStrategyID);
  std::set<int64_t>& numbers = m_ids[id];
  numbers.insert(order.llNumber);
  return {std::move(id), order.llNumber, numbers.size() > 1};
}

}  // namespace iorder

#include "tests/checkers/group_command.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "tests/checkers/bus_read.h"
#include "tests/checkers/order_info.h"
#include "tests/checkers/trace_step.h"

namespace iorder::testing {
namespace {

double NumberOf(const JsonNode& object, std::string_view name, double missing) {
  const JsonNode* const node = object.Find(name);
  return node != nullptr && node->kind == JsonNode::Kind::kNumber ? DecimalOf(object, name) : missing;
}

int32_t IntegerMember(const JsonNode& object, std::string_view name) {
  return static_cast<int32_t>(WholeOf(object, name, INT32_MIN, INT32_MAX).value_or(0));
}

struct Condition {
  std::string field;
  std::string number;
};

std::optional<Condition> ConditionOf(const JsonNode& object, std::string_view name) {
  const std::string text = TextOf(object, name);
  const size_t equals = text.find('=');
  if (equals == std::string::npos) return std::nullopt;
  return Condition{text.substr(0, equals), text.substr(equals + 1)};
}

int64_t ScaledTarget(const Condition& condition) {
  const double scaled = LeadingDecimal(condition.number) * 1e10;
  const int64_t target = std::abs(scaled) < 9.2e18 ? static_cast<int64_t>(scaled) : INT64_MIN;
  // Deltas are on a scale of 100. What goes beyond 64 bits goes round.
  return condition.field == "Delta" ? static_cast<int64_t>(static_cast<uint64_t>(target) * 100) : target;
}

GroupCommand::Check CheckOf(const JsonNode& command, const std::string& number) {
  GroupCommand::Check check;
  if (const auto condition = ConditionOf(command, "CheckCondition" + number)) {
    check.field = condition->field;
    check.target = LeadingWhole(condition->number);
  }
  check.range = NumberOf(command, "CheckRange" + number, 0);
  return check;
}

GroupCommand::Leg LegOf(const JsonNode& node) {
  GroupCommand::Leg leg;
  leg.right = TextOf(node, "CallPut");
  if (const auto condition = ConditionOf(node, "Condition")) {
    leg.field = condition->field;
    leg.target = ScaledTarget(*condition);
  }
  leg.lots = IntegerMember(node, "Qty");
  leg.group = TextOf(node, "Group");
  return leg;
}

}  // namespace

bool GroupCommand::HasLeg(const std::string& right) const {
  return std::any_of(legs.begin(), legs.end(), [&](const Leg& leg) { return leg.right == right; });
}

std::optional<size_t> GroupCommand::GroupOf(size_t leg) const {
  if (legs[leg].group == "A") return 0;
  if (legs[leg].group == "B") return 1;
  return std::nullopt;
}

std::optional<GroupCommand> ReadGroupCommand(const std::string& text) {
  JsonNode command;
  try {
    command = ParseJson(text, {});
  } catch (const InputError&) {
    return std::nullopt;
  }
  if (TextOf(command, "StrategyType") == "OpenLottery") return std::nullopt;

  GroupCommand order;
  order.id = TextOf(command, "StrategyID");
  order.name = TextOf(command, "StrategyName");
  order.broker = TextOf(command, "BrokerID");
  order.account = TextOf(command, "Account");
  order.chain = TextOf(command, "Security");
  for (size_t i = 0; i < 3; ++i) order.userKeys[i] = TextOf(command, "UserKey" + std::to_string(i + 1));
  if (const auto condition = ConditionOf(command, "StopCondition")) {
    order.stopField = condition->field == "1%$Vanna" ? "1Pct$Vanna" : condition->field;
    order.stopValue = LeadingDecimal(condition->number);
  }
  order.stopFactor = NumberOf(command, "StopFactor", 1);
  order.checks[0] = CheckOf(command, "1");
  order.checks[1] = CheckOf(command, "2");
  order.cash = NumberOf(command, "Cash", 0);
  order.groupTypes[0] = IntegerMember(command, "GroupAType");
  order.groupTypes[1] = IntegerMember(command, "GroupBType");
  const JsonNode* const legs = command.Find("Order");
  if (legs == nullptr || legs->kind != JsonNode::Kind::kArray) return order;
  for (size_t i = 0; i < std::min(kLegCount, legs->children.size()); ++i)
    order.legs[i] = LegOf(legs->children[i]);
  return order;
}

}  // namespace iorder::testing

#include "grouporder/group_order_text.h"

#include <optional>
#include <string_view>

#include "records/json_document.h"
#include "records/json_reader.h"
#include "records/number_text.h"
#include "records/wrapping.h"

namespace iorder {

namespace {

/// The two sides of the first "=" of a condition.
struct ConditionSides {
  std::wstring name;
  std::wstring value;
};

std::optional<ConditionSides> ReadCondition(const rapidjson::Value& object, std::string_view member) {
  const std::wstring text = ReadJsonString(object, member);
  const size_t equals = text.find(L'=');
  if (equals == std::wstring::npos) return std::nullopt;
  return ConditionSides{text.substr(0, equals), text.substr(equals + 1)};
}

double ReadNumber(const rapidjson::Value& object, std::string_view name, double fallback) {
  const rapidjson::Value* member = FindMember(object, name);
  return member != nullptr && member->IsNumber() ? member->GetDouble() : fallback;
}

void ReadIdentity(const rapidjson::Value& command, stcIntlgntOrd& order) {
  order.strStrategyType = ReadJsonString(command, "StrategyType");
  order.strBrokerID = ReadJsonString(command, "BrokerID");
  order.strAccount = ReadJsonString(command, "Account");
  order.strStrategyID = ReadJsonString(command, "StrategyID");
  order.strStrategyName = ReadJsonString(command, "StrategyName");
  order.strUserKey1 = ReadJsonString(command, "UserKey1");
  order.strUserKey2 = ReadJsonString(command, "UserKey2");
  order.strUserKey3 = ReadJsonString(command, "UserKey3");
  order.strProcessID = ReadJsonString(command, "ProcessID");
  order.strSecurity = ReadJsonString(command, "Security");
}

void ReadStopCondition(const rapidjson::Value& command, stcIntlgntOrd& order) {
  if (const auto condition = ReadCondition(command, "StopCondition")) {
    // The one name that the bus spells otherwise; conditions of checks and legs keep theirs.
    order.strStopName = condition->name == L"1%$Vanna" ? L"1Pct$Vanna" : condition->name;
    order.dbStopValue = LeadingDouble(condition->value);
  }
  order.dbStopFactor = ReadNumber(command, "StopFactor", 1.0);
}

void ReadCheckCondition(const rapidjson::Value& command, std::string_view member, std::wstring& name,
                        int64_t& target) {
  if (const auto condition = ReadCondition(command, member)) {
    name = condition->name;
    target = LeadingInt64(condition->value);
  }
}

ScaledValue LegTarget(const ConditionSides& condition) {
  const ScaledValue target = Truncate(LeadingDouble(condition.value) * kScale);
  // The bus keeps Delta on a scale of 100.
  return condition.name == L"Delta" ? WrappedProduct(target, int64_t{100}) : target;
}

void ReadLeg(const rapidjson::Value& element, size_t leg, stcIntlgntOrd& order) {
  order.strCallPut[leg] = ReadJsonString(element, "CallPut");
  if (const auto condition = ReadCondition(element, "Condition")) {
    order.strLegCondition[leg] = condition->name;
    order.llLegTarget[leg] = LegTarget(*condition);
  }
  order.lQty[leg] = ReadJsonInt(element, "Qty", 0);
  order.strGroup[leg] = ReadJsonString(element, "Group");
}

}  // namespace

void ReadGroupOrder(const rapidjson::Value& command, stcIntlgntOrd& order) {
  ReadIdentity(command, order);
  ReadStopCondition(command, order);
  ReadCheckCondition(command, "CheckCondition1", order.strCheckName1, order.llCheckValue1);
  order.dbCheckRange1 = ReadNumber(command, "CheckRange1", 0.0);
  ReadCheckCondition(command, "CheckCondition2", order.strCheckName2, order.llCheckValue2);
  order.dbCheckRange2 = ReadNumber(command, "CheckRange2", 0.0);
  order.dbCash = ReadNumber(command, "Cash", 0.0);
  order.lGroupAType = ReadJsonInt(command, "GroupAType", 0);
  order.lGroupBType = ReadJsonInt(command, "GroupBType", 0);

  const rapidjson::Value* legs = FindMember(command, "Order");
  if (legs == nullptr || !legs->IsArray()) return;
  for (rapidjson::SizeType i = 0; i < legs->Size() && i < kLegs; ++i) ReadLeg((*legs)[i], i, order);
}

}  // namespace iorder

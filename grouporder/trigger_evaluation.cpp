#include "grouporder/trigger_evaluation.h"

#include <cmath>
#include <memory>
#include <vector>

#include "grouporder/position_node.h"
#include "records/wrapping.h"

namespace iorder {

namespace {

using Items = std::vector<std::unique_ptr<CBaseData>>;

double ToUnits(int64_t scaledSum) {
  return static_cast<double>(scaledSum) / kScale;
}

/// An item without the field counts for nothing.
int64_t SumOf(const Items& items, const std::wstring& field) {
  int64_t sum = 0;
  for (const auto& item : items) {
    const int64_t value = item->GetInt64(field, NoValue);
    if (value != NoValue) sum = WrappedSum(sum, value);
  }
  return sum;
}

/// Unlike in the stop condition, a missing field isn't left out: what is held is expected to have it.
int64_t PlainSumOf(const Items& items, const std::wstring& field) {
  int64_t sum = 0;
  for (const auto& item : items) sum = WrappedSum(sum, item->GetInt64(field, NoValue));
  return sum;
}

bool DecideWithoutPosition(stcIntlgntOrd& order) {
  if (order.lDirection != direction::kUndecided) return false;
  if (order.dbStopValue > 0) order.lDirection = direction::kRise;
  if (order.dbStopValue < 0) order.lDirection = direction::kFall;
  return order.dbStopValue == 0;
}

bool DecideBySum(stcIntlgntOrd& order, double value) {
  switch (order.lDirection) {
    case direction::kUndecided:
      if (value < order.dbStopValue) order.lDirection = direction::kRise;
      if (value > order.dbStopValue) order.lDirection = direction::kFall;
      return order.lDirection == direction::kUndecided;
    case direction::kRise:
      return !(value < order.dbStopValue);
    case direction::kFall:
      return !(value > order.dbStopValue);
    default:
      return false;
  }
}

/// An item without "Quantity" counts as held.
Items HeldItems(CBaseData& node) {
  Items held;
  for (auto& item : OpenItems(node)) {
    if (item->GetInt(L"Quantity", NoInt) != 0) held.push_back(std::move(item));
  }
  return held;
}

CBandCheck TestBand(const Items& items, const std::wstring& name, int64_t target, double range, double cash) {
  CBandCheck check;
  check.dbValue = ToUnits(PlainSumOf(items, name));
  check.dbCentre = static_cast<double>(target);
  check.dbHalfWidth = (target != 0 ? std::fabs(check.dbCentre) : cash) * range;
  check.bOut = check.dbValue > check.dbCentre + check.dbHalfWidth ||
               check.dbValue < check.dbCentre - check.dbHalfWidth;
  check.lSign = check.dbValue >= check.dbCentre ? -1 : 1;
  return check;
}

/// By the direction, and by whether each sum lies below its centre or not.
size_t LegToDouble(int32_t lDirection, int32_t firstSign, int32_t secondSign) {
  //                            second: below, above
  constexpr size_t kRising[2][2] = {{0, 2}, {3, 1}};
  constexpr size_t kOther[2][2] = {{1, 3}, {2, 0}};
  const auto& legs = lDirection == direction::kRise ? kRising : kOther;
  return legs[firstSign < 0][secondSign < 0];
}

}  // namespace

CStopCheck CheckStopCondition(stcIntlgntOrd& order, CBaseData* strategyPosition) {
  CStopCheck check;
  const auto node = OpenPositionNode(strategyPosition, order.strStrategyID);
  check.bPosition = node != nullptr;
  if (node == nullptr) {
    check.bStop = DecideWithoutPosition(order);
  } else {
    check.dbValue = ToUnits(SumOf(OpenItems(*node), order.strStopName)) * order.dbStopFactor;
    check.bStop = DecideBySum(order, check.dbValue);
  }
  return check;
}

CBandChecks ApplyCheckConditions(stcIntlgntOrd& order, CBaseData* strategyPosition) {
  order.lMultiplier.fill(1);
  if (order.strCheckName1.empty() && order.strCheckName2.empty()) return {};
  const auto node = OpenPositionNode(strategyPosition, order.strStrategyID);
  if (node == nullptr) return {};
  const Items held = HeldItems(*node);
  if (held.empty()) return {};

  CBandChecks checks;
  if (!order.strCheckName1.empty()) {
    checks.first =
        TestBand(held, order.strCheckName1, order.llCheckValue1, order.dbCheckRange1, order.dbCash);
  }
  if (!order.strCheckName2.empty()) {
    checks.second =
        TestBand(held, order.strCheckName2, order.llCheckValue2, order.dbCheckRange2, order.dbCash);
  }
  const CBandCheck inside;
  const CBandCheck& first = checks.first ? *checks.first : inside;
  const CBandCheck& second = checks.second ? *checks.second : inside;
  if (first.bOut || second.bOut) {
    order.lMultiplier[LegToDouble(order.lDirection, first.lSign, second.lSign)] = 2;
  }
  return checks;
}

}  // namespace iorder

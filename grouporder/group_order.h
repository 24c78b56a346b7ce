#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "records/scaled_value.h"

namespace iorder {

inline constexpr size_t kLegs = 4;
template <typename T>
using PerLeg = std::array<T, kLegs>;

/// Which way the sum of a group order has to go to its target.
namespace direction {
inline constexpr int32_t kUndecided = 0;
inline constexpr int32_t kRise = 1;
inline constexpr int32_t kFall = 2;
}  // namespace direction

/// The side of a leg or of a held position.
namespace side {
inline constexpr int32_t kBuy = 1;
inline constexpr int32_t kSell = 2;
}  // namespace side

/// A conditional group order: it moves a sum over the position of its strategy towards a target, cycle by
/// cycle. It lives in memory alone.
///
/// One thread at a time works on it: the thread of the command, later that of its timer. Shared are the keys
/// of its children, under `cs`, the two marks, and what never changes once the command is read (its number
/// and id above all).
struct stcIntlgntOrd {
  explicit stcIntlgntOrd(IRuntime& runtime) : cs(runtime, "group order children") {}

  int64_t llNumber = 0;  ///< among the group orders of this engine, from 1; tells those of one id apart

  // As the command names them.
  std::wstring strStrategyType;
  std::wstring strBrokerID;
  std::wstring strAccount;
  std::wstring strSecurity;  ///< the chain to scan
  std::wstring strStrategyName;
  std::wstring strStrategyID;
  std::wstring strUserKey1;
  std::wstring strUserKey2;
  std::wstring strUserKey3;
  std::wstring strProcessID;

  // The target: the sum of this field over the position, times the factor.
  std::wstring strStopName;
  double dbStopValue = 0.0;
  double dbStopFactor = 0.0;
  int32_t lDirection = direction::kUndecided;

  // The bands outside of which a leg is doubled: relative to their targets, to the cash for a target of 0.
  std::wstring strCheckName1;
  int64_t llCheckValue1 = 0;
  double dbCheckRange1 = 0.0;
  std::wstring strCheckName2;
  int64_t llCheckValue2 = 0;
  double dbCheckRange2 = 0.0;
  double dbCash = 0.0;

  // The legs.
  PerLeg<std::wstring> strCallPut;       ///< "Call" or "Put"; anything else is never scanned
  PerLeg<std::wstring> strLegCondition;  ///< field of the option record
  PerLeg<ScaledValue> llLegTarget{};     ///< its wanted value
  PerLeg<int32_t> lSide{};               ///< set once, at acceptance
  PerLeg<int32_t> lQty{};
  PerLeg<int32_t> lMultiplier{};      ///< 1 or 2, anew each cycle
  PerLeg<std::wstring> strGroup;      ///< "A" or "B"
  PerLeg<std::wstring> strLegSymbol;  ///< as chosen last; a scan that finds nothing leaves it

  int32_t lGroupAType = 0;
  int32_t lGroupBType = 0;
  std::wstring strGroupAId;  ///< anew each cycle
  std::wstring strGroupBId;

  std::vector<std::wstring> arCallSymbols;  ///< the records to scan, "OPT.REAL.%s"
  std::vector<std::wstring> arPutSymbols;

  CCriticalSection cs;
  std::vector<std::wstring> arChildKeys IORDER_GUARDED_BY(cs);  ///< "LevelKey" of the live children
  std::atomic<int32_t> bFailed{0};   ///< 1 for good once a child has failed: no timer is armed any more
  std::atomic<bool> bAtWork{false};  ///< a re-check has taken it, and hasn't let it go

  /// How many live with it.
  size_t AddChild(const std::wstring& levelKey);
  /// Takes out the first of that key.
  void RemoveChild(const std::wstring& levelKey);
  size_t ChildCount();
};

/// A held position of the order's strategy, as the cycle found it.
struct stcPosition {
  std::wstring strSymbol;
  int32_t lQuantity = 0;
  int32_t lSide = 0;
};

}  // namespace iorder

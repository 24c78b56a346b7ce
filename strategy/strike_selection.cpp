#include "strategy/strike_selection.h"

#include <algorithm>

#include "platform/platform_error.h"

namespace iorder {

namespace {

constexpr int64_t kNoIndex = -1;

ScaledValue StrikeAt(std::span<const ScaledValue> strikes, int64_t index) {
  if (index < 0 || index >= std::ssize(strikes)) {
    throw CPlatformError(error_code::kInvalidArgument,
                         "strike index " + std::to_string(index) + " is outside the chain");
  }
  return strikes[static_cast<size_t>(index)];
}

/// Keeps the strikes from `nearest` to `farthest` steps away, `step` being the direction.
void KeepDistances(std::span<const ScaledValue> strikes, int32_t atm, int32_t nearest, int32_t farthest,
                   int step, std::set<ScaledValue>& kept) {
  const int64_t last = std::min<int64_t>(std::max(farthest, 1), std::ssize(strikes) - 1);
  for (int64_t k = std::max(nearest, 1); k <= last; ++k) kept.insert(StrikeAt(strikes, atm + k * step));
}

ScaledValue ClampedStrike(std::span<const ScaledValue> strikes, int64_t index, bool toLast) {
  if (index == kNoIndex || strikes.empty()) return NoValue;
  const bool inside = index >= 0 && index < std::ssize(strikes);
  if (inside) return strikes[static_cast<size_t>(index)];
  return toLast ? strikes.back() : strikes.front();
}

}  // namespace

std::optional<CAtTheMoney> FindAtTheMoney(std::span<const ScaledValue> strikes, ScaledValue price) {
  for (int32_t i = 0; i + 1 < std::ssize(strikes); ++i) {
    const ScaledValue a = strikes[static_cast<size_t>(i)];
    const ScaledValue b = strikes[static_cast<size_t>(i) + 1];
    if (b == NoValue) return std::nullopt;
    if (a == price) return CAtTheMoney{i, i};
    if (a < price && price < b) return CAtTheMoney{i + 1, i};
  }
  return std::nullopt;
}

SelectionMode SelectionModeOf(const COpenLotteryInfo& info) {
  if (info.m_lStrikeIn == -2 || info.m_lStrikeOut == -2) return SelectionMode::kFlags;
  return info.m_lStrikeIn == -1 && info.m_lStrikeOut == -1 ? SelectionMode::kAll : SelectionMode::kRange;
}

std::set<ScaledValue> KeptByFlags(std::span<const ScaledValue> strikes, const CAtTheMoney& atm,
                                  const COpenLotteryInfo& info) {
  const int32_t a = info.IsPut() ? atm.put : atm.call;
  const int towardsOut = info.IsPut() ? -1 : 1;
  std::set<ScaledValue> kept;
  if (info.m_lIsATM > 0) kept.insert(StrikeAt(strikes, a));
  if (info.m_lIsITM > 0) KeepDistances(strikes, a, info.m_lITM_D, info.m_lITM_U, -towardsOut, kept);
  if (info.m_lIsOTM > 0) KeepDistances(strikes, a, info.m_lOTM_D, info.m_lOTM_U, towardsOut, kept);
  return kept;
}

CStrikeRange RangeAround(std::span<const ScaledValue> strikes, const CAtTheMoney& atm, int32_t in,
                         int32_t out) {
  const int64_t i = in;
  const int64_t o = out;
  CStrikeRange range;
  if (o != -1) range.callOut = ClampedStrike(strikes, atm.call + o, true);
  if (i != -1) range.callIn = ClampedStrike(strikes, atm.call - i, false);
  // The puts' outer bound hangs on the inner one too.
  if (i != -1) range.putOut = ClampedStrike(strikes, atm.put - o, false);
  if (i != -1) range.putIn = ClampedStrike(strikes, atm.put + i, true);
  return range;
}

}  // namespace iorder

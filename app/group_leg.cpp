#include "app/group_leg.h"

#include <algorithm>
#include <limits>

#include "platform/text.h"
#include "records/int128.h"
#include "records/wrapping.h"

namespace iorder {
namespace {

/// So many candidates behind the chosen one are told.
constexpr size_t kNext = 2;

bool IsWrapped(ScaledValue figure, ScaledValue wanted, int64_t distance) {
  const Int128 difference = Int128{figure} - wanted;
  return (difference < 0 ? -difference : difference) != distance;
}

GroupCandidate Tell(const CLegCandidate& candidate, ScaledValue wanted) {
  return {ToUtf8(candidate.strSymbol), candidate.llValue, candidate.llDistance,
          IsWrapped(candidate.llValue, wanted, candidate.llDistance)};
}

/// Those of one leg, the nearest first; of several at one distance the first of the list.
std::vector<CLegCandidate> Nearest(const CGroupCycle& cycle, size_t leg) {
  std::vector<CLegCandidate> candidates;
  std::copy_if(cycle.candidates.begin(), cycle.candidates.end(), std::back_inserter(candidates),
               [leg](const CLegCandidate& candidate) { return candidate.leg == leg; });
  std::stable_sort(candidates.begin(), candidates.end(), [](const CLegCandidate& a, const CLegCandidate& b) {
    return a.llDistance < b.llDistance;
  });
  return candidates;
}

void ReadCandidates(const std::vector<CLegCandidate>& candidates, GroupLegChosen& chosen) {
  chosen.candidates = candidates.size();
  chosen.withoutFigure = static_cast<size_t>(
      std::count_if(candidates.begin(), candidates.end(),
                    [](const CLegCandidate& candidate) { return candidate.llValue == NoValue; }));
  // The largest distance there is never wins a leg.
  const bool isFound = !candidates.empty() && candidates[0].llDistance < std::numeric_limits<int64_t>::max();
  if (isFound) chosen.found = Tell(candidates[0], chosen.wanted);
  for (size_t i = isFound ? 1 : 0; i < candidates.size() && chosen.next.size() < kNext; ++i) {
    chosen.next.push_back(Tell(candidates[i], chosen.wanted));
  }
}

void ReadStrings(const CGroupCycle& cycle, size_t leg, GroupLegChosen& chosen) {
  for (const stcPosition& position : cycle.held[leg]) {
    chosen.held.push_back({ToUtf8(position.strSymbol), position.lQuantity, SideLetter(position.lSide)});
  }
  for (const CLegOrder& order : cycle.orders) {
    if (order.leg != leg) continue;
    if (order.bOffset) {
      chosen.offsets.push_back({ToUtf8(order.strSymbol), order.lQty, ""});
    } else {
      chosen.opens += order.lQty;
    }
  }
}

}  // namespace

std::string SideLetter(int32_t side) {
  return side == side::kSell ? "S" : "B";
}

int64_t LegLots(const stcIntlgntOrd& order, size_t leg) {
  return WrappedProduct(order.lMultiplier[leg], order.lQty[leg]);
}

std::optional<GroupLegChosen> ReadLeg(const stcIntlgntOrd& order, const CGroupCycle& cycle, size_t leg) {
  if (order.strCallPut[leg].empty()) return std::nullopt;
  GroupLegChosen chosen;
  chosen.leg = leg + 1;
  chosen.right = ToUtf8(order.strCallPut[leg]);
  chosen.side = SideLetter(order.lSide[leg]);
  chosen.lots = LegLots(order, leg);
  chosen.isDoubled = order.lMultiplier[leg] == 2;
  chosen.field = ToUtf8(order.strLegCondition[leg]);
  chosen.wanted = order.llLegTarget[leg];
  chosen.symbol = ToUtf8(order.strLegSymbol[leg]);
  ReadCandidates(Nearest(cycle, leg), chosen);
  ReadStrings(cycle, leg, chosen);
  return chosen;
}

}  // namespace iorder

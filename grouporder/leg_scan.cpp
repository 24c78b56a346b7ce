#include "grouporder/leg_scan.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "records/option_figures_record.h"
#include "records/wrapping.h"

namespace iorder {

namespace {

/// A held position nearer than this to no leg belongs to none.
constexpr int64_t kNearestLimit = 922337203685477580;

std::optional<stcPosition> TakeFirst(std::vector<stcPosition>& positions, std::wstring_view symbol) {
  const auto found = std::find_if(positions.begin(), positions.end(), [symbol](const stcPosition& position) {
    return position.strSymbol == symbol;
  });
  if (found == positions.end()) return std::nullopt;
  stcPosition position = std::move(*found);
  positions.erase(found);
  return position;
}

/// Walks on behind a hit, and past the entry that moved up into its place: so of two neighbours the second
/// stays. Of several hits the last counts.
std::optional<stcPosition> TakeLastReached(std::vector<stcPosition>& positions, std::wstring_view symbol) {
  std::optional<stcPosition> last;
  for (size_t i = 0; i < positions.size(); ++i) {
    if (positions[i].strSymbol != symbol) continue;
    last = std::move(positions[i]);
    positions.erase(positions.begin() + static_cast<ptrdiff_t>(i));
  }
  return last;
}

}  // namespace

void CLegScan::Run(CHeldPositions& positions) {
  Scan(L"Call", m_order.arCallSymbols, positions.calls, TakeFirst);
  Scan(L"Put", m_order.arPutSymbols, positions.puts, TakeLastReached);
}

std::vector<CLegScan::Look> CLegScan::LooksAt(const wchar_t* callPut) const {
  std::vector<Look> looks;
  for (size_t leg = 0; leg < kLegs; ++leg) {
    if (m_order.strCallPut[leg] != callPut) continue;
    const auto same = std::find_if(looks.begin(), looks.end(), [this, leg](const Look& look) {
      return m_order.strLegCondition[look.leg] == m_order.strLegCondition[leg];
    });
    looks.push_back({leg, same != looks.end() ? same->leg : leg});
  }
  return looks;
}

void CLegScan::Scan(const wchar_t* callPut, const std::vector<std::wstring>& names, Positions& positions,
                    TakePosition take) {
  m_bestDistance.fill(std::numeric_limits<int64_t>::max());
  const std::vector<Look> looks = LooksAt(callPut);
  for (const std::wstring& name : names) {
    const std::wstring_view symbol = std::wstring_view(name).substr(kOptionFiguresRecord.size());
    const auto record = m_host.OpenRecord(name, nullptr);
    if (record == nullptr) continue;
    std::optional<stcPosition> position = take(positions, symbol);
    const auto leg = Judge(*record, looks, symbol, position.has_value());
    if (leg) m_held[*leg].push_back(std::move(*position));
  }
}

std::optional<size_t> CLegScan::Judge(CBaseData& record, const std::vector<Look>& looks,
                                      std::wstring_view symbol, bool isHeld) {
  std::optional<size_t> nearestLeg;
  int64_t nearestDistance = kNearestLimit;
  PerLeg<ScaledValue> values{};
  for (const auto [leg, sameFieldAs] : looks) {
    values[leg] =
        sameFieldAs == leg ? record.GetInt64(m_order.strLegCondition[leg], NoValue) : values[sameFieldAs];
    const int64_t distance = WrappedDistance(values[leg], m_order.llLegTarget[leg]);
    if (isHeld && distance < nearestDistance) {
      nearestLeg = leg;
      nearestDistance = distance;
    }
    if (distance < m_bestDistance[leg]) {
      m_bestDistance[leg] = distance;
      m_order.strLegSymbol[leg] = symbol;
    }
    if (m_candidates != nullptr) {
      m_candidates->push_back({leg, std::wstring(symbol), values[leg], distance});
    }
  }
  return nearestLeg;
}

}  // namespace iorder

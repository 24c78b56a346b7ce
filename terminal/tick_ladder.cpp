#include "terminal/tick_ladder.h"

#include <algorithm>
#include <limits>

#include "records/int128.h"
#include "records/number_text.h"

namespace iorder {
namespace {

constexpr ScaledValue kLeast = std::numeric_limits<ScaledValue>::min();
constexpr ScaledValue kMost = std::numeric_limits<ScaledValue>::max();
constexpr ScaledValue kUnit = static_cast<ScaledValue>(kScale);

ScaledValue TickOf(std::wstring_view text) {
  return ToScaled(LeadingDouble(text));
}

/// How many of `ticks` it takes to cross a gap above 0.
int64_t StepsOver(Int128 gap, ScaledValue tick, int64_t ticks) {
  return static_cast<int64_t>(std::min<Int128>(ticks, (gap - 1) / tick + 1));
}

}  // namespace

CTickLadder::CTickLadder(std::wstring_view tickSize) {
  if (tickSize.find(L':') == std::wstring_view::npos) {
    m_bands.push_back({kLeast, TickOf(tickSize)});
  } else {
    m_bands.push_back({kLeast, kUnit});
    while (!tickSize.empty()) {
      const size_t end = std::min(tickSize.find(L';'), tickSize.size());
      AddBand(tickSize.substr(0, end));
      tickSize.remove_prefix(std::min(end + 1, tickSize.size()));
    }
  }
  const bool isGood =
      std::all_of(m_bands.begin(), m_bands.end(), [](const Band& band) { return band.tick > 0; });
  if (!isGood) m_bands = {{kLeast, TickOf(kFallbackTick)}};
}

void CTickLadder::AddBand(std::wstring_view text) {
  const size_t colon = text.find(L':');
  if (colon == std::wstring_view::npos) return;
  ScaledValue from = 0;
  const bool fits = !__builtin_mul_overflow(LeadingInt64(text.substr(0, colon)), kUnit, &from);
  if (fits && from > m_bands.back().from) m_bands.push_back({from, TickOf(text.substr(colon + 1))});
}

ScaledValue CTickLadder::Step(ScaledValue price, int64_t ticks) const {
  if (ticks >= 0) return Up(price, ticks);
  return std::max(Down(price, ticks == kLeast ? kMost : -ticks),
                  m_bands[std::min<size_t>(1, m_bands.size() - 1)].tick);
}

ScaledValue CTickLadder::Up(ScaledValue price, int64_t ticks) const {
  for (size_t i = 0; i < m_bands.size() && ticks > 0; ++i) {
    const ScaledValue end = i + 1 < m_bands.size() ? m_bands[i + 1].from : kMost;
    if (price >= end) continue;
    // The tick that reaches the next band belongs to this one.
    const int64_t steps = StepsOver(Int128{end} - price, m_bands[i].tick, ticks);
    ScaledValue risen = 0;
    if (__builtin_mul_overflow(steps, m_bands[i].tick, &risen) ||
        __builtin_add_overflow(price, risen, &price)) {
      return kMost;
    }
    ticks -= steps;
  }
  return price;
}

ScaledValue CTickLadder::Down(ScaledValue price, int64_t ticks) const {
  for (size_t i = m_bands.size(); i-- > 0 && ticks > 0;) {
    const ScaledValue begin = m_bands[i].from;
    if (price <= begin) continue;
    const int64_t steps = StepsOver(Int128{price} - begin, m_bands[i].tick, ticks);
    ScaledValue fallen = 0;
    if (__builtin_mul_overflow(steps, m_bands[i].tick, &fallen) ||
        __builtin_sub_overflow(price, fallen, &price)) {
      return kLeast;
    }
    ticks -= steps;
  }
  return price;
}

std::optional<PriceWords> ParsePriceWords(std::wstring_view text) {
  PriceWords words;
  words.isBid = text.starts_with(L"BID");
  if ((!words.isBid && !text.starts_with(L"ASK")) || text.size() < 6 || text.back() != L'T') {
    return std::nullopt;
  }
  const std::wstring_view number = text.substr(3, text.size() - 4);
  const bool isNumber = (number[0] == L'+' || number[0] == L'-') &&
                        number.find_first_not_of(L"0123456789", 1) == std::wstring_view::npos;
  if (!isNumber) return std::nullopt;
  words.ticks = LeadingInt64(number);
  return words;
}

}  // namespace iorder

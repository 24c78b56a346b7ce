#include "terminal/parity_forward.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "records/int128.h"

namespace iorder {
namespace {

constexpr size_t kNearest = 5;

struct Parity {
  Int128 distance;  ///< between call and put
  Int128 forward;
};

}  // namespace

ScaledValue ParityForward(const ChainPrices& prices) {
  std::vector<Parity> parities;
  for (const auto& [strike, price] : prices) {
    if (price.call == NoValue || price.put == NoValue) continue;
    const Int128 difference = Int128{price.call} - price.put;
    parities.push_back({difference < 0 ? -difference : difference, strike + difference});
  }
  std::stable_sort(parities.begin(), parities.end(),
                   [](const Parity& left, const Parity& right) { return left.distance < right.distance; });
  parities.resize(std::min(parities.size(), kNearest));
  if (parities.empty()) return NoValue;
  std::sort(parities.begin(), parities.end(),
            [](const Parity& left, const Parity& right) { return left.forward < right.forward; });
  // Of an even number, the middle of the two in the middle.
  const Int128 lower = parities[(parities.size() - 1) / 2].forward;
  const Int128 upper = parities[parities.size() / 2].forward;
  const Int128 forward = (lower + upper) / 2;
  const bool fits = forward > 0 && forward <= std::numeric_limits<ScaledValue>::max();
  return fits ? static_cast<ScaledValue>(forward) : NoValue;
}

}  // namespace iorder

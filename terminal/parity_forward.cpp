#include "terminal/parity_forward.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace iorder {
namespace {

constexpr size_t kNearest = 5;

struct Parity {
  double distance;  ///< between call and put
  double forward;
};

}  // namespace

ScaledValue ParityForward(const ChainPrices& prices) {
  std::vector<Parity> parities;
  for (const auto& [strike, price] : prices) {
    if (price.call == NoValue || price.put == NoValue) continue;
    const double difference = FromScaled(price.call) - FromScaled(price.put);
    parities.push_back({std::abs(difference), FromScaled(strike) + difference});
  }
  std::stable_sort(parities.begin(), parities.end(),
                   [](const Parity& left, const Parity& right) { return left.distance < right.distance; });
  parities.resize(std::min(parities.size(), kNearest));
  if (parities.empty()) return NoValue;
  std::sort(parities.begin(), parities.end(),
            [](const Parity& left, const Parity& right) { return left.forward < right.forward; });
  const size_t middle = parities.size() / 2;
  const double forward = parities.size() % 2 != 0
                             ? parities[middle].forward
                             : (parities[middle - 1].forward + parities[middle].forward) / 2;
  return forward > 0 ? ToScaled(forward) : NoValue;
}

}  // namespace iorder

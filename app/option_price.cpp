#include "app/option_price.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace iorder {
namespace {

constexpr int kStepsPerUnit = 64;
constexpr int kUnits = 6;
constexpr int kSteps = kStepsPerUnit * kUnits;
constexpr double kStep = 1.0 / kStepsPerUnit;

/// g(-i * kStep) for i from 0 to kSteps, where g(d) = d N(d) + n(d) is the premium of a call d deviations in
/// the money, in deviations. Below -kUnits it is too small to matter.
using PremiumTable = std::array<double, kSteps + 1>;

constexpr PremiumTable MakePremiumTable() {
  // The density n from 0 outwards: n(d + step) = n(d) * exp(-step * (d + step / 2)), the factor shrinking by
  // exp(-step^2).
  constexpr double kDensityAtZero = 0.3989422804014327;
  constexpr double kFirstFactor = 0.9998779371377774;  // exp(-kStep * kStep / 2)
  std::array<double, kSteps + 1> density{};
  density[0] = kDensityAtZero;
  double factor = kFirstFactor;
  for (size_t i = 0; i < kSteps; ++i) {
    density[i + 1] = density[i] * factor;
    factor *= kFirstFactor * kFirstFactor;
  }
  // Summed twice from the far end inwards: n to N, N to g.
  PremiumTable table{};
  double distribution = 0;
  for (size_t i = kSteps; i > 0; --i) {
    const double next = distribution + (density[i] + density[i - 1]) * (kStep / 2);
    table[i - 1] = table[i] + (distribution + next) * (kStep / 2);
    distribution = next;
  }
  return table;
}

constexpr PremiumTable kPremiums = MakePremiumTable();

/// g(-distance), for a distance from 0 on.
double OutOfTheMoneyPremium(double distance) {
  if (distance >= kUnits) return 0;
  const double position = distance * kStepsPerUnit;
  const auto index = static_cast<size_t>(position);
  const double part = position - static_cast<double>(index);
  return kPremiums[index] + (kPremiums[index + 1] - kPremiums[index]) * part;
}

}  // namespace

double CallPremium(double forward, double strike, double deviation) {
  const double inTheMoney = forward - strike;
  if (inTheMoney <= 0) return OutOfTheMoneyPremium(-inTheMoney / deviation) * deviation;
  return inTheMoney + OutOfTheMoneyPremium(inTheMoney / deviation) * deviation;
}

double PutPremium(double forward, double strike, double deviation) {
  return CallPremium(strike, forward, deviation);
}

int64_t OptionTick(int64_t price) {
  if (price < 100) return 1;
  if (price < 500) return 5;
  if (price < 5000) return 10;
  return price < 10000 ? 50 : 100;
}

int64_t RoundToOptionTick(double points) {
  const auto tenths = static_cast<int64_t>(points * 10 + 0.5);
  const int64_t tick = OptionTick(tenths);
  return std::max<int64_t>(1, (tenths + tick / 2) / tick * tick);
}

}  // namespace iorder

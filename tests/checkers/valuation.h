#pragma once

#include <cstdint>

#include "tests/checkers/order_info.h"

namespace iorder::testing {

/// An amount of money worked out exactly, and how far the stated roundings may lead away from it.
struct Money {
  long double exact = 0;
  long double apart = 0;

  Money& operator+=(const Money& other) {
    exact += other.exact;
    apart += other.apart;
    return *this;
  }
  bool IsNear(double told, long double more) const;
};

/// (last - average) x lots x weight.
Money ProfitOf(Scaled last, Scaled average, int64_t lots, double weight);
/// lots x average x weight.
Money CostOf(Scaled average, int64_t lots, double weight);

/// Whether `told` is the amount cut off behind two places.
bool IsCutToHundredths(const Money& money, double told);
/// Whether `told` is the amount in hundredths, with 0.05 of one added away from zero, cut off.
bool IsToldAsTotal(const Money& money, double told);
/// Whether `told` is the amount cut to whole money.
bool IsCutToWhole(const Money& money, int64_t told);

}  // namespace iorder::testing

#pragma once

#include <chrono>
#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "records/scaled_value.h"

namespace iorder {

/// The delivery month of a series, and the week if it is a weekly one.
struct TaifexExpiry {
  int year = 0;
  int month = 0;
  int week = 0;  ///< n of a weekly series "yyyymmWn"; 0 for the month series

  auto operator<=>(const TaifexExpiry&) const = default;

  /// From "yyyymm" or "yyyymmWn"; none for any other text.
  static std::optional<TaifexExpiry> Parse(std::string_view text);

  /// "yyyymm".
  std::string MonthText() const;
  /// The n-th Wednesday of the month, for the month series the third. A holiday puts the last day off; the
  /// exchange's files don't say so.
  std::chrono::year_month_day LastTradingDay() const;
};

/// One option series on the index (TXO), or one future on it: TX by months, the mini future MTX by weeks.
struct TaifexSeries {
  enum class Kind { kFuture, kOption };

  Kind kind = Kind::kFuture;
  TaifexExpiry expiry;
  ScaledValue strike = 0;  ///< options only
  char right = 0;          ///< options only: 'C' or 'P'

  auto operator<=>(const TaifexSeries&) const = default;

  /// The product code of the symbol: "TX", weekly "TXn" for options and "MXn" for futures.
  std::string Product() const;
  /// "ND.O.TWF.TX" and the like: what all series of the product share.
  std::string ProductSymbol() const;
  /// "ND.O.TWF.TX.202108.C.17000", "ND.F.TWF.MX4.202107" and the like.
  std::string Symbol() const;
  /// The future that the series is valued by, without its month: "ND.F.TWF.TX", weekly "ND.F.TWF.MXn".
  std::string UnderlyingProductSymbol() const;
};

}  // namespace iorder

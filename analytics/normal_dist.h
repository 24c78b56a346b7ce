#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace iorder {

/// The cumulative standard normal distribution N(x), looked up in a constant table by linear interpolation:
/// no transcendental function and no allocation. In the middle of an interval it is off by up to
/// kMaxError; its values are those of the table by rule, not an approximation to be improved.
///
/// Arguments must be finite. Any thread may call.
class CNormalDist {
 public:
  /// Arguments from here on give exactly 1.0.
  static constexpr double kUpperBound = 5.20031455849973;
  /// Rows of the table in one unit of x.
  static constexpr double kScale = 549.966731401936;
  /// How far Cdf may be from the distribution: the greatest curvature, n(1), times the eighth of the square
  /// of an interval.
  static constexpr double kMaxError = 1.0001e-7;
  static constexpr size_t kRows = 2861;
  // An interpolation needs the row behind its own.
  static_assert(kUpperBound * kScale < kRows - 1);

  struct Row {
    double x;
    double y;  ///< N(x)
  };
  /// x is i / kScale; both columns hold 15 significant digits.
  static const Row kTable[kRows];

  virtual ~CNormalDist() = default;

  /// Kept beside the distribution: Cdf is the standard one, whatever they are.
  void SetParameters(double mean, double variance) {
    m_dbMean = mean;
    m_dbDeviation = std::sqrt(variance);
    m_dbInverseDeviation = 1 / m_dbDeviation;
    m_dbInverseVariance = m_dbInverseDeviation * m_dbInverseDeviation;
    m_dbDensityFactor = m_dbInverseDeviation * kInverseRootOfTwoPi;
  }

  double Cdf(double x) const { return x < 0 ? 1 - CdfNonNegative(-x) : CdfNonNegative(x); }

  /// `x` isn't below 0.
  double CdfNonNegative(double x) const {
    if (x >= kUpperBound) return 1.0;
    const Row* const row = kTable + static_cast<int32_t>(x * kScale);
    const double w = (x - row[0].x) * kScale;
    return (1 - w) * row[0].y + w * row[1].y;
  }

 private:
  static const double kInverseRootOfTwoPi;

  double m_dbMean = 0.0;
  double m_dbDeviation = 1.0;
  double m_dbInverseDeviation = 1.0;
  double m_dbInverseVariance = 1.0;
  double m_dbDensityFactor = 0.0;
};

}  // namespace iorder

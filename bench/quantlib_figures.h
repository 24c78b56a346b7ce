#pragma once

#include <memory>
#include <vector>

namespace iorder {

/// An option on a future as QuantLib works out its figures. (Its headers don't compile as C++20, so none of
/// them shows here.)
struct QuantLibOption {
  double strike = 0;
  double volatility = 0;  ///< a year, as a fraction
  bool isCall = false;
};

/// What AnalyticEuropeanEngine gives beside the price. It has no vanna.
struct QuantLibGreeks {
  double delta = 0;
  double gamma = 0;
  double vega = 0;   ///< of a volatility of 1.00 more
  double theta = 0;  ///< of a year
};

/// The options of one expiry, without interest: objects of AnalyticEuropeanEngine that follow the quote of
/// their underlying, each with its own volatility. One object at a time.
class CQuantLibFigures {
 public:
  /// So many days, each a 365th of a year.
  CQuantLibFigures(const std::vector<QuantLibOption>& options, int days);
  ~CQuantLibFigures();
  CQuantLibFigures(const CQuantLibFigures&) = delete;
  CQuantLibFigures& operator=(const CQuantLibFigures&) = delete;

  /// The underlying moves to that price; a place for each option.
  void WorkOut(double underlying, std::vector<QuantLibGreeks>& greeks);

 private:
  struct Options;

  std::unique_ptr<Options> m_options;
};

}  // namespace iorder

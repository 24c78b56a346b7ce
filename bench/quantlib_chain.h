#pragma once

#include <memory>
#include <vector>

namespace iorder {

/// A chain of calls on a future, at one expiry, as QuantLib prices it. (Its headers don't compile as C++20,
/// so none of them shows here.)
struct ChainTerms {
  std::vector<double> strikes;
  double volatility = 0.2;
  double rate = 0.02;
  int days = 73;  ///< of 365, so that the years are a fraction that both sides have exactly
  double Years() const { return days / 365.0; }
};

class CQuantLibChain {
 public:
  explicit CQuantLibChain(const ChainTerms& terms);
  ~CQuantLibChain();
  CQuantLibChain(const CQuantLibChain&) = delete;
  CQuantLibChain& operator=(const CQuantLibChain&) = delete;

  /// One BlackCalculator for each strike; what they share is worked out once.
  void PriceByCalculator(double underlying, std::vector<double>& prices) const;
  /// The options are objects that follow the quote of the underlying, each asked for its NPV.
  void PriceByEngine(double underlying, std::vector<double>& prices);

 private:
  struct Options;

  const ChainTerms m_terms;
  std::unique_ptr<Options> m_options;
};

}  // namespace iorder

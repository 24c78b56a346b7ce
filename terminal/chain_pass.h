#pragma once

#include <span>
#include <vector>

#include "terminal/black_figures.h"
#include "terminal/figure_market.h"

namespace iorder {

/// Works out the records of a chain's options: keeps the volatility that each price implies, takes the
/// forward, and then all figures in one walk. It knows no lock and tells nobody; one object serves one thread
/// and takes no memory once it has seen the largest chain.
class CChainPass {
 public:
  /// Works out what has moved and wasn't worked out within `period` before `now`. `expiry`: none if it isn't
  /// known.
  void Run(FigureChain& chain, TimePoint now, std::optional<TimePoint> expiry, Milliseconds period);

  /// Those of the last run whose figures are others now, or have come or gone.
  std::span<const FigureOption* const> Changed() const { return m_changed; }
  /// Whether some have moved that must wait.
  bool LeavesSome() const { return m_leavesSome; }

 private:
  void MoveForward(FigureChain& chain);
  void KeepVolatility(FigureOption& option, ScaledValue forward, std::optional<TimePoint> expiry);
  void Take(FigureOption& option, const OptionFigures& figures);

  std::vector<FigureOption*> m_due;
  std::vector<BlackTerms> m_terms;
  std::vector<OptionFigures> m_figures;
  std::vector<const FigureOption*> m_changed;
  bool m_leavesSome = false;
};

}  // namespace iorder

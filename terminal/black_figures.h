#pragma once

#include <span>

#include "terminal/option_figures.h"

namespace iorder {

/// What the figures of one option need beside the forward and the time.
struct BlackTerms {
  double strike = 0;
  double volatility = 0;  ///< in percent a year
  bool isCall = false;
};

/// The figures of options of one expiry by Black's model of 1976, without interest: closed formulas, in one
/// walk. `years` run to the expiry; `figures` has a place for each option. One whose figures aren't defined
/// (no volatility, no time, no forward) or don't fit a scaled value gets NoValue in all of them.
void BlackFigures(double forward, double years, std::span<const BlackTerms> options,
                  std::span<OptionFigures> figures);

}  // namespace iorder

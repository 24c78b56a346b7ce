#include <cmath>
#include <functional>
#include <stdexcept>
#include <vector>

#include "bench/paths.h"
#include "bench/quantlib_figures.h"
#include "terminal/black_figures.h"

namespace iorder {

namespace {

constexpr int kOptions = 400;
constexpr int kMoves = 100;
constexpr int kDays = 23;
constexpr double kYears = kDays / 365.0;
constexpr double kUnderlying = 17250;

/// Calls and puts of 200 strikes around the money, each with a volatility of its own.
std::vector<BlackTerms> Chain() {
  std::vector<BlackTerms> chain;
  for (int i = 0; i < kOptions; ++i) {
    const int step = i / 2 - kOptions / 4;
    chain.push_back({kUnderlying + 25.0 * step, 15.0 + 0.02 * std::abs(step) + 0.3 * (i % 2), i % 2 == 0});
  }
  return chain;
}

std::vector<QuantLibOption> ForQuantLib(const std::vector<BlackTerms>& chain) {
  std::vector<QuantLibOption> options;
  for (const BlackTerms& option : chain) {
    options.push_back({option.strike, option.volatility / 100, option.isCall});
  }
  return options;
}

/// The underlying moves on and the whole chain is worked out anew; ns of one option.
Side Moves(const std::function<void(double underlying)>& workOut) {
  return Timed(kOptions * kMoves, [workOut] {
    for (int i = 0; i < kMoves; ++i) workOut(kUnderlying + 0.5 * i);
  });
}

/// A side that works out something else would be no baseline.
void CheckSame(const std::vector<OptionFigures>& figures, const std::vector<QuantLibGreeks>& greeks) {
  constexpr size_t kDelta = 1;
  constexpr size_t kGamma = 2;
  for (size_t i = 0; i < figures.size(); ++i) {
    const bool isSame = std::abs(FromScaled(figures[i][kDelta]) / 100 - greeks[i].delta) < 1e-7 &&
                        std::abs(FromScaled(figures[i][kGamma]) - greeks[i].gamma) < 1e-9;
    if (!isSame) throw std::runtime_error("the figures differ");
  }
}

}  // namespace

Ratio FiguresAgainstQuantLib(int repeats) {
  const std::vector<BlackTerms> chain = Chain();
  CQuantLibFigures quantLib(ForQuantLib(chain), kDays);
  std::vector<OptionFigures> figures(kOptions);
  std::vector<QuantLibGreeks> greeks(kOptions);
  const auto ours = [&](double underlying) {
    BlackFigures(underlying, kYears, chain, figures);
    Keep(figures.data());
  };
  const auto theirs = [&](double underlying) {
    quantLib.WorkOut(underlying, greeks);
    Keep(greeks.data());
  };
  ours(kUnderlying + 10);
  theirs(kUnderlying + 10);
  CheckSame(figures, greeks);
  return Compare("figures of one option of a chain of 400", "AnalyticEuropeanEngine of QuantLib",
                 Moves(theirs), Moves(ours), 1.0 / 40, repeats);
}

}  // namespace iorder

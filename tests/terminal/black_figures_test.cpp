#include "terminal/black_figures.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "bench/quantlib_figures.h"
#include "tests/terminal/figures_day.h"

namespace iorder::testing {
namespace {

using ::testing::Each;

constexpr double kForward = 17250;

double Figure(const OptionFigures& figures, std::wstring_view name) {
  for (size_t i = 0; i < figures.size(); ++i) {
    if (kOptionFigureFields[i].name == name) return FromScaled(figures[i]);
  }
  ADD_FAILURE() << "no such figure";
  return 0;
}

OptionFigures FiguresOf(const BlackTerms& option, double years, double forward = kForward) {
  std::vector<OptionFigures> figures(1);
  BlackFigures(forward, years, std::vector{option}, figures);
  return figures.front();
}

/// More than one block of them: deep in and far out of the money, quiet and wild.
std::vector<BlackTerms> Chain() {
  std::vector<BlackTerms> chain;
  for (const double percent : {5.0, 18.7, 120.0}) {
    for (double strike = 13000; strike <= 22000; strike += 250) {
      chain.push_back({strike, percent, true});
      chain.push_back({strike, percent, false});
    }
  }
  return chain;
}

std::vector<QuantLibGreeks> QuantLibsOf(const std::vector<BlackTerms>& chain, int days, double morePercent) {
  std::vector<QuantLibOption> options;
  for (const BlackTerms& option : chain) {
    options.push_back({option.strike, (option.volatility + morePercent) / 100, option.isCall});
  }
  std::vector<QuantLibGreeks> greeks(chain.size());
  CQuantLibFigures(options, days).WorkOut(kForward, greeks);
  return greeks;
}

TEST(BlackFigures, AreThoseOfQuantLib) {
  const std::vector<BlackTerms> chain = Chain();
  for (const int days : {1, 23, 400}) {
    std::vector<OptionFigures> figures(chain.size());
    BlackFigures(kForward, days / 365.0, chain, figures);
    const std::vector<QuantLibGreeks> greeks = QuantLibsOf(chain, days, 0);
    for (size_t i = 0; i < chain.size(); ++i) {
      SCOPED_TRACE(std::to_string(days) + " days, option " + std::to_string(i));
      EXPECT_NEAR(greeks[i].delta * 100, Figure(figures[i], L"Delta"), 1e-6);
      EXPECT_NEAR(greeks[i].gamma, Figure(figures[i], L"Gamma"), 1e-10);
      EXPECT_NEAR(greeks[i].vega / 100, Figure(figures[i], L"Vega"), 1e-6);
      EXPECT_NEAR(greeks[i].theta / 365, Figure(figures[i], L"Theta"), 1e-6);
      EXPECT_NEAR(chain[i].volatility, Figure(figures[i], L"ImpVol"), 1e-9);
    }
  }
}

TEST(BlackFigures, VannaIsHowQuantLibsDeltaMovesWithTheVolatility) {
  constexpr double kStep = 1e-3;  // percent
  const std::vector<BlackTerms> chain = Chain();
  std::vector<OptionFigures> figures(chain.size());
  BlackFigures(kForward, 23 / 365.0, chain, figures);
  const std::vector<QuantLibGreeks> less = QuantLibsOf(chain, 23, -kStep);
  const std::vector<QuantLibGreeks> more = QuantLibsOf(chain, 23, kStep);
  for (size_t i = 0; i < chain.size(); ++i) {
    EXPECT_NEAR((more[i].delta - less[i].delta) / (2 * kStep), Figure(figures[i], L"Vanna"), 1e-7);
  }
}

TEST(BlackFigures, AreTheDifferencesOfPrices) {
  constexpr double kYears = 0.063;
  constexpr double kPoint = 1;
  constexpr double kPercent = 0.05;
  constexpr double kDay = 1 / 365.0;
  for (const bool isCall : {true, false}) {
    const auto price = [isCall](double forward, double percent, double years) {
      return BlackPrice(isCall, 17400, kForward + forward, 18.5 + percent, kYears + years);
    };
    const auto delta = [&price](double percent) {
      return (price(kPoint, percent, 0) - price(-kPoint, percent, 0)) / (2 * kPoint);
    };
    const OptionFigures figures = FiguresOf({17400, 18.5, isCall}, kYears);
    EXPECT_NEAR(delta(0) * 100, Figure(figures, L"Delta"), 1e-5);
    EXPECT_NEAR((price(kPoint, 0, 0) - 2 * price(0, 0, 0) + price(-kPoint, 0, 0)) / (kPoint * kPoint),
                Figure(figures, L"Gamma"), 1e-8);
    EXPECT_NEAR((price(0, kPercent, 0) - price(0, -kPercent, 0)) / (2 * kPercent), Figure(figures, L"Vega"),
                1e-5);
    EXPECT_NEAR((price(0, 0, -kDay / 100) - price(0, 0, kDay / 100)) * 50, Figure(figures, L"Theta"), 1e-5);
    EXPECT_NEAR((delta(kPercent) - delta(-kPercent)) / (2 * kPercent), Figure(figures, L"Vanna"), 1e-7);
  }
}

TEST(BlackFigures, MoneyIsThatOfOnePointOfPrice) {
  const OptionFigures figures = FiguresOf({17400, 18.5, false}, 0.063);
  EXPECT_NEAR(Figure(figures, L"Delta") / 100 * kForward, Figure(figures, L"$Delta"), 1e-3);
  EXPECT_NEAR(Figure(figures, L"Gamma") * kForward * kForward / 100, Figure(figures, L"1Pct$Gamma"), 1e-3);
  EXPECT_NEAR(Figure(figures, L"Vanna") * kForward, Figure(figures, L"1Pct$Vanna"), 1e-3);
  EXPECT_EQ(Figure(figures, L"Vega"), Figure(figures, L"$Vega"));
  EXPECT_EQ(Figure(figures, L"Theta"), Figure(figures, L"$Theta"));
}

TEST(BlackFigures, ShowNoMorePlacesThanTheyAreToldWith) {
  const OptionFigures figures = FiguresOf({17431.7, 18.4567, true}, 0.0631);
  for (size_t i = 0; i < figures.size(); ++i) {
    ScaledValue step = 1;
    for (int place = kOptionFigureFields[i].places; place < 10; ++place) step *= 10;
    EXPECT_NE(0, figures[i]);
    EXPECT_EQ(0, figures[i] % step) << i;
  }
}

TEST(BlackFigures, WhatIsNotDefinedOrDoesNotFitIsNone) {
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  const BlackTerms option{17400, 18.5, true};
  EXPECT_THAT(FiguresOf({17400, 0, true}, 0.063), Each(NoValue));
  EXPECT_THAT(FiguresOf({17400, -1, false}, 0.063), Each(NoValue));
  EXPECT_THAT(FiguresOf({17400, kNoNumber, false}, 0.063), Each(NoValue));
  EXPECT_THAT(FiguresOf({0, 18.5, true}, 0.063), Each(NoValue));
  EXPECT_THAT(FiguresOf(option, 0), Each(NoValue));
  EXPECT_THAT(FiguresOf(option, -0.01), Each(NoValue));
  EXPECT_THAT(FiguresOf(option, 0.063, 0), Each(NoValue));
  EXPECT_THAT(FiguresOf(option, 0.063, -17250), Each(NoValue));
  // $Delta alone is more than a scaled value holds.
  EXPECT_THAT(FiguresOf({1, 18.5, true}, 0.063, 9.3e8), Each(NoValue));
  // An option at the money in its last moment: its gamma grows beyond all bounds.
  EXPECT_THAT(FiguresOf({kForward, 0.0001, true}, 1e-10), Each(NoValue));
}

TEST(BlackFigures, FarFromTheMoneyNothingIsLeftToMove) {
  const OptionFigures figures = FiguresOf({100, 18.5, true}, 0.063);
  EXPECT_EQ(100, std::round(Figure(figures, L"Delta")));
  for (const std::wstring_view name : {L"Gamma", L"Vega", L"Theta", L"Vanna"}) {
    EXPECT_NEAR(0, Figure(figures, name), 1e-11);
  }
}

}  // namespace
}  // namespace iorder::testing

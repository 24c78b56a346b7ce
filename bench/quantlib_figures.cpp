#include "bench/quantlib_figures.h"

#include <ql/exercise.hpp>
#include <ql/instruments/vanillaoption.hpp>
#include <ql/pricingengines/vanilla/analyticeuropeanengine.hpp>
#include <ql/processes/blackscholesprocess.hpp>
#include <ql/quotes/simplequote.hpp>
#include <ql/settings.hpp>
#include <ql/termstructures/volatility/equityfx/blackconstantvol.hpp>
#include <ql/termstructures/yield/flatforward.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actual365fixed.hpp>

namespace iorder {

namespace ql = QuantLib;

struct CQuantLibFigures::Options {
  ql::ext::shared_ptr<ql::SimpleQuote> underlying = ql::ext::make_shared<ql::SimpleQuote>(100.0);
  std::vector<ql::ext::shared_ptr<ql::VanillaOption>> options;
};

CQuantLibFigures::CQuantLibFigures(const std::vector<QuantLibOption>& options, int days)
    : m_options(std::make_unique<Options>()) {
  const ql::Date today(4, ql::March, 2024);
  ql::Settings::instance().evaluationDate() = today;
  const ql::DayCounter counter = ql::Actual365Fixed();
  const ql::Handle<ql::Quote> underlying(m_options->underlying);
  const ql::Handle<ql::YieldTermStructure> rate(ql::ext::make_shared<ql::FlatForward>(today, 0.0, counter));
  const auto exercise = ql::ext::make_shared<ql::EuropeanExercise>(today + days);
  for (const QuantLibOption& option : options) {
    const ql::Handle<ql::BlackVolTermStructure> volatility(
        ql::ext::make_shared<ql::BlackConstantVol>(today, ql::NullCalendar(), option.volatility, counter));
    const auto process =
        ql::ext::make_shared<ql::BlackScholesMertonProcess>(underlying, rate, rate, volatility);
    const ql::Option::Type type = option.isCall ? ql::Option::Call : ql::Option::Put;
    m_options->options.push_back(ql::ext::make_shared<ql::VanillaOption>(
        ql::ext::make_shared<ql::PlainVanillaPayoff>(type, option.strike), exercise));
    m_options->options.back()->setPricingEngine(ql::ext::make_shared<ql::AnalyticEuropeanEngine>(process));
  }
}

CQuantLibFigures::~CQuantLibFigures() = default;

void CQuantLibFigures::WorkOut(double underlying, std::vector<QuantLibGreeks>& greeks) {
  m_options->underlying->setValue(underlying);
  for (size_t i = 0; i < greeks.size(); ++i) {
    const ql::VanillaOption& option = *m_options->options[i];
    greeks[i] = {option.delta(), option.gamma(), option.vega(), option.theta()};
  }
}

}  // namespace iorder

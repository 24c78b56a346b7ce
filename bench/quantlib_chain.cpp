#include "bench/quantlib_chain.h"

#include <cmath>
#include <ql/exercise.hpp>
#include <ql/instruments/vanillaoption.hpp>
#include <ql/pricingengines/blackcalculator.hpp>
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

struct CQuantLibChain::Options {
  ql::ext::shared_ptr<ql::SimpleQuote> underlying = ql::ext::make_shared<ql::SimpleQuote>(100.0);
  std::vector<ql::ext::shared_ptr<ql::VanillaOption>> options;
};

CQuantLibChain::CQuantLibChain(const ChainTerms& terms)
    : m_terms(terms), m_options(std::make_unique<Options>()) {
  const ql::Date today(4, ql::March, 2024);
  ql::Settings::instance().evaluationDate() = today;
  const ql::DayCounter days = ql::Actual365Fixed();
  // For an option on a future the yield is the rate.
  const ql::Handle<ql::YieldTermStructure> rate(
      ql::ext::make_shared<ql::FlatForward>(today, terms.rate, days));
  const ql::Handle<ql::BlackVolTermStructure> volatility(
      ql::ext::make_shared<ql::BlackConstantVol>(today, ql::NullCalendar(), terms.volatility, days));
  const auto process = ql::ext::make_shared<ql::BlackScholesMertonProcess>(
      ql::Handle<ql::Quote>(m_options->underlying), rate, rate, volatility);
  const auto engine = ql::ext::make_shared<ql::AnalyticEuropeanEngine>(process);
  const auto exercise = ql::ext::make_shared<ql::EuropeanExercise>(today + terms.days);
  for (const double strike : terms.strikes) {
    m_options->options.push_back(ql::ext::make_shared<ql::VanillaOption>(
        ql::ext::make_shared<ql::PlainVanillaPayoff>(ql::Option::Call, strike), exercise));
    m_options->options.back()->setPricingEngine(engine);
  }
}

CQuantLibChain::~CQuantLibChain() = default;

void CQuantLibChain::PriceByCalculator(double underlying, std::vector<double>& prices) const {
  const double deviation = m_terms.volatility * std::sqrt(m_terms.Years());
  const double discount = std::exp(-m_terms.rate * m_terms.Years());
  for (size_t i = 0; i < prices.size(); ++i) {
    prices[i] =
        ql::BlackCalculator(ql::Option::Call, m_terms.strikes[i], underlying, deviation, discount).value();
  }
}

void CQuantLibChain::PriceByEngine(double underlying, std::vector<double>& prices) {
  m_options->underlying->setValue(underlying);
  for (size_t i = 0; i < prices.size(); ++i) prices[i] = m_options->options[i]->NPV();
}

}  // namespace iorder

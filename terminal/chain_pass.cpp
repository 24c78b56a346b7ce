#include "terminal/chain_pass.h"

#include "terminal/implied_volatility.h"
#include "terminal/parity_forward.h"

namespace iorder {

void CChainPass::Run(FigureChain& chain, TimePoint now, std::optional<TimePoint> expiry,
                     Milliseconds period) {
  m_due.clear();
  m_terms.clear();
  m_changed.clear();
  m_leavesSome = false;
  MoveForward(chain);
  for (FigureOption& option : chain.options) {
    if (!option.isMoved || !option.record.IsWorkedOut()) continue;
    if (option.record.lastTime + period > now) {
      m_leavesSome = true;
      continue;
    }
    option.isMoved = false;
    option.record.lastTime = now;
    KeepVolatility(option, chain.forward, expiry);
    m_due.push_back(&option);
    m_terms.push_back({FromScaled(option.strike), option.volatility, option.isCall});
  }
  if (m_due.empty()) return;
  chain.lastTime = now;
  m_figures.resize(m_due.size());
  const double forward = chain.forward != NoValue ? FromScaled(chain.forward) : 0;
  BlackFigures(forward, expiry ? YearsBetween(now, *expiry) : 0, m_terms, m_figures);
  for (size_t i = 0; i < m_due.size(); ++i) Take(*m_due[i], m_figures[i]);
}

void CChainPass::MoveForward(FigureChain& chain) {
  const ScaledValue future = chain.future->price.Price();
  const ScaledValue forward = future != NoValue ? future : ParityForward(chain.prices);
  if (forward == chain.forward && !chain.hasNewEnd) return;
  for (FigureOption& option : chain.options) {
    option.isMoved = true;
    option.isPriceNew |= chain.hasNewEnd;
  }
  chain.forward = forward;
  chain.hasNewEnd = false;
}

void CChainPass::KeepVolatility(FigureOption& option, ScaledValue forward, std::optional<TimePoint> expiry) {
  if (!option.isPriceNew || forward == NoValue || !expiry) return;
  if (option.priceForward == NoValue) option.priceForward = forward;
  option.isPriceNew = false;
  const ScaledValue price = option.price.Price();
  option.volatility = price == NoValue ? 0
                                       : ImpliedVolatility(option.isCall, FromScaled(option.strike),
                                                           FromScaled(option.priceForward), FromScaled(price),
                                                           YearsBetween(option.priceTime, *expiry))
                                             .value_or(0);
}

void CChainPass::Take(FigureOption& option, const OptionFigures& figures) {
  const bool hasFigures = figures.front() != NoValue;
  if (hasFigures ? option.hasFigures && option.told == figures : !option.hasFigures) return;
  option.hasFigures = hasFigures;
  option.told = figures;
  m_changed.push_back(&option);
}

}  // namespace iorder

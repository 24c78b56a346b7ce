#pragma once

#include <string>

#include "platform/world_runtime.h"
#include "terminal/automatic_orders.h"
#include "terminal/market_figures.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Plays quotes: the market moves first, then the bus shows it. On any thread of the bus.
class CQuotePlayer {
 public:
  /// All that a symbol's quotes move: found once, then used without any look-up.
  struct Target {
    CBusObject* record = nullptr;
    COrderBook* book = nullptr;     ///< none without automatic orders
    CMarketFigures::Series series;  ///< none if no figure depends on it
  };

  /// `orders` (or none) are the automatic ones, `figures` (or none) those from the market.
  CQuotePlayer(IWorldRuntime& runtime, CEmbeddedBus& bus, CAutomaticOrders* orders, CMarketFigures* figures)
      : m_runtime(runtime), m_bus(bus), m_orders(orders), m_figures(figures) {}

  Target Find(const std::wstring& symbol);
  /// As CEmbeddedBus::PlayQuote.
  void Play(const Target& target, const QuoteUpdate& update, const RecordChange* more, const Firing& firing);

 private:
  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CAutomaticOrders* const m_orders;
  CMarketFigures* const m_figures;
};

}  // namespace iorder

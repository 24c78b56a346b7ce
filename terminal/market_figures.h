#pragma once

#include <optional>
#include <string>

#include "platform/critical_section.h"
#include "platform/settings_file.h"
#include "platform/world_runtime.h"
#include "terminal/bus_thread.h"
#include "terminal/chain_pass.h"
#include "terminal/figure_market.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Works out the figures of options from the market, in two kinds of records.
///
/// "OPT.Volatility.<future>" has the field "ImpVol", a scaled value in percent, see ChainVolatility. The
/// chain is one that is valued by that future; of several the one that expires first is taken, of those that
/// expire together the one whose product's name comes first.
///
/// "OPT.REAL.<option>" has the fields of kOptionFigureFields and "MCODE", which is 1 as long as there are
/// figures. An option's volatility is the one that its price implied when it was told, the forward is the
/// price of the future that values its chain, or without one what put-call parity implies.
///
/// Chains are valued by the future of their month and of a product that the settings give
/// ("ComShared/OpenLottery.ini", [UnderlyingF]), or of the product that is named like theirs. Years run to
/// the end of the expiry date, 365 days each.
///
/// A record is worked out while it is subscribed, anew when a price of its market has changed and at most
/// once in the head's "figures_ms" (settings and expiry dates count as its market, too), and fires an update
/// when it has changed. One that a line of the day has filled belongs to the lines.
///
/// Any thread may call; figures are worked out and fired on the thread of the bus. The lock covers prices and
/// what belongs to them; nothing is fired under it.
class CMarketFigures {
 public:
  using Series = CFigureMarket::Series;

  CMarketFigures(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread, ISettingsFile& settings,
                 const std::wstring& hostFolder, Milliseconds period);

  /// Makes the record of that name, if it is one of those that are worked out. It holds nothing yet. False if
  /// it is no such name.
  bool Make(const std::wstring& name);
  /// The engine wants a record, or doesn't any more.
  void Subscribe(const std::wstring& name);
  void Unsubscribe(const std::wstring& name);
  /// A line of the day fills the record: it isn't worked out any more.
  void LeaveToLines(const std::wstring& name);

  /// Takes the expiry dates of options.
  void AddSymbols(const SymbolsAction& symbols);
  /// Looks anew which future values which chain.
  void OnSettings();
  /// For the quote path: found once.
  Series Find(const std::wstring& symbol);
  /// The market moves; before the bus shows it. Takes no memory, but for the jobs of the bus.
  void OnQuote(const Series& series, const QuoteUpdate& update);

 private:
  Series FindRecord(const std::wstring& name) IORDER_REQUIRES(m_section);
  void OnFuture(FigureFuture& future, const QuoteUpdate& update) IORDER_REQUIRES(m_section);
  void OnOption(FigureOption& option, const QuoteUpdate& update) IORDER_REQUIRES(m_section);
  static bool TakeEndDate(FigureChain& chain, const QuoteUpdate& update);
  void SetRecord(const Series& series, bool FigureRecord::*mark, bool value) IORDER_REQUIRES(m_section);

  /// After news of any kind.
  void ScheduleAll() IORDER_REQUIRES(m_section);
  void ScheduleVolatility(FigureFuture& future) IORDER_REQUIRES(m_section);
  /// After a move of the market; nothing is done for a chain of which nothing is worked out.
  void ScheduleOptions(FigureChain& chain) IORDER_REQUIRES(m_section);
  void ScheduleOptions(FigureChain& chain, TimePoint time) IORDER_REQUIRES(m_section);
  void UpdateVolatility(FigureFuture& future);
  ScaledValue VolatilityOf(const FigureFuture& future) IORDER_REQUIRES(m_section);
  void UpdateOptions(FigureChain& chain);
  void Tell(const FigureOption& option);
  /// The end of a chain's last day, or none while that isn't known.
  std::optional<TimePoint> ExpiryOf(const FigureChain& chain);

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  const Milliseconds m_period;
  CCriticalSection m_section;
  CFigureMarket m_market IORDER_GUARDED_BY(m_section);
  // The bus's thread alone:
  CChainPass m_pass;
  RecordChange m_figures;    ///< all fields, with values to be set
  RecordChange m_noFigures;  ///< all fields go
};

}  // namespace iorder

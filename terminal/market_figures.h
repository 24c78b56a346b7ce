#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/settings_file.h"
#include "platform/world_runtime.h"
#include "terminal/bus_thread.h"
#include "terminal/chain_volatility.h"
#include "terminal/day.h"
#include "terminal/local_time.h"
#include "terminal/record_bus.h"

namespace iorder {

/// Works out the option figures of the records "OPT.Volatility.<future>" from the market: field "ImpVol", a
/// scaled value in percent, see ChainVolatility. The chain is the one whose underlying is that future: that
/// of its month and of a product that the settings give this future ("ComShared/OpenLottery.ini",
/// [UnderlyingF]), or of the product that is named like it. Of several the one that expires first is taken.
/// Years run to the end of the expiry date, 365 days each.
///
/// A record is worked out while it is subscribed, anew when a price of its market has changed and
/// at most once in the head's "figures_ms", and fires an update when it has changed.
///
/// Any thread may call; figures are worked out and fired on the thread of the bus. The lock covers prices and
/// what belongs to them; nothing is fired under it.
class CMarketFigures {
 public:
  struct Chain;
  struct Figure;

  /// An option or future whose prices count.
  struct Series {
    ScaledValue* last = nullptr;
    Chain* chain = nullptr;    ///< of an option
    Figure* figure = nullptr;  ///< of a future
  };

  CMarketFigures(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread, ISettingsFile& settings,
                 const std::wstring& hostFolder, Milliseconds period);
  ~CMarketFigures();

  /// Makes the record of that name, if it is one of those that are worked out. It holds nothing yet.
  void Make(const std::wstring& name);
  /// The engine wants a record, or doesn't any more.
  void Subscribe(const std::wstring& name);
  void Unsubscribe(const std::wstring& name);

  /// Takes the expiry dates of options.
  void AddSymbols(const SymbolsAction& symbols);
  /// For the quote path: found once. None if the symbol's prices count for nothing.
  Series* Find(const std::wstring& symbol);
  /// The market moves; before the bus shows it.
  void OnQuote(Series& series, const QuoteUpdate& update);

 private:
  Series* FindLocked(const std::wstring& symbol) IORDER_REQUIRES(m_section);
  Series MakeOption(const std::wstring& symbol) IORDER_REQUIRES(m_section);
  Figure& FigureOf(const std::wstring& future) IORDER_REQUIRES(m_section);
  Figure* FigureOfRecord(const std::wstring& name) IORDER_REQUIRES(m_section);
  void LinkLocked(Figure& figure) IORDER_REQUIRES(m_section);
  std::wstring UnderlyingOf(const Chain& chain) IORDER_REQUIRES(m_section);
  /// When the figure is to be worked out; none if it is underway or isn't wanted.
  std::optional<TimePoint> ScheduleLocked(Figure& figure) IORDER_REQUIRES(m_section);
  ScaledValue WorkOutLocked(const Figure& figure) IORDER_REQUIRES(m_section);
  double YearsTo(int64_t endDate);
  void Post(Figure& figure, const std::optional<TimePoint>& time);
  void Update(Figure& figure);

  IWorldRuntime& m_runtime;
  CEmbeddedBus& m_bus;
  CBusThread& m_busThread;
  ISettingsFile& m_settings;
  const std::wstring m_settingsPath;
  const Milliseconds m_period;
  CCriticalSection m_section;
  std::map<std::wstring, Series> m_series IORDER_GUARDED_BY(m_section);
  std::map<std::wstring, Chain> m_chains IORDER_GUARDED_BY(m_section);    ///< by product and month
  std::map<std::wstring, Figure> m_figures IORDER_GUARDED_BY(m_section);  ///< by future
};

}  // namespace iorder

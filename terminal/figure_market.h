#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/date_time.h"
#include "platform/settings_file.h"
#include "terminal/chain_volatility.h"
#include "terminal/day.h"
#include "terminal/option_figures.h"
#include "terminal/quote_update.h"

namespace iorder {

class CBusObject;
struct FigureChain;

/// The price of an option or future that figures are worked out from: that of the last trade, or where none
/// was the middle of bid and ask.
class CFigurePrice {
 public:
  /// The market moves. Whether the price was told anew, also if it is the same.
  bool Take(const QuoteUpdate& update);
  /// NoValue: none.
  ScaledValue Price() const { return m_price; }

 private:
  ScaledValue Middle() const;

  ScaledValue m_last = NoValue;
  ScaledValue m_bid = NoValue;
  ScaledValue m_ask = NoValue;
  ScaledValue m_price = NoValue;
};

inline double YearsBetween(TimePoint from, TimePoint to) {
  constexpr double kMsOfYear = 365.0 * 24 * 3600 * 1000;
  return static_cast<double>((to - from).count()) / kMsOfYear;
}

/// Whether the record of a future or option is worked out, and when it was.
struct FigureRecord {
  bool isWanted = false;  ///< by the engine
  bool isGiven = false;   ///< by lines of the day
  TimePoint lastTime;

  bool IsWorkedOut() const { return isWanted && !isGiven; }
};

/// A future, with its record "OPT.Volatility.<future>".
struct FigureFuture {
  std::wstring symbol;
  CFigurePrice price;
  std::vector<FigureChain*> chains;  ///< that are valued by it
  FigureRecord record;
  bool isUnderway = false;
  ScaledValue told = NoValue;
};

/// An option, with its record "OPT.REAL.<option>".
struct FigureOption {
  std::wstring symbol;
  FigureChain* chain = nullptr;
  ScaledValue strike = 0;
  bool isCall = false;

  CFigurePrice price;
  ScaledValue* chainPrice = nullptr;  ///< its place in the chain
  /// When the price was told, and the future's by then, where that is known: the volatility that it implies
  /// belongs to them, however the market moves on.
  TimePoint priceTime;
  ScaledValue priceForward = NoValue;
  bool isPriceNew = false;  ///< its volatility isn't known yet
  double volatility = 0;    ///< that the price implies, in percent; 0: none

  FigureRecord record;
  bool isMoved = false;  ///< it is to be worked out anew
  bool hasFigures = false;
  OptionFigures told{};
  CBusObject* object = nullptr;  ///< the record, once it is wanted
};

/// The options of one product and month.
struct FigureChain {
  std::wstring product;  ///< "ND.O.TWF.TX"
  std::wstring month;
  FigureFuture* future = nullptr;
  std::deque<FigureOption> options;
  ChainPrices prices;
  int64_t quotedEnd = 0;  ///< yyyymmdd, of a quote; 0: not told
  int64_t symbolEnd = 0;  ///< of the symbols

  size_t workedOut = 0;           ///< options whose records are worked out
  ScaledValue forward = NoValue;  ///< that they were worked out with
  bool hasNewEnd = false;         ///< since then
  TimePoint lastTime;             ///< at which records were worked out
  std::optional<TimePoint> due;   ///< when they are next

  /// 0: not known yet.
  int64_t EndDate() const { return quotedEnd != 0 ? quotedEnd : symbolEnd; }
  /// Prices that were told before the future had one belong to its first.
  void TakeFirstForward();
};

/// The futures and options of a day, as their figures see them: which chain is valued by which future, what
/// it costs, when it expires. It has no lock of its own; what it gives out stays where it is.
class CFigureMarket {
 public:
  /// One of the two, or none if the symbol's prices count for nothing.
  struct Series {
    FigureFuture* future = nullptr;
    FigureOption* option = nullptr;
  };

  CFigureMarket(ISettingsFile& settings, std::wstring settingsPath)
      : m_settings(settings), m_settingsPath(std::move(settingsPath)) {}

  static bool IsFuture(const std::wstring& symbol);
  static bool IsOption(const std::wstring& symbol);

  /// These make what isn't there yet.
  Series Find(const std::wstring& symbol);
  FigureFuture& FutureOf(const std::wstring& symbol);
  /// None if the symbol is no option.
  FigureOption* FindOption(const std::wstring& symbol);

  /// Takes the expiry dates of options.
  void AddSymbols(const SymbolsAction& symbols);
  /// Reads anew which future each chain is valued by: the settings have changed.
  void LinkAll();

  std::map<std::wstring, FigureFuture>& Futures() { return m_futures; }
  std::map<std::wstring, FigureChain>& Chains() { return m_chains; }

 private:
  void Link(FigureChain& chain);

  ISettingsFile& m_settings;
  const std::wstring m_settingsPath;
  std::map<std::wstring, FigureFuture> m_futures;   ///< by symbol
  std::map<std::wstring, FigureChain> m_chains;     ///< by product and month
  std::map<std::wstring, FigureOption*> m_options;  ///< by symbol
};

}  // namespace iorder

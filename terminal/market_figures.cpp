#include "terminal/market_figures.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "records/option_figures_record.h"
#include "records/quote_field.h"
#include "terminal/local_time.h"

namespace iorder {
namespace {

constexpr std::wstring_view kVolatilityRecord = L"OPT.Volatility.";
constexpr std::wstring_view kMcode = L"MCODE";

FieldValue Number(Value value) {
  return {FieldValue::Kind::kValue, std::move(value), {}};
}

/// All fields of an option's record, as they are with figures or without.
RecordChange AllFields(bool hasFigures) {
  RecordChange change;
  const FieldValue value = hasFigures ? Number(int64_t{0}) : FieldValue{FieldValue::Kind::kRemove, {}, {}};
  for (const OptionFigureField& field : kOptionFigureFields) {
    change.fields.push_back({std::wstring(field.name), value});
  }
  change.fields.push_back({std::wstring(kMcode), Number(hasFigures ? 1 : 0)});
  return change;
}

}  // namespace

CMarketFigures::CMarketFigures(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                               ISettingsFile& settings, const std::wstring& hostFolder, Milliseconds period)
    : m_runtime(runtime),
      m_bus(bus),
      m_busThread(busThread),
      m_period(period),
      m_section(runtime, "figures"),
      m_market(settings, hostFolder + L"ComShared\\OpenLottery.ini"),
      m_figures(AllFields(true)),
      m_noFigures(AllFields(false)) {}

// ---- Records ----

bool CMarketFigures::Make(const std::wstring& name) {
  const bool isVolatility =
      name.starts_with(kVolatilityRecord) && CFigureMarket::IsFuture(name.substr(kVolatilityRecord.size()));
  const bool isOption = name.starts_with(kOptionFiguresRecord) &&
                        CFigureMarket::IsOption(name.substr(kOptionFiguresRecord.size()));
  if (isVolatility || isOption) m_bus.Quote(name);
  return isVolatility || isOption;
}

CMarketFigures::Series CMarketFigures::FindRecord(const std::wstring& name) {
  Series series;
  if (name.starts_with(kVolatilityRecord)) {
    series.future = &m_market.FutureOf(name.substr(kVolatilityRecord.size()));
  } else if (name.starts_with(kOptionFiguresRecord)) {
    series.option = m_market.FindOption(name.substr(kOptionFiguresRecord.size()));
  }
  return series;
}

void CMarketFigures::Subscribe(const std::wstring& name) {
  if (!Make(name)) return;  // so that the bus shows it when its data are due, and not before
  CBusObject& object = m_bus.Quote(name);
  CLockGuard guard(m_section);
  const Series series = FindRecord(name);
  SetRecord(series, &FigureRecord::isWanted, true);
  if (series.future != nullptr) {
    ScheduleVolatility(*series.future);
  } else {
    // Once: the bus's thread reads it without the lock.
    if (series.option->object == nullptr) series.option->object = &object;
    series.option->isMoved = true;
    ScheduleOptions(*series.option->chain, m_runtime.Now());
  }
}

void CMarketFigures::Unsubscribe(const std::wstring& name) {
  CLockGuard guard(m_section);
  SetRecord(FindRecord(name), &FigureRecord::isWanted, false);
}

void CMarketFigures::LeaveToLines(const std::wstring& name) {
  CLockGuard guard(m_section);
  SetRecord(FindRecord(name), &FigureRecord::isGiven, true);
}

void CMarketFigures::SetRecord(const Series& series, bool FigureRecord::*mark, bool value) {
  if (series.future != nullptr) {
    series.future->record.*mark = value;
  } else if (series.option != nullptr) {
    FigureRecord& record = series.option->record;
    size_t& workedOut = series.option->chain->workedOut;
    workedOut -= record.IsWorkedOut() ? 1 : 0;
    record.*mark = value;
    workedOut += record.IsWorkedOut() ? 1 : 0;
  }
}

// ---- Prices ----

void CMarketFigures::AddSymbols(const SymbolsAction& symbols) {
  CLockGuard guard(m_section);
  m_market.AddSymbols(symbols);
  ScheduleAll();
}

void CMarketFigures::OnSettings() {
  CLockGuard guard(m_section);
  m_market.LinkAll();
  ScheduleAll();
}

CMarketFigures::Series CMarketFigures::Find(const std::wstring& symbol) {
  CLockGuard guard(m_section);
  return m_market.Find(symbol);
}

void CMarketFigures::OnQuote(const Series& series, const QuoteUpdate& update) {
  if (series.future == nullptr && series.option == nullptr) return;
  CLockGuard guard(m_section);
  if (series.future != nullptr) {
    OnFuture(*series.future, update);
  } else if (series.option != nullptr) {
    OnOption(*series.option, update);
  }
}

void CMarketFigures::OnFuture(FigureFuture& future, const QuoteUpdate& update) {
  const ScaledValue former = future.price.Price();
  future.price.Take(update);
  if (future.price.Price() == former) return;
  ScheduleVolatility(future);
  for (FigureChain* const chain : future.chains) {
    if (former == NoValue) chain->TakeFirstForward();
    ScheduleOptions(*chain);
  }
}

void CMarketFigures::OnOption(FigureOption& option, const QuoteUpdate& update) {
  FigureChain& chain = *option.chain;
  const bool isTold = option.price.Take(update);
  if (isTold) {
    option.priceTime = m_runtime.Now();
    option.priceForward = chain.future->price.Price();
    option.isPriceNew = true;
    option.isMoved = true;
  }
  const bool hasNewEnd = TakeEndDate(chain, update);
  const bool isMoved = std::exchange(*option.chainPrice, option.price.Price()) != option.price.Price();
  if (isMoved || hasNewEnd) ScheduleVolatility(*chain.future);
  const bool movesForward = hasNewEnd || (isMoved && chain.future->price.Price() == NoValue);
  if (movesForward || (isTold && option.record.IsWorkedOut())) ScheduleOptions(chain);
}

bool CMarketFigures::TakeEndDate(FigureChain& chain, const QuoteUpdate& update) {
  const int64_t former = chain.EndDate();
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.id == quote_field::kEndDate) chain.quotedEnd = number.remove ? 0 : number.value;
  }
  const bool isNew = chain.EndDate() != former;
  chain.hasNewEnd |= isNew;
  return isNew;
}

void CMarketFigures::ScheduleAll() {
  for (auto& [symbol, future] : m_market.Futures()) ScheduleVolatility(future);
  for (auto& [month, chain] : m_market.Chains()) ScheduleOptions(chain);
}

// ---- The volatility of a future ----

void CMarketFigures::ScheduleVolatility(FigureFuture& future) {
  if (!future.record.IsWorkedOut() || future.isUnderway) return;
  future.isUnderway = true;
  m_busThread.Post(std::max(m_runtime.Now(), future.record.lastTime + m_period),
                   [this, &future] { UpdateVolatility(future); });
}

void CMarketFigures::UpdateVolatility(FigureFuture& future) {
  RecordChange record;
  {
    CLockGuard guard(m_section);
    future.isUnderway = false;
    future.record.lastTime = m_runtime.Now();
    const ScaledValue volatility = future.record.IsWorkedOut() ? VolatilityOf(future) : NoValue;
    if (volatility == NoValue || volatility == future.told) return;
    future.told = volatility;
    record.name = std::wstring(kVolatilityRecord) + future.symbol;
    record.fields = {{L"ImpVol", Number(volatility)}, {std::wstring(kMcode), Number(1)}};
  }
  m_bus.Apply(record);
  m_bus.Fire(record.name, {});
}

ScaledValue CMarketFigures::VolatilityOf(const FigureFuture& future) {
  std::vector<const FigureChain*> chains(future.chains.begin(), future.chains.end());
  std::ranges::sort(chains, {}, [](const FigureChain* chain) {
    return std::pair(chain->EndDate(), std::wstring_view(chain->product));
  });
  for (const FigureChain* const chain : chains) {
    const std::optional<TimePoint> expiry = ExpiryOf(*chain);
    const double years = expiry ? YearsBetween(m_runtime.Now(), *expiry) : 0;
    const ScaledValue volatility = ChainVolatility(chain->prices, future.price.Price(), years);
    if (volatility != NoValue) return volatility;
  }
  return NoValue;
}

// ---- The figures of options ----

void CMarketFigures::ScheduleOptions(FigureChain& chain) {
  if (chain.workedOut == 0) return;
  ScheduleOptions(chain, std::max(m_runtime.Now(), chain.lastTime + m_period));
}

void CMarketFigures::ScheduleOptions(FigureChain& chain, TimePoint time) {
  if (chain.due && *chain.due <= time) return;
  chain.due = time;
  m_busThread.Post(time, [this, &chain] { UpdateOptions(chain); });
}

void CMarketFigures::UpdateOptions(FigureChain& chain) {
  {
    CLockGuard guard(m_section);
    const TimePoint now = m_runtime.Now();
    if (!chain.due || *chain.due > now) return;  // what was due came earlier
    chain.due.reset();
    m_pass.Run(chain, now, ExpiryOf(chain), m_period);
    if (m_pass.LeavesSome()) ScheduleOptions(chain);
  }
  for (const FigureOption* const option : m_pass.Changed()) Tell(*option);
}

/// What it reads is written on the bus's thread alone.
void CMarketFigures::Tell(const FigureOption& option) {
  if (option.hasFigures) {
    for (size_t i = 0; i < option.told.size(); ++i) m_figures.fields[i].value.value = option.told[i];
  }
  m_bus.Change(*option.object, option.hasFigures ? m_figures : m_noFigures, {});
}

std::optional<TimePoint> CMarketFigures::ExpiryOf(const FigureChain& chain) {
  const std::optional<LocalTime> lastDay = MidnightOf(chain.EndDate());
  if (!lastDay) return std::nullopt;
  return m_runtime.FromLocal(ToDateTime(*lastDay + std::chrono::days(1)));
}

}  // namespace iorder

#include "terminal/market_figures.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/text.h"
#include "records/number_text.h"
#include "records/quote_field.h"

namespace iorder {
namespace {

constexpr std::wstring_view kVolatilityRecord = L"OPT.Volatility.";
constexpr std::wstring_view kOption = L"ND.O.";
constexpr std::wstring_view kFuture = L"ND.F.";
constexpr size_t kRightToken = 5;
constexpr size_t kStrikeToken = 6;
constexpr size_t kSettingLimit = 256;

/// The symbol cut at its dots; a seventh piece is the strike with all that it holds.
std::vector<std::wstring> Tokens(const std::wstring& symbol) {
  std::vector<std::wstring> tokens;
  size_t begin = 0;
  while (tokens.size() < kStrikeToken) {
    const size_t end = symbol.find(L'.', begin);
    tokens.push_back(symbol.substr(begin, end - begin));
    if (end == std::wstring::npos) return tokens;
    begin = end + 1;
  }
  tokens.push_back(symbol.substr(begin));
  return tokens;
}

}  // namespace

/// The options of one product and month.
struct CMarketFigures::Chain {
  std::wstring product;  ///< "ND.O.TWF.TX"
  std::wstring month;
  ChainPrices prices;
  int64_t quotedEnd = 0;  ///< yyyymmdd, of a quote; 0: not told
  int64_t symbolEnd = 0;  ///< of the symbols
  Figure* figure = nullptr;

  /// 0: not known yet.
  int64_t EndDate() const { return quotedEnd != 0 ? quotedEnd : symbolEnd; }
};

/// What a future's record holds.
struct CMarketFigures::Figure {
  std::wstring future;
  ScaledValue last = NoValue;
  std::vector<Chain*> chains;
  bool isWanted = false;
  bool isUnderway = false;
  TimePoint lastTime;  ///< at which it was worked out
  ScaledValue told = NoValue;
};

CMarketFigures::CMarketFigures(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread,
                               ISettingsFile& settings, const std::wstring& hostFolder, Milliseconds period)
    : m_runtime(runtime),
      m_bus(bus),
      m_busThread(busThread),
      m_settings(settings),
      m_settingsPath(hostFolder + L"ComShared\\OpenLottery.ini"),
      m_period(period),
      m_section(runtime, "figures") {}

CMarketFigures::~CMarketFigures() = default;

// ---- Records ----

void CMarketFigures::Make(const std::wstring& name) {
  // The records "OPT.REAL.<option>" would be made and worked out here, too.
  if (name.starts_with(kVolatilityRecord)) {
    RecordChange record;
    record.name = name;
    m_bus.Apply(record);
  }
}

void CMarketFigures::Subscribe(const std::wstring& name) {
  std::optional<TimePoint> time;
  Figure* figure = nullptr;
  {
    CLockGuard guard(m_section);
    figure = FigureOfRecord(name);
    if (figure == nullptr) return;
    figure->isWanted = true;
    LinkLocked(*figure);
    time = ScheduleLocked(*figure);
  }
  Post(*figure, time);
}

void CMarketFigures::Unsubscribe(const std::wstring& name) {
  CLockGuard guard(m_section);
  if (Figure* const figure = FigureOfRecord(name)) {
    figure->isWanted = false;
  }
}

CMarketFigures::Figure* CMarketFigures::FigureOfRecord(const std::wstring& name) {
  return name.starts_with(kVolatilityRecord) ? &FigureOf(name.substr(kVolatilityRecord.size())) : nullptr;
}

CMarketFigures::Figure& CMarketFigures::FigureOf(const std::wstring& future) {
  Figure& figure = m_figures[future];
  figure.future = future;
  return figure;
}

void CMarketFigures::LinkLocked(Figure& figure) {
  for (auto& [key, chain] : m_chains) {
    if (chain.figure == nullptr && UnderlyingOf(chain) == figure.future) {
      chain.figure = &figure;
      figure.chains.push_back(&chain);
    }
  }
}

std::wstring CMarketFigures::UnderlyingOf(const Chain& chain) {
  const std::wstring likeIt = std::wstring(kFuture) + chain.product.substr(kOption.size());
  return m_settings.ReadString(m_settingsPath, L"UnderlyingF", chain.product, likeIt, kSettingLimit) + L"." +
         chain.month;
}

// ---- Prices ----

void CMarketFigures::AddSymbols(const SymbolsAction& symbols) {
  constexpr size_t kSymbolColumn = 0;
  constexpr size_t kExpiryColumn = 3;
  CLockGuard guard(m_section);
  for (const SymbolsAction::Row& row : symbols.rows) {
    Series* const series = FindLocked(ToWide(row[kSymbolColumn].value_or("")));
    const int64_t date = LeadingInt64(ToWide(row[kExpiryColumn].value_or("")));
    if (series != nullptr && series->chain != nullptr && date > 0) {
      series->chain->symbolEnd = date;
    }
  }
}

CMarketFigures::Series* CMarketFigures::Find(const std::wstring& symbol) {
  CLockGuard guard(m_section);
  return FindLocked(symbol);
}

CMarketFigures::Series* CMarketFigures::FindLocked(const std::wstring& symbol) {
  const auto known = m_series.find(symbol);
  if (known != m_series.end()) {
    return &known->second;
  }
  Series series;
  if (symbol.starts_with(kFuture)) {
    series.figure = &FigureOf(symbol);
    series.last = &series.figure->last;
  } else if (symbol.starts_with(kOption)) {
    series = MakeOption(symbol);
  }
  return series.last != nullptr ? &m_series.emplace(symbol, series).first->second : nullptr;
}

CMarketFigures::Series CMarketFigures::MakeOption(const std::wstring& symbol) {
  const std::vector<std::wstring> tokens = Tokens(symbol);
  if (tokens.size() <= kStrikeToken) return {};
  const std::optional<ScaledValue> strike = ParseScaled(ToUtf8(tokens[kStrikeToken]));
  const bool isCall = tokens[kRightToken] == L"C";
  if (!strike || (!isCall && tokens[kRightToken] != L"P")) return {};
  const std::wstring product = std::wstring(kOption) + tokens[2] + L"." + tokens[3];
  const auto [found, isNew] = m_chains.try_emplace(product + L"." + tokens[4]);
  Chain& chain = found->second;
  if (isNew) {
    chain.product = product;
    chain.month = tokens[4];
    for (auto& [future, figure] : m_figures) {
      if (figure.isWanted) LinkLocked(figure);
    }
  }
  StrikePrices& prices = chain.prices[*strike];
  return {isCall ? &prices.call : &prices.put, &chain, nullptr};
}

void CMarketFigures::OnQuote(Series& series, const QuoteUpdate& update) {
  std::optional<TimePoint> time;
  Figure* figure = nullptr;
  {
    CLockGuard guard(m_section);
    bool changes = false;
    for (size_t i = 0; i < update.count; ++i) {
      const QuoteUpdate::Number& number = update.numbers[i];
      if (number.id == quote_field::kEndDate && series.chain != nullptr) {
        series.chain->quotedEnd = number.remove ? 0 : number.value;
      } else if (number.id == quote_field::kPrice) {
        const ScaledValue last = number.remove ? NoValue : number.value;
        changes |= std::exchange(*series.last, last) != last;
      }
    }
    figure = series.chain != nullptr ? series.chain->figure : series.figure;
    if (!changes || figure == nullptr) return;
    time = ScheduleLocked(*figure);
  }
  Post(*figure, time);
}

// ---- Figures ----

std::optional<TimePoint> CMarketFigures::ScheduleLocked(Figure& figure) {
  if (!figure.isWanted || figure.isUnderway) return std::nullopt;
  figure.isUnderway = true;
  return std::max(m_runtime.Now(), figure.lastTime + m_period);
}

void CMarketFigures::Post(Figure& figure, const std::optional<TimePoint>& time) {
  if (time) {
    m_busThread.Post(*time, [this, &figure] { Update(figure); });
  }
}

void CMarketFigures::Update(Figure& figure) {
  RecordChange record;
  {
    CLockGuard guard(m_section);
    figure.isUnderway = false;
    figure.lastTime = m_runtime.Now();
    const ScaledValue volatility = figure.isWanted ? WorkOutLocked(figure) : NoValue;
    if (volatility == NoValue || volatility == figure.told) return;
    figure.told = volatility;
    record.name = std::wstring(kVolatilityRecord) + figure.future;
    record.fields = {{L"ImpVol", {{}, volatility, {}}}, {L"MCODE", {{}, 1, {}}}};
  }
  m_bus.Apply(record);
  m_bus.Fire(record.name, {});
}

ScaledValue CMarketFigures::WorkOutLocked(const Figure& figure) {
  std::vector<const Chain*> chains(figure.chains.begin(), figure.chains.end());
  std::stable_sort(chains.begin(), chains.end(),
                   [](const Chain* left, const Chain* right) { return left->EndDate() < right->EndDate(); });
  for (const Chain* const chain : chains) {
    const ScaledValue volatility = ChainVolatility(chain->prices, figure.last, YearsTo(chain->EndDate()));
    if (volatility != NoValue) return volatility;
  }
  return NoValue;
}

double CMarketFigures::YearsTo(int64_t endDate) {
  using namespace std::chrono;
  const year_month_day date(year(static_cast<int>(endDate / 10000)),
                            month(static_cast<unsigned>(endDate / 100 % 100)),
                            day(static_cast<unsigned>(endDate % 100)));
  if (!date.ok()) return 0;
  constexpr double kMsOfYear = 365.0 * 24 * 3600 * 1000;
  const LocalTime end = local_days(date) + days(1);
  const LocalTime now = ToLocalTime(m_runtime.LocalTime());
  return static_cast<double>((end - now).count()) / kMsOfYear;
}

}  // namespace iorder

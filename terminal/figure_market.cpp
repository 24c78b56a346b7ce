#include "terminal/figure_market.h"

#include <utility>

#include "platform/text.h"
#include "records/number_text.h"
#include "records/quote_field.h"

namespace iorder {
namespace {

constexpr std::wstring_view kOption = L"ND.O.";
constexpr std::wstring_view kFuture = L"ND.F.";
constexpr size_t kStrikeToken = 6;
constexpr size_t kSettingLimit = 256;

/// What the symbol of an option says.
struct OptionWords {
  std::wstring product;
  std::wstring month;
  bool isCall = false;
  ScaledValue strike = 0;
};

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

/// None for what is no option.
std::optional<OptionWords> ReadOption(const std::wstring& symbol) {
  if (!symbol.starts_with(kOption)) return std::nullopt;
  const std::vector<std::wstring> tokens = Tokens(symbol);
  if (tokens.size() <= kStrikeToken) return std::nullopt;
  const std::optional<ScaledValue> strike = ParseScaled(ToUtf8(tokens[kStrikeToken]));
  const bool isCall = tokens[5] == L"C";
  if (!strike || (!isCall && tokens[5] != L"P")) return std::nullopt;
  return OptionWords{std::wstring(kOption) + tokens[2] + L"." + tokens[3], tokens[4], isCall, *strike};
}

}  // namespace

// ---- Prices ----

bool CFigurePrice::Take(const QuoteUpdate& update) {
  bool isTold = false;
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.id == quote_field::kPrice) {
      m_last = number.remove ? NoValue : number.value;
      isTold = true;
    }
  }
  if (update.best.bid != NoValue) m_bid = update.best.bid;
  if (update.best.ask != NoValue) m_ask = update.best.ask;
  const ScaledValue former = std::exchange(m_price, m_last != NoValue ? m_last : Middle());
  return isTold || m_price != former;
}

ScaledValue CFigurePrice::Middle() const {
  return m_bid > 0 && m_ask > 0 ? m_bid + (m_ask - m_bid) / 2 : NoValue;
}

void FigureChain::TakeFirstForward() {
  for (FigureOption& option : options) {
    if (option.priceForward == NoValue) option.priceForward = future->price.Price();
  }
}

// ---- Symbols ----

bool CFigureMarket::IsFuture(const std::wstring& symbol) {
  return symbol.starts_with(kFuture);
}

bool CFigureMarket::IsOption(const std::wstring& symbol) {
  return ReadOption(symbol).has_value();
}

CFigureMarket::Series CFigureMarket::Find(const std::wstring& symbol) {
  if (IsFuture(symbol)) return {&FutureOf(symbol), nullptr};
  return {nullptr, FindOption(symbol)};
}

FigureFuture& CFigureMarket::FutureOf(const std::wstring& symbol) {
  FigureFuture& future = m_futures[symbol];
  future.symbol = symbol;
  return future;
}

FigureOption* CFigureMarket::FindOption(const std::wstring& symbol) {
  const auto known = m_options.find(symbol);
  if (known != m_options.end()) return known->second;
  const std::optional<OptionWords> words = ReadOption(symbol);
  if (!words) return nullptr;
  const auto [found, isNew] = m_chains.try_emplace(words->product + L"." + words->month);
  FigureChain& chain = found->second;
  if (isNew) {
    chain.product = words->product;
    chain.month = words->month;
    Link(chain);
  }
  FigureOption& option = chain.options.emplace_back();
  option.symbol = symbol;
  option.chain = &chain;
  option.strike = words->strike;
  option.isCall = words->isCall;
  StrikePrices& prices = chain.prices[words->strike];
  option.chainPrice = words->isCall ? &prices.call : &prices.put;
  m_options.emplace(symbol, &option);
  return &option;
}

void CFigureMarket::AddSymbols(const SymbolsAction& symbols) {
  constexpr size_t kSymbolColumn = 0;
  constexpr size_t kExpiryColumn = 3;
  for (const SymbolsAction::Row& row : symbols.rows) {
    FigureOption* const option = FindOption(ToWide(row[kSymbolColumn].value_or("")));
    const int64_t date = LeadingInt64(ToWide(row[kExpiryColumn].value_or("")));
    if (option == nullptr || date <= 0) continue;
    FigureChain& chain = *option->chain;
    const int64_t former = chain.EndDate();
    chain.symbolEnd = date;
    chain.hasNewEnd |= chain.EndDate() != former;
  }
}

// ---- Chains and their futures ----

void CFigureMarket::Link(FigureChain& chain) {
  const std::wstring likeIt = std::wstring(kFuture) + chain.product.substr(kOption.size());
  const std::wstring future =
      m_settings.ReadString(m_settingsPath, L"UnderlyingF", chain.product, likeIt, kSettingLimit);
  chain.future = &FutureOf(future + L"." + chain.month);
  chain.future->chains.push_back(&chain);
  chain.TakeFirstForward();
}

void CFigureMarket::LinkAll() {
  for (auto& [symbol, future] : m_futures) future.chains.clear();
  for (auto& [key, chain] : m_chains) Link(chain);
}

}  // namespace iorder

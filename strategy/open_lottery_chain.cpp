#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "strategy/order_pricing.h"
#include "strategy/strategy_open_lottery.h"
#include "strategy/strike_selection.h"

namespace iorder {

void CStrategyOpenLottery::GetSymbolList() {
  if (m_bSymbolListReady != 0) return;
  const InfoPtr info = Info();
  if (!FindUnderlyingPrice(*info)) return;
  GetATM();
  if (!SelectSymbols(*info)) return;
  // Subscribed after the selection and not before: a symbol that it removed never costs a subscription.
  for (const std::wstring& symbol : m_chain.Symbols()) SubscribeQuote(symbol);
}

bool CStrategyOpenLottery::FindUnderlyingPrice(const COpenLotteryInfo& info) {
  std::wstring underlying;
  {
    CLockGuard guard(m_csRun);
    underlying = m_strSymbolUnderlying;
  }
  const std::wstring notReady =
      fmt::sprintf(L"GetSymbolList. UnderlyingPrice not Ready. SymbolUnderlying=%s, PriceType=%s", underlying,
                   info.m_strPriceType);
  FillUtcTime();
  if (!IsInTradingHours(GetQuote(underlying).get(), underlying)) {
    WriteLog(notReady + L". ");
    return false;
  }
  const auto field = [&](int32_t id) { return GetQuoteField(underlying, id); };
  const bool fixedPrice = ToScaled(info.m_dbOrderPrice) != NoValue;
  const std::wstring& type = info.m_strPriceType;
  const bool needsLast = fixedPrice || type == L"O" || type == L"L";
  if (needsLast && field(quote_field::kPrice) == NoValue) {
    WriteLog(notReady + fmt::sprintf(L", llPrice=%lld, llDate=%lld, llTime=%lld.", NoValue,
                                     field(quote_field::kDate), field(quote_field::kTime)));
    return false;
  }
  // Any other price type keeps the price that an earlier run left.
  if (const int32_t id = fixedPrice ? quote_field::kOpen : PriceField(type); id != 0)
    m_llUnderlyingPrice = field(id);
  const ScaledValue price = m_llUnderlyingPrice;
  if (price == NoValue) {
    WriteLog(notReady + fmt::sprintf(L", UnderlyingPrice=%lld.", price));
    return false;
  }
  WriteLog(fmt::sprintf(L"GetSymbolList. SymbolUnderlying=%s, PriceType=%s, UnderlyingPrice=%lld.",
                        underlying, type, price));
  return true;
}

void CStrategyOpenLottery::GetATM() {
  const ScaledValue price = m_llUnderlyingPrice;
  if (price == NoValue) return;
  const std::vector<ScaledValue> strikes = m_chain.Strikes();
  const auto atm = FindAtTheMoney(strikes, price);
  if (!atm) return;  // the indices of an earlier run stay
  m_lATM0IndexCall = atm->call;
  m_lATM0IndexPut = atm->put;
  const auto lower = static_cast<size_t>(atm->put);
  WriteLog(fmt::sprintf(
      L"GetATM. m_lATM0IndexCall=%d, m_lATM0IndexPut=%d. llStrike1=%lld, llStrike2=%lld, lCount=%d, "
      L"UnderlyingPrice=%f.",
      atm->call, atm->put, strikes[lower], strikes[lower + 1], strikes.size(), FromScaled(price)));
}

bool CStrategyOpenLottery::SelectSymbols(const COpenLotteryInfo& info) {
  const SelectionMode mode = SelectionModeOf(info);
  if (mode != SelectionMode::kAll) {
    if (m_lATM0IndexCall == -1 || m_lATM0IndexPut == -1) return false;
    if (mode == SelectionMode::kFlags) {
      SelectByFlags(info);
    } else {
      SelectByRange(info);
    }
  }
  m_bSymbolListReady = 1;
  return true;
}

void CStrategyOpenLottery::SelectByFlags(const COpenLotteryInfo& info) {
  const std::vector<ScaledValue> strikes = m_chain.Strikes();
  const std::set<ScaledValue> kept = KeptByFlags(strikes, {m_lATM0IndexCall, m_lATM0IndexPut}, info);
  const auto keeps = [&kept](ScaledValue strike) { return kept.contains(strike); };
  m_chain.KeepOnly(keeps, keeps, [this](const std::wstring& symbol) { m_mapSymbols.Remove(symbol); });
  std::wstring all;
  for (const std::wstring& symbol : m_chain.Symbols()) all += symbol + L";";
  WriteLog(fmt::sprintf(L"StrikePrice Range. Call Count=%d, Put Count=%d, strAll=%s.", m_chain.CallCount(),
                        m_chain.PutCount(), all));
}

void CStrategyOpenLottery::SelectByRange(const COpenLotteryInfo& info) {
  const std::vector<ScaledValue> strikes = m_chain.Strikes();
  const CStrikeRange range =
      RangeAround(strikes, {m_lATM0IndexCall, m_lATM0IndexPut}, info.m_lStrikeIn, info.m_lStrikeOut);
  const auto text = [this](ScaledValue strike) { return m_chain.StrikeText(strike); };
  WriteLog(fmt::sprintf(
      L"StrikePrice Range. Call: In=%s, Out=%s. Put: In=%s, Out=%s, lCount=%d, UnderlyingPrice=%f.",
      text(range.callIn), text(range.callOut), text(range.putIn), text(range.putOut), strikes.size(),
      FromScaled(m_llUnderlyingPrice)));
  m_chain.KeepOnly([&range](ScaledValue strike) { return range.KeepsCall(strike); },
                   [&range](ScaledValue strike) { return range.KeepsPut(strike); },
                   [this](const std::wstring& symbol) { m_mapSymbols.Remove(symbol); });
  WriteLog(fmt::sprintf(L"StrikePrice Range. Call Count=%d, Put Count=%d.", m_chain.CallCount(),
                        m_chain.PutCount()));
}

}  // namespace iorder

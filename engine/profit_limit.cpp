#include "engine/profit_limit.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "records/scaled_value.h"

namespace iorder {

namespace {

int64_t Hundredths(double number) {
  return Truncate(number * 100.0);
}

/// One side of the limits, with its words in the log.
struct CSide {
  int64_t value;
  double percent;
  const wchar_t* percentLine;
  const wchar_t* amountLine;
};

/// `amount`: profit or loss, above 0.
std::optional<std::wstring> Reached(const CSide& side, const std::wstring& tag, double cost, double amount) {
  const int64_t percentLimit = Hundredths(side.percent);
  if (percentLimit > 0) {
    const double percent = amount / cost * 100.0;
    if (percentLimit > Hundredths(percent)) return std::nullopt;
    return fmt::sprintf(side.percentLine, tag, percent, side.percent);
  }
  if (side.value <= 0 || static_cast<double>(side.value) > amount) return std::nullopt;
  return fmt::sprintf(side.amountLine, tag, amount, side.value);
}

}  // namespace

std::optional<std::wstring> ReachedLimit(const std::wstring& tag, const CPnLLimits& limits, double cost,
                                         double profit) {
  if (Hundredths(cost) <= 0) return std::nullopt;
  const int64_t hundredths = Hundredths(profit);
  if (hundredths > 0 && limits.m_lProfitEnable != 0) {
    const CSide side{
        limits.m_llProfitValue, limits.m_dbProfitValueP,
        L"[OpenLottery] CalPositionProfit.PP. strStrategyTag=%s, dbTotalPnLP=%f, dbProfitValueP=%f.",
        L"[OpenLottery] CalPositionProfit.P. strStrategyTag=%s, dbTotalPnL=%f, llProfitValue=%lld."};
    return Reached(side, tag, cost, profit);
  }
  if (hundredths < 0 && limits.m_lLossEnable != 0) {
    const CSide side{
        limits.m_llLossValue, limits.m_dbLossValueP,
        L"[OpenLottery] CalPositionProfit.LP. strStrategyTag=%s, dbTotalPnLP=%f, dbLossValueP=%f.",
        L"[OpenLottery] CalPositionProfit.L. strStrategyTag=%s, dbTotalPnL=%f, llLossValue=%lld."};
    return Reached(side, tag, cost, profit * -1.0);
  }
  return std::nullopt;
}

}  // namespace iorder

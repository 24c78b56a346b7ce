#include "strategy/lot_allocation.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

namespace iorder {

namespace {

constexpr int kMaxPasses = 100;

/// One batch on its way through the passes.
struct CAllocation {
  const int64_t cash;
  const double weight;
  const std::function<double(const std::wstring& symbol)>& priceOf;
  const std::function<void(const std::wstring& line)>& log;
  int64_t cashLeft = cash;

  void Price(CBatchSymbol& symbol) const {
    if (symbol.dbPrice) return;
    symbol.dbPrice = priceOf(symbol.strSymbol);
    symbol.llCashOrder = Truncate(*symbol.dbPrice * weight);
  }

  void LogTooCheap(const CBatchSymbol& symbol) const {
    log(fmt::sprintf(L"Check Cash Fail. Symbol=%s, CashOrder=%lld, Weight=%f, OrderPrice=%f.",
                     symbol.strSymbol, symbol.llCashOrder, weight, *symbol.dbPrice));
  }

  void LogTooDear(const CBatchSymbol& symbol) const {
    log(fmt::sprintf(L"Check Cash Fail. Symbol=%s, m_llCash=%lld, CashOrder=%lld, Weight=%f, OrderPrice=%f.",
                     symbol.strSymbol, cash, symbol.llCashOrder, weight, *symbol.dbPrice));
  }

  /// True if a further pass may add something.
  bool Pass(std::vector<CBatchSymbol>& symbols) {
    bool added = false;
    bool ended = false;
    for (CBatchSymbol& symbol : symbols) {
      Price(symbol);
      if (*symbol.dbPrice == NoPrice) continue;
      if (symbol.llCashOrder < 1) {
        LogTooCheap(symbol);
        cashLeft = -1;
        ended = true;
      } else if (cashLeft < symbol.llCashOrder) {
        if (symbol.llCashOrder > cash) LogTooDear(symbol);
      } else {
        ++symbol.lQty;
        cashLeft -= symbol.llCashOrder;
        added = true;
      }
    }
    return added && !ended;
  }
};

}  // namespace

int64_t AllocateLots(std::vector<CBatchSymbol>& symbols, int64_t cash, double weight,
                     const std::function<double(const std::wstring& symbol)>& priceOf,
                     const std::function<void(const std::wstring& line)>& log) {
  CAllocation allocation{.cash = cash, .weight = weight, .priceOf = priceOf, .log = log};
  for (int pass = 0; pass < kMaxPasses && allocation.Pass(symbols); ++pass) continue;
  return allocation.cashLeft;
}

}  // namespace iorder

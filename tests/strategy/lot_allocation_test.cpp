#include "strategy/lot_allocation.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A batch over symbols with prices of their own.
class LotAllocation : public ::testing::Test {
 protected:
  void Allocate(const std::vector<std::pair<std::wstring, double>>& prices, int64_t cash,
                double weight = 1.0) {
    m_symbols.clear();
    for (const auto& [symbol, price] : prices) {
      m_prices[symbol] = price;
      m_symbols.push_back({.strSymbol = symbol, .dbPrice = {}});
    }
    m_cashLeft = AllocateLots(
        m_symbols, cash, weight,
        [this](const std::wstring& symbol) {
          m_priced.push_back(symbol);
          return m_prices.at(symbol);
        },
        [this](const std::wstring& line) { m_log.push_back(line); });
  }

  std::vector<int32_t> Lots() const {
    std::vector<int32_t> lots;
    for (const CBatchSymbol& symbol : m_symbols) lots.push_back(symbol.lQty);
    return lots;
  }

  std::map<std::wstring, double> m_prices;
  std::vector<CBatchSymbol> m_symbols;
  std::vector<std::wstring> m_priced;
  std::vector<std::wstring> m_log;
  int64_t m_cashLeft = 0;
};

TEST_F(LotAllocation, GivesOneLotAPassInTheOrderOfTheSymbols) {
  Allocate({{L"a", 3}, {L"b", 2}}, 8);
  EXPECT_THAT(Lots(), ElementsAre(2, 1));
  EXPECT_EQ(m_cashLeft, 0);
}

TEST_F(LotAllocation, GoesOnToACheaperSymbolBehindOneThatDoesNotFit) {
  Allocate({{L"dear", 6}, {L"cheap", 2}}, 10);
  EXPECT_THAT(Lots(), ElementsAre(1, 2));
  EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(LotAllocation, LogsALotBeyondTheWholeCashAtEachAttempt) {
  Allocate({{L"dear", 11}, {L"cheap", 5}}, 10);
  EXPECT_THAT(Lots(), ElementsAre(0, 2));
  const std::wstring line =
      L"Check Cash Fail. Symbol=dear, m_llCash=10, CashOrder=11, Weight=1.000000, OrderPrice=11.000000.";
  EXPECT_THAT(m_log, ElementsAre(line, line, line));  // two passes that added, one that didn't
}

TEST_F(LotAllocation, EndsAfterThePassInWhichALotBelowOneWasMet) {
  Allocate({{L"first", 2}, {L"tiny", 0.4}, {L"last", 2}}, 100);
  EXPECT_THAT(Lots(), ElementsAre(1, 0, 0));
  EXPECT_EQ(m_cashLeft, -1);
  EXPECT_THAT(
      m_log,
      ElementsAre(L"Check Cash Fail. Symbol=tiny, CashOrder=0, Weight=1.000000, OrderPrice=0.400000."));
}

TEST_F(LotAllocation, PassesOverASymbolWithoutAPriceSilently) {
  Allocate({{L"none", NoPrice}, {L"one", 4}}, 9);
  EXPECT_THAT(Lots(), ElementsAre(0, 2));
  EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(LotAllocation, PricesASymbolOnceAndInTheFirstPass) {
  Allocate({{L"a", 1}, {L"b", NoPrice}}, 5);
  EXPECT_THAT(m_priced, ElementsAre(L"a", L"b"));
}

TEST_F(LotAllocation, StopsAtAHundredLotsOfASymbol) {
  Allocate({{L"a", 1}, {L"b", 2}}, 100000);
  EXPECT_THAT(Lots(), ElementsAre(100, 100));
  EXPECT_EQ(m_cashLeft, 100000 - 300);
}

TEST_F(LotAllocation, CutsTheCostOfALotToWholeMoney) {
  Allocate({{L"a", 1.99}}, 10, 1.0);
  EXPECT_THAT(Lots(), ElementsAre(10));
  Allocate({{L"a", 1.99}}, 10, 2.0);
  EXPECT_THAT(Lots(), ElementsAre(3));
}

TEST_F(LotAllocation, BuysNothingWithoutACashLimit) {
  Allocate({{L"a", 1}}, NoValue);
  EXPECT_THAT(Lots(), ElementsAre(0));
  EXPECT_EQ(m_cashLeft, NoValue);
  EXPECT_EQ(m_log.size(), 1u);
}

}  // namespace
}  // namespace iorder::testing

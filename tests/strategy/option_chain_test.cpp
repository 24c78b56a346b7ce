#include "strategy/option_chain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/virtual/virtual_runtime.h"

namespace iorder {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ScaledValue kUnit = 10000000000;

std::wstring Call(const std::wstring& strike) {
  return L"ND.O.TWF.TX.202403.C." + strike;
}
std::wstring Put(const std::wstring& strike) {
  return L"ND.O.TWF.TX.202403.P." + strike;
}

class OptionChain : public ::testing::Test {
 protected:
  static VirtualRuntimeOptions Options() {
    VirtualRuntimeOptions options;
    options.start = {.year = 2024, .month = 3, .day = 4};
    return options;
  }

  CVirtualRuntime m_runtime{Options()};
  COptionChain m_chain{m_runtime};
};

TEST_F(OptionChain, AStrikeIsTheNumberBehindTheRight) {
  EXPECT_EQ(18000 * kUnit, StrikeOf(Call(L"18000")));
  EXPECT_EQ(5 * kUnit / 2, StrikeOf(Call(L"2.5")));
  EXPECT_EQ(90 * kUnit, StrikeOf(Put(L"90.P.90")));
  EXPECT_EQ(90 * kUnit, StrikeOf(Put(L"90W")));
  EXPECT_EQ(0, StrikeOf(L"ND.O.TWF.TX.202403"));
}

TEST_F(OptionChain, StrikesAreDistinctByTheirNumber) {
  m_runtime.Run([this] {
    for (const wchar_t* strike : {L"100", L"90", L"100.0", L"95.5"}) m_chain.AddStrike(Call(strike));
    EXPECT_THAT(m_chain.Strikes(), ElementsAre(100 * kUnit, 90 * kUnit, 191 * kUnit / 2));
    m_chain.SortStrikes();
    EXPECT_THAT(m_chain.Strikes(), ElementsAre(90 * kUnit, 191 * kUnit / 2, 100 * kUnit));
  });
}

TEST_F(OptionChain, AStrikeKeepsTheTextThatItCameWithFirst) {
  m_runtime.Run([this] {
    for (const wchar_t* strike : {L"100.0", L"100"}) m_chain.AddStrike(Call(strike));
    EXPECT_EQ(L"100.0", m_chain.StrikeText(100 * kUnit));
    EXPECT_EQ(L"", m_chain.StrikeText(90 * kUnit));
    EXPECT_EQ(L"", m_chain.StrikeText(NoValue));
  });
}

TEST_F(OptionChain, SymbolsComeInTheirOrderCallsFirst) {
  m_runtime.Run([this] {
    EXPECT_EQ(L"", m_chain.FirstSymbol());
    m_chain.AddPut(Put(L"90"));
    EXPECT_EQ(Put(L"90"), m_chain.FirstSymbol());
    m_chain.AddCall(Call(L"110"));
    m_chain.AddCall(Call(L"100"));
    EXPECT_EQ(Call(L"110"), m_chain.FirstSymbol());
    EXPECT_THAT(m_chain.Symbols(), ElementsAre(Call(L"110"), Call(L"100"), Put(L"90")));
    EXPECT_EQ(2U, m_chain.CallCount());
    EXPECT_EQ(1U, m_chain.PutCount());
  });
}

TEST_F(OptionChain, TakenSymbolsAreGoneAndStrikesStay) {
  m_runtime.Run([this] {
    m_chain.AddCall(Call(L"100"));
    m_chain.AddPut(Put(L"90"));
    m_chain.AddStrike(Call(L"100"));
    EXPECT_THAT(m_chain.TakeSymbols(), ElementsAre(Call(L"100"), Put(L"90")));
    EXPECT_THAT(m_chain.Symbols(), IsEmpty());
    EXPECT_THAT(m_chain.Strikes(), ElementsAre(100 * kUnit));
    m_chain.ClearStrikes();
    EXPECT_THAT(m_chain.Strikes(), IsEmpty());
    EXPECT_EQ(L"", m_chain.StrikeText(100 * kUnit));
  });
}

TEST_F(OptionChain, EachRightHasItsOwnRuleOfWhatStays) {
  m_runtime.Run([this] {
    for (const wchar_t* strike : {L"90", L"100", L"110"}) {
      m_chain.AddCall(Call(strike));
      m_chain.AddPut(Put(strike));
    }
    std::vector<std::wstring> removed;
    m_chain.KeepOnly([](ScaledValue strike) { return strike >= 100 * kUnit; },
                     [](ScaledValue strike) { return strike < 100 * kUnit; },
                     [&removed](const std::wstring& symbol) { removed.push_back(symbol); });
    EXPECT_THAT(m_chain.Symbols(), ElementsAre(Call(L"100"), Call(L"110"), Put(L"90")));
    EXPECT_THAT(removed, ElementsAre(Call(L"90"), Put(L"100"), Put(L"110")));
  });
}

TEST_F(OptionChain, WhatIsNotKeptLeavesTheStrikes) {
  m_runtime.Run([this] {
    m_chain.AddCall(Call(L"100"));
    m_chain.AddStrike(Call(L"100"));
    const auto none = [](ScaledValue) { return false; };
    m_chain.KeepOnly(none, none, [](const std::wstring&) {});
    EXPECT_THAT(m_chain.Symbols(), IsEmpty());
    EXPECT_THAT(m_chain.Strikes(), ElementsAre(100 * kUnit));
  });
}

}  // namespace
}  // namespace iorder

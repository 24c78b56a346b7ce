#include "engine/intelligent_order.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/good_host.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using Lines = std::vector<std::wstring>;

class IntelligentOrder : public testing::Test {
 protected:
  void Command(CIntelligentOrder& engine, const std::wstring& text) {
    engine.OnTopicMessage(L"TRADE.IntelligentOrder", 0, 0, text, {});
    m_world.runtime.Sleep(Milliseconds(10));
  }
  /// Answers the opening of records out of the bus.
  void ServeRecords(CGoodHost& host) {
    host.openRecord = [this](const std::wstring& name) { return m_world.embeddedBus.Open(name); };
  }
  int64_t Advised() const {
    const auto& calls = m_world.bus.changes->calls;
    return std::count(calls.begin(), calls.end(), L"advise");
  }
  static bool Has(const CGoodHost& host, const std::wstring& event) {
    return std::find(host.events.begin(), host.events.end(), event) != host.events.end();
  }

  CVirtualWorld m_world;
  CGoodHost m_first;
  CGoodHost m_second;
};

TEST_F(IntelligentOrder, WithoutASinkTheEngineIsInert) {
  m_world.Run([this] {
    CIntelligentOrder engine(m_world.world);
    engine.SetPhase(1, 1);
    engine.SetPhase(1, 2);
    Command(engine, L"{}");
    m_world.runtime.Sleep(std::chrono::minutes(3));
    engine.SetPhase(1, 4);
    EXPECT_EQ(m_world.bus.changes->calls, Lines());
  });
}

TEST_F(IntelligentOrder, BothSinksHearEverything) {
  m_world.Run([this] {
    CIntelligentOrder engine(m_world.world);
    engine.Advise(&m_first);
    engine.Advise(&m_second);
    engine.SetPhase(1, 1);
    engine.SetPhase(1, 2);
    Command(engine, L"{}");
    engine.SetPhase(1, 4);
    EXPECT_EQ(m_first.events, m_second.events);
    EXPECT_TRUE(Has(m_second, L"log <CIntelligentOrder>New Intelligent Order : {}"));
  });
}

TEST_F(IntelligentOrder, TheRecordsOfTheLastSinkAreOpened) {
  m_world.Run([this] {
    ServeRecords(m_second);
    m_first.openRecord = [](const std::wstring&) { return 0; };
    CIntelligentOrder engine(m_world.world);
    engine.Advise(&m_first);
    engine.Advise(&m_second);
    engine.SetPhase(1, 1);
    engine.SetPhase(1, 2);
    EXPECT_EQ(Advised(), 4);  // reports, securities, clock and accounts come with events
    engine.SetPhase(1, 4);
  });
}

TEST_F(IntelligentOrder, TheRecordsOfAnEarlierSinkAreNot) {
  m_world.Run([this] {
    ServeRecords(m_first);
    m_second.openRecord = [](const std::wstring&) { return std::nullopt; };
    CIntelligentOrder engine(m_world.world);
    engine.Advise(&m_first);
    engine.Advise(&m_second);
    engine.SetPhase(1, 1);
    engine.SetPhase(1, 2);
    EXPECT_EQ(m_world.bus.changes->calls, Lines());
    engine.SetPhase(1, 4);
  });
}

TEST_F(IntelligentOrder, ASinkThatWasTakenAwayHearsNoMore) {
  m_world.Run([this] {
    CIntelligentOrder engine(m_world.world);
    const int32_t cookie = engine.Advise(&m_first);
    engine.SetPhase(1, 1);
    m_world.runtime.Sleep(Milliseconds(10));
    EXPECT_TRUE(engine.Unadvise(cookie));
    EXPECT_FALSE(engine.Unadvise(cookie + 1));
    const size_t heard = m_first.events.size();
    EXPECT_GT(heard, 0u);
    Command(engine, L"{}");
    EXPECT_EQ(m_first.events.size(), heard);
  });
}

TEST_F(IntelligentOrder, PhaseFourDisconnectsClockAndAccountsAndKeepsTheOtherRecordsToTheEnd) {
  m_world.Run([this] {
    ServeRecords(m_first);
    const auto disconnected = [this] {
      const auto& calls = m_world.bus.changes->calls;
      return std::count(calls.begin(), calls.end(), L"unadvise");
    };
    {
      CIntelligentOrder engine(m_world.world);
      engine.Advise(&m_first);
      engine.SetPhase(1, 1);
      engine.SetPhase(1, 2);
      engine.SetPhase(1, 4);
      EXPECT_EQ(disconnected(), 2);
    }
    EXPECT_EQ(disconnected(), 4);
  });
}

TEST_F(IntelligentOrder, AMessageForAnAccountUpdateInFlightDelaysPhaseFour) {
  m_world.Run([this] {
    ServeRecords(m_first);
    CIntelligentOrder engine(m_world.world);
    engine.Advise(&m_first);
    engine.SetPhase(1, 1);
    engine.SetPhase(1, 2);
    // An item that never resolves keeps the update busy for a second.
    m_world.Record({.name = L"ACCOUNTS", .nodes = {{.name = L"B1", .items = {{.name = L"A1"}}}}});
    m_world.embeddedBus.FailItem(L"ACCOUNTS", L"B1", L"A1", std::nullopt);
    const auto update =
        m_world.Start(L"bus", [this] { m_world.embeddedBus.Fire(L"ACCOUNTS", {.originator = 1}); });
    m_world.runtime.Sleep(Milliseconds(100));
    engine.SetPhase(1, 4);
    EXPECT_EQ(m_world.Elapsed(), 1000);
    m_world.runtime.Wait(*update, std::nullopt);
  });
}

TEST_F(IntelligentOrder, AnEngineThatWasNeverStartedGoesQuietly) {
  m_world.Run([this] {
    {
      CIntelligentOrder engine(m_world.world);
      engine.Advise(&m_first);
      engine.OnTopicMessage(L"TRADE.IntelligentOrder", 0, 0, L"{}", {});
    }
    EXPECT_EQ(m_first.events, Lines());
  });
}

TEST_F(IntelligentOrder, AnEngineThatWasNeverStoppedGoesWithItsThreads) {
  m_world.Run([this] {
    {
      CIntelligentOrder engine(m_world.world);
      engine.Advise(&m_first);
      engine.SetPhase(1, 1);
      engine.SetPhase(1, 2);
      m_world.runtime.Sleep(std::chrono::minutes(2));
      engine.OnTopicMessage(L"TRADE.IntelligentOrder", 0, 0, L"{}", {});
    }
    const size_t heard = m_first.events.size();
    m_world.runtime.Sleep(std::chrono::minutes(5));
    EXPECT_EQ(m_first.events.size(), heard);
  });
}

}  // namespace
}  // namespace iorder::test

#include "engine/host_events_proxy.h"

#include <gtest/gtest.h>

#include "tests/support/good_host.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using Lines = std::vector<std::wstring>;

/// A sink whose replies are chosen.
class CReplyingHost : public CGoodHost {
 public:
  std::optional<int32_t> Advertise(const std::wstring& topic, int32_t value) override {
    CGoodHost::Advertise(topic, value);
    return reply;
  }
  std::optional<int32_t> Subscribe(const std::wstring& topic) override {
    CGoodHost::Subscribe(topic);
    if (onSubscribe) onSubscribe();
    return reply;
  }
  std::optional<int32_t> OpenRecord(const std::wstring& name) override {
    CGoodHost::OpenRecord(name);
    return reply;
  }
  Value Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                const Value& value) override {
    CGoodHost::Command(topic, first, second, text, value);
    return reply ? Value(*reply) : Value();
  }

  std::optional<int32_t> reply;
  std::function<void()> onSubscribe;
};

class HostEvents : public testing::Test {
 protected:
  void FireAll() {
    m_replies = {m_events.FireAdvertise(L"A", 1), m_events.FireSubscribe(L"S"),
                 m_events.FireOpenRecord(L"O")};
    m_events.FireUnsubscribe(L"U");
    m_command = m_events.FireCommand(L"C", 1, 2, L"text", 5);
    m_events.FireWriteLog(L"line");
    m_events.ReportFault(7, L"fault");
  }
  inline static const Lines kAll{L"advertise A 1",      L"subscribe S", L"open O",       L"unsubscribe U",
                                 L"command C 1 2 text", L"log line",    L"fault 7 fault"};

  CVirtualWorld m_world;
  CProxy_INordoManagerEvents m_events{m_world.runtime};
  CReplyingHost m_first;
  CReplyingHost m_second;
  std::vector<int32_t> m_replies;
  Value m_command;
};

TEST_F(HostEvents, WithoutASinkNothingHappensAndRepliesAreZeroOrNone) {
  m_world.Run([this] {
    FireAll();
    EXPECT_EQ(m_replies, (std::vector<int32_t>{0, 0, 0}));
    EXPECT_EQ(m_command, Value());
  });
}

TEST_F(HostEvents, OneSinkGetsEachEventAndItsRepliesComeBack) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_first.reply = 9;
    FireAll();
    EXPECT_EQ(m_first.events, kAll);
    EXPECT_EQ(m_replies, (std::vector<int32_t>{9, 9, 9}));
    EXPECT_EQ(m_command, Value(9));
  });
}

TEST_F(HostEvents, BothSinksGetEachEventAndTheReplyOfTheLastCounts) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_events.Advise(&m_second);
    m_first.reply = 1;
    m_second.reply = 2;
    FireAll();
    EXPECT_EQ(m_first.events, kAll);
    EXPECT_EQ(m_second.events, kAll);
    EXPECT_EQ(m_replies, (std::vector<int32_t>{2, 2, 2}));
    EXPECT_EQ(m_command, Value(2));
  });
}

TEST_F(HostEvents, AFailingLastSinkGivesNoReplyThoughTheFirstHadOne) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_events.Advise(&m_second);
    m_first.reply = 1;
    FireAll();
    EXPECT_EQ(m_replies, (std::vector<int32_t>{0, 0, 0}));
    EXPECT_EQ(m_command, Value());
  });
}

TEST_F(HostEvents, AFailingFirstSinkDoesNotKeepTheEventFromTheSecond) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_events.Advise(&m_second);
    m_second.reply = 2;
    FireAll();
    EXPECT_EQ(m_second.events, kAll);
    EXPECT_EQ(m_replies, (std::vector<int32_t>{2, 2, 2}));
  });
}

TEST_F(HostEvents, ASinkThatWasTakenAwayGetsNothing) {
  m_world.Run([this] {
    const int32_t cookie = m_events.Advise(&m_first);
    m_events.Advise(&m_second);
    m_second.reply = 2;
    EXPECT_TRUE(m_events.Unadvise(cookie));
    FireAll();
    EXPECT_EQ(m_first.events, Lines());
    EXPECT_EQ(m_second.events, kAll);
  });
}

TEST_F(HostEvents, TheReplyOfTheSinkThatIsLeftCounts) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    const int32_t cookie = m_events.Advise(&m_second);
    m_first.reply = 1;
    m_second.reply = 2;
    EXPECT_TRUE(m_events.Unadvise(cookie));
    FireAll();
    EXPECT_EQ(m_replies, (std::vector<int32_t>{1, 1, 1}));
  });
}

TEST_F(HostEvents, ACookieThatWasNeverGivenOutIsRefused) {
  m_world.Run([this] {
    const int32_t cookie = m_events.Advise(&m_first);
    EXPECT_GT(cookie, 0);
    EXPECT_FALSE(m_events.Unadvise(cookie + 1));
    EXPECT_FALSE(m_events.Unadvise(0));
    EXPECT_FALSE(m_events.Unadvise(-1));
    FireAll();
    EXPECT_EQ(m_first.events, kAll);
  });
}

TEST_F(HostEvents, EachSinkHasACookieOfItsOwn) {
  m_world.Run([this] { EXPECT_NE(m_events.Advise(&m_first), m_events.Advise(&m_second)); });
}

TEST_F(HostEvents, ASinkThatComesDuringAnEventMissesIt) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_first.onSubscribe = [this] {
      m_events.Advise(&m_second);
      m_first.onSubscribe = nullptr;
    };
    m_events.FireSubscribe(L"S");
    EXPECT_EQ(m_second.events, Lines());
    m_events.FireSubscribe(L"T");
    EXPECT_EQ(m_second.events, Lines{L"subscribe T"});
  });
}

TEST_F(HostEvents, ASinkThatGoesDuringAnEventIsSkipped) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    const int32_t cookie = m_events.Advise(&m_second);
    m_first.onSubscribe = [this, cookie] { m_events.Unadvise(cookie); };
    m_events.FireSubscribe(L"S");
    EXPECT_EQ(m_second.events, Lines());
  });
}

TEST_F(HostEvents, EventsOfSeveralThreadsAreInTheHostAtOnce) {
  m_world.Run([this] {
    m_events.Advise(&m_first);
    m_first.onSubscribe = [this] { m_world.runtime.Sleep(Milliseconds(1000)); };
    const auto slow = m_world.Start(L"slow", [this] { m_events.FireSubscribe(L"S"); });
    m_world.runtime.Sleep(Milliseconds(100));
    m_events.FireWriteLog(L"line");
    EXPECT_EQ(m_world.Elapsed(), 100);
    EXPECT_EQ(m_first.events, (Lines{L"subscribe S", L"log line"}));
    m_world.runtime.Wait(*slow, std::nullopt);
  });
}

}  // namespace
}  // namespace iorder::test

#include "grouporder/group_orders.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "grouporder/group_order_text.h"
#include "tests/strategy/json_text.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const wchar_t* kOption = L"ND.O.TWF.TX.202403.C.18000";

/// A host with a chain of one option that notes what is sent and which timers are armed.
class CGroupHost : public IGroupOrderHost {
 public:
  explicit CGroupHost(CVirtualWorld& world) : m_world(world) {}

  World& GetWorld() override { return m_world.world; }
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override {
    if (onOpen) onOpen();
    return CBaseData::OpenByHandle(m_world.world, m_world.Record({.name = name}), receiver);
  }
  Value SendHostEvent(const std::wstring& topic, int32_t, int32_t, const std::wstring& text,
                      const Value&) override {
    EXPECT_EQ(L"TRADE.NEWORDER", topic);
    sent.push_back(text);
    if (onSend) onSend();
    return {};
  }
  std::unique_ptr<CBaseData> FollowRecord(int32_t handle) override {
    followed.push_back(handle);
    if (onFollow) onFollow();
    if (!canFollow) return nullptr;
    return CBaseData::OpenByHandle(m_world.world, handle, nullptr);
  }
  std::vector<std::wstring> QueryOptionList(const std::wstring&) override { return chain; }
  bool EnsureOptionTopic(const std::wstring& name) override {
    subscribed.push_back(name);
    return false;
  }
  bool IsQuoteValid(const std::wstring&) override { return false; }
  CBaseData* StrategyPosition() override { return nullptr; }
  CBaseData* ExtendOrderSetup() override { return nullptr; }
  int32_t ReplaySpeed() override { return speed; }
  int32_t ArmRecheck(int32_t timerId, int32_t delayMs) override {
    armed.emplace_back(timerId, delayMs);
    return armResult;
  }
  int32_t PutOffRecheck(int32_t timerId, int32_t delayMs) override {
    putOff.emplace_back(timerId, delayMs);
    return 1;
  }

  std::function<void()> onSend;
  std::function<void()> onOpen;
  std::function<void()> onFollow;
  bool canFollow = true;
  std::vector<std::wstring> chain{kOption};
  int32_t speed = 0;
  int32_t armResult = 1;
  std::vector<std::wstring> sent;
  std::vector<std::wstring> subscribed;
  std::vector<int32_t> followed;
  std::vector<std::pair<int32_t, int32_t>> armed;
  std::vector<std::pair<int32_t, int32_t>> putOff;

 private:
  CVirtualWorld& m_world;
};

/// Is told of updates alone.
class CUpdateWatch : public IGroupOrderWatch {
 public:
  explicit CUpdateWatch(std::function<void()> onUpdate) : m_onUpdate(std::move(onUpdate)) {}

  void OnLook(const stcIntlgntOrd&, const CStopCheck&) override {}
  void OnCycle(const stcIntlgntOrd&, const CGroupCycle&) override {}
  void OnEnd(const stcIntlgntOrd&, GroupOrderEnd) override {}
  void OnChild(const stcIntlgntOrd&, const std::wstring&) override {}
  void OnChildUpdate(const stcIntlgntOrd&, const std::wstring&, int32_t, size_t) override { m_onUpdate(); }
  void OnNoLook(const stcIntlgntOrd&) override {}
  void OnRecheck(const stcIntlgntOrd&, int32_t, int32_t) override {}

 private:
  std::function<void()> m_onUpdate;
};

class GroupOrders : public ::testing::Test {
 protected:
  void Run(const std::function<void(CGroupOrders& orders)>& body) {
    m_world.Run([&] {
      CGroupOrders orders(m_host);
      body(orders);
      orders.CloseChildren();
    });
  }
  static void Accept(CGroupOrders& orders, const char* strategyID = "G1") {
    orders.ParseGroupOrder(iorder::testing::Json(
        std::string(
            R"({"StopCondition":"Delta=1","Order":[{"CallPut":"Call","Qty":1},{"CallPut":"Call","Qty":2}],"StrategyID":")") +
        strategyID + "\"}"));
  }
  int32_t Child(const std::wstring& levelKey, int32_t execType, const std::wstring& strategyID = L"G1") {
    return m_world.Record({.name = levelKey,
                           .fields = {Field(L"Strategy", strategyID), Field(L"LevelKey", levelKey),
                                      Field(L"ExecType", execType)}});
  }
  void Update(CGroupOrders& orders, int32_t handle) {
    orders.OnChildOrderUpdate(*CBaseData::OpenByHandle(m_world.world, handle, nullptr));
  }

  CVirtualWorld m_world;
  CGroupHost m_host{m_world};
};

TEST_F(GroupOrders, AnOrderIsKnownBeforeItsFirstStringLeaves) {
  Run([this](CGroupOrders& orders) {
    const int32_t child = Child(L"C1", 3);
    m_host.onSend = [&] {
      if (m_host.sent.size() > 1) return;
      orders.RegisterChildOrder(child);
      Update(orders, child);
    };
    Accept(orders);
    EXPECT_THAT(m_host.sent, SizeIs(2));
    EXPECT_THAT(m_host.followed, ElementsAre(child));
    EXPECT_THAT(m_host.armed, ElementsAre(std::pair(3001, 2000)))
        << "its child ended before the second string";
  });
}

TEST_F(GroupOrders, NoRecordWithDataIsNeededForTheFirstCycle) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    EXPECT_THAT(m_host.subscribed, ElementsAre(std::wstring(L"OPT.REAL.") + kOption));
    EXPECT_THAT(m_host.sent, SizeIs(2));
    orders.PassPendingOrders();
    EXPECT_THAT(m_host.sent, SizeIs(2)) << "nothing was left waiting";
  });
}

TEST_F(GroupOrders, ATimerThatRunsAlreadyIsPutOff) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t child = Child(L"C1", 3);
    Update(orders, child);
    m_host.armResult = 0;
    m_host.speed = 4;
    Update(orders, child);
    EXPECT_THAT(m_host.armed, ElementsAre(std::pair(3001, 2000), std::pair(3001, 500)));
    EXPECT_THAT(m_host.putOff, ElementsAre(std::pair(3001, 500)));
  });
}

TEST_F(GroupOrders, ATimerOfTheSameIdThatHasGoneIsArmedAnewAndNotPutOff) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t child = Child(L"C1", 3);
    Update(orders, child);
    Update(orders, child);
    EXPECT_THAT(m_host.armed, ElementsAre(std::pair(3001, 2000), std::pair(3001, 2000)));
    EXPECT_THAT(m_host.putOff, IsEmpty());
  });
}

TEST_F(GroupOrders, ANewIdThatRunsStillIsLeftAsItIs) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    m_host.armResult = 0;
    Update(orders, Child(L"C1", 3));
    EXPECT_THAT(m_host.armed, ElementsAre(std::pair(3001, 2000)));
    EXPECT_THAT(m_host.putOff, IsEmpty());
  });
}

TEST_F(GroupOrders, AnIdThatNobodyWaitsForDoesNothing) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    orders.OnOrderRecheck(3001);
    EXPECT_THAT(m_host.sent, SizeIs(2));
    Update(orders, Child(L"C1", 3));
    orders.OnOrderRecheck(3001);
    EXPECT_THAT(m_host.sent, SizeIs(4));
    orders.OnOrderRecheck(3001);
    EXPECT_THAT(m_host.sent, SizeIs(4)) << "each wait wakes once";
  });
}

TEST_F(GroupOrders, ACycleThatRunsOwnsItsOrder) {
  Run([this](CGroupOrders& orders) {
    IRuntime& runtime = m_world.runtime;
    Accept(orders);
    const int32_t child = Child(L"C1", 3);
    Update(orders, child);
    const auto goOn = runtime.CreateEvent(EventReset::kManual, false);
    m_host.onOpen = [&] { runtime.Wait(*goOn, std::nullopt); };
    const auto timer = runtime.CreateThread(L"timer 3001", [&] { orders.OnOrderRecheck(3001); });
    // An update has found the order when its timer fires, and arms another one while the cycle runs.
    CUpdateWatch watch([&, found = false]() mutable {
      if (std::exchange(found, true)) return;
      timer->Resume();
      runtime.Sleep(Milliseconds{1});
    });
    orders.SetWatch(&watch);
    Update(orders, child);
    ASSERT_EQ(std::pair(3002, 2000), m_host.armed.back());
    orders.OnOrderRecheck(3002);
    EXPECT_THAT(m_host.sent, SizeIs(2)) << "no second cycle beside the first";
    goOn->Set();
    runtime.Wait(*timer, std::nullopt);
    EXPECT_THAT(m_host.sent, SizeIs(4));
    Update(orders, child);
    orders.OnOrderRecheck(3003);
    EXPECT_THAT(m_host.sent, SizeIs(6)) << "the next cycle comes as ever";
  });
}

TEST_F(GroupOrders, AChildThatCantBeFollowedDoesntHoldTheOrderBack) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t first = Child(L"C1", 0);
    const int32_t second = Child(L"C2", 3);
    orders.RegisterChildOrder(second);
    m_host.canFollow = false;
    orders.RegisterChildOrder(first);
    Update(orders, second);
    EXPECT_THAT(m_host.armed, SizeIs(1)) << "the one that is followed has ended";
    m_host.canFollow = true;
    orders.RegisterChildOrder(first);
    EXPECT_THAT(m_host.followed, ElementsAre(second, first, first)) << "announced again, it is tried again";
  });
}

TEST_F(GroupOrders, AChildThatCantBeFollowedDoesntHoldTheOrderBackWhenTheOthersEndMeanwhile) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t first = Child(L"C1", 3);
    orders.RegisterChildOrder(first);
    m_host.canFollow = false;
    m_host.onFollow = [&] { Update(orders, first); };
    orders.RegisterChildOrder(Child(L"C2", 0));
    EXPECT_THAT(m_host.armed, ElementsAre(std::pair(3001, 2000)));
  });
}

TEST_F(GroupOrders, AChildAloneThatCantBeFollowedLeadsToNoLook) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    m_host.canFollow = false;
    orders.RegisterChildOrder(Child(L"C1", 0));
    EXPECT_THAT(m_host.armed, IsEmpty()) << "it may be working";
  });
}

TEST_F(GroupOrders, AnOrderThatWaitedIsSentOnce) {
  Run([this](CGroupOrders& orders) {
    for (const char* const id : {"G1", "G2"}) {
      const auto order = std::make_shared<stcIntlgntOrd>(m_world.runtime);
      ReadGroupOrder(iorder::testing::Json(
                         std::string(R"({"Order":[{"CallPut":"Call","Qty":1}],"StrategyID":")") + id + "\"}"),
                     *order);
      order->lMultiplier.fill(1);
      order->arCallSymbols = {std::wstring(L"OPT.REAL.") + kOption};
      orders.AddPending(order);
    }
    orders.PassPendingOrders();
    ASSERT_THAT(m_host.sent, SizeIs(2));
    EXPECT_THAT(m_host.sent[0], ::testing::HasSubstr(L"STRATEGY=G1,"));
    EXPECT_THAT(m_host.sent[1], ::testing::HasSubstr(L"STRATEGY=G2,"));
    orders.PassPendingOrders();
    EXPECT_THAT(m_host.sent, SizeIs(2));
  });
}

TEST_F(GroupOrders, TheChainIsThatOfTheAcceptance) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    m_host.chain = {L"ND.O.TWF.TX.202403.C.18100"};
    m_host.subscribed.clear();
    Update(orders, Child(L"C1", 3));
    orders.OnOrderRecheck(3001);
    ASSERT_THAT(m_host.sent, SizeIs(4));
    EXPECT_THAT(m_host.sent.back(), ::testing::HasSubstr(kOption));
    EXPECT_THAT(m_host.subscribed, IsEmpty());
  });
}

TEST_F(GroupOrders, TheDelayIsSharedByTheSpeedFromTwoOn) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t child = Child(L"C1", 3);
    for (const int32_t speed : {0, 1, 2, 3, 4, 40, 41, 100}) {
      m_host.speed = speed;
      Update(orders, child);
    }
    std::vector<int32_t> delays;
    for (const auto& [id, delay] : m_host.armed) delays.push_back(delay);
    EXPECT_THAT(delays, ElementsAre(2000, 2000, 1000, 666, 500, 50, 50, 50));
  });
}

TEST_F(GroupOrders, AfterAllIdsAreUsedTheyGoRound) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    const int32_t child = Child(L"C1", 3);
    for (int32_t id = 3001; id <= 9000; ++id) {
      Update(orders, child);
      orders.OnOrderRecheck(id);
    }
    Update(orders, child);
    EXPECT_EQ(std::pair(3000, 2000), m_host.armed.back());
    EXPECT_THAT(m_host.sent, SizeIs(2 * 6001));
  });
}

TEST_F(GroupOrders, AnOrderWhoseIdWentToAnotherNeverWakes) {
  Run([this](CGroupOrders& orders) {
    Accept(orders);
    Accept(orders, "G2");
    Update(orders, Child(L"C1", 3));
    const int32_t child = Child(L"C2", 3, L"G2");
    const auto wakeAll = [&](int32_t first, int32_t last) {
      for (int32_t id = first; id <= last; ++id) {
        Update(orders, child);
        orders.OnOrderRecheck(id);
      }
    };
    wakeAll(3002, 9000);
    wakeAll(3000, 3000);
    const size_t before = m_host.sent.size();
    wakeAll(3001, 3001);
    ASSERT_THAT(m_host.sent, SizeIs(before + 2));
    EXPECT_THAT(m_host.sent.back(), ::testing::HasSubstr(L"STRATEGY=G2,"));
    Update(orders, Child(L"C1", 3));
    EXPECT_EQ(std::pair(3001, 2000), m_host.armed.back()) << "it still counts on its old id";
    orders.OnOrderRecheck(3001);
    EXPECT_THAT(m_host.sent, SizeIs(before + 2));
  });
}

}  // namespace
}  // namespace iorder::test

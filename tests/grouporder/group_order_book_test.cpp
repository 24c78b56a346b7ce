#include "grouporder/group_order_book.h"

#include <gmock/gmock.h>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class GroupOrderBook : public ::testing::Test {
 protected:
  GroupOrderPtr Order(const std::wstring& strategyID) {
    auto order = std::make_shared<stcIntlgntOrd>(m_world.runtime);
    order->strStrategyID = strategyID;
    return order;
  }
  /// The handle of a child's record; none of its events reaches anybody.
  std::unique_ptr<CBaseData> Handle() {
    return CBaseData::OpenByHandle(m_world.world, m_world.Record({.name = L"child"}), nullptr);
  }
  /// Waits for a timer and takes the order back: its id.
  int32_t Recheck(const GroupOrderPtr& order) {
    const int32_t id = m_book.NoteRecheck(order).lTimerId;
    EXPECT_EQ(order, m_book.TakeRecheck(id));
    return id;
  }

  CVirtualWorld m_world;
  CGroupOrderBook m_book{m_world.runtime};
};

TEST_F(GroupOrderBook, TimerIdsGoFrom3001To9000AndThenRoundFrom3000) {
  const GroupOrderPtr order = Order(L"G1");
  for (int32_t id = 3001; id <= 9000; ++id) ASSERT_EQ(id, Recheck(order));
  EXPECT_EQ(3000, Recheck(order));
  EXPECT_EQ(3001, Recheck(order));
}

TEST_F(GroupOrderBook, AnOrderThatWaitsKeepsItsTimer) {
  const auto first = m_book.NoteRecheck(Order(L"G1"));
  EXPECT_TRUE(first.bNew);
  const auto again = m_book.NoteRecheck(Order(L"G1"));
  EXPECT_FALSE(again.bNew);
  EXPECT_EQ(first.lTimerId, again.lTimerId) << "an order of the same id has the same timer";
  EXPECT_EQ(3002, m_book.NoteRecheck(Order(L"G2")).lTimerId);
}

TEST_F(GroupOrderBook, ATimerWakesTheOrderThatItWasGivenToOnce) {
  const GroupOrderPtr older = Order(L"G1");
  const int32_t id = m_book.NoteRecheck(older).lTimerId;
  m_book.NoteRecheck(Order(L"G1"));
  EXPECT_EQ(nullptr, m_book.TakeRecheck(id + 1));
  EXPECT_EQ(older, m_book.TakeRecheck(id));
  EXPECT_EQ(nullptr, m_book.TakeRecheck(id));
}

TEST_F(GroupOrderBook, AnIdThatComesRoundIsTakenFromWhoStillWaitsForIt) {
  const GroupOrderPtr stale = Order(L"stale");
  ASSERT_EQ(3001, m_book.NoteRecheck(stale).lTimerId);
  const GroupOrderPtr order = Order(L"G1");
  for (int32_t id = 3002; id <= 9000; ++id) ASSERT_EQ(id, Recheck(order));
  ASSERT_EQ(3000, Recheck(order));

  const auto taken = m_book.NoteRecheck(order);
  EXPECT_EQ(3001, taken.lTimerId);
  EXPECT_TRUE(taken.bNew);
  EXPECT_EQ(stale, taken.overwritten);
  const auto asleep = m_book.NoteRecheck(stale);
  EXPECT_FALSE(asleep.bNew) << "it still has the id";
  EXPECT_EQ(3001, asleep.lTimerId);
  EXPECT_EQ(order, m_book.TakeRecheck(3001)) << "but the timer wakes the other";
}

TEST_F(GroupOrderBook, AnIdInUseByNobodyOverwritesNobody) {
  EXPECT_EQ(nullptr, m_book.NoteRecheck(Order(L"G1")).overwritten);
}

TEST_F(GroupOrderBook, TheNewerOrderOfAnIdTakesThePlaceOfTheOlder) {
  const GroupOrderPtr older = Order(L"G1");
  const GroupOrderPtr newer = Order(L"G1");
  EXPECT_EQ(nullptr, m_book.Enter(older));
  EXPECT_EQ(nullptr, m_book.Enter(Order(L"")));
  EXPECT_EQ(older, m_book.Enter(newer));
  EXPECT_EQ(newer, m_book.Enter(newer));
  EXPECT_EQ(newer, m_book.Find(L"G1"));
  EXPECT_EQ(nullptr, m_book.Find(L"g1"));
  EXPECT_EQ(newer, m_book.Remove(L"G1"));
  EXPECT_EQ(nullptr, m_book.Find(L"G1"));
  EXPECT_EQ(nullptr, m_book.Remove(L"G1"));
}

TEST_F(GroupOrderBook, PendingOrdersAreTakenAllAtOnceInTheirOrder) {
  const GroupOrderPtr first = Order(L"G1");
  const GroupOrderPtr second = Order(L"G2");
  m_book.AddPending(first);
  m_book.AddPending(second);
  EXPECT_THAT(m_book.TakePending(), ElementsAre(first, second));
  EXPECT_THAT(m_book.TakePending(), IsEmpty());
}

TEST_F(GroupOrderBook, PendingOrdersAreRemovedByTheirIndicesAsFarAsTheyAreThere) {
  std::vector<GroupOrderPtr> orders;
  for (int i = 0; i < 4; ++i) m_book.AddPending(orders.emplace_back(Order(L"G")));
  m_book.RemovePending({0, 2, 4});
  EXPECT_THAT(m_book.TakePending(), ElementsAre(orders[1], orders[3]));
}

TEST_F(GroupOrderBook, TheHandlesOfEndedChildrenComeBackWithTheNextChild) {
  m_world.Run([this] {
    EXPECT_THAT(m_book.KeepChild(L"C1", Handle()), IsEmpty());
    m_book.EndChild(L"C1");
    m_book.EndChild(L"C1");
    m_book.EndChild(L"C2");
    EXPECT_EQ(1U, m_book.KeepChild(L"C2", Handle()).size());
    EXPECT_THAT(m_book.KeepChild(L"C3", Handle()), IsEmpty()) << "each once";
  });
}

TEST_F(GroupOrderBook, AChildIsKnownFromItsNoteToItsEnd) {
  m_world.Run([this] {
    EXPECT_TRUE(m_book.NoteChild(L"C1"));
    EXPECT_FALSE(m_book.NoteChild(L"C1")) << "without a handle too";
    EXPECT_THAT(m_book.KeepChild(L"C1", Handle()), IsEmpty());
    EXPECT_FALSE(m_book.NoteChild(L"C1"));
    m_book.EndChild(L"C1");
    EXPECT_TRUE(m_book.NoteChild(L"C1"));
    m_book.EndChild(L"C1");
    EXPECT_THAT(m_book.TakeHandles(), SizeIs(1)) << "what never had a handle leaves none";
  });
}

TEST_F(GroupOrderBook, AChildKeptTwiceGivesItsFirstHandleBackWithTheNextOne) {
  m_world.Run([this] {
    EXPECT_THAT(m_book.KeepChild(L"C1", Handle()), IsEmpty());
    EXPECT_THAT(m_book.KeepChild(L"C1", Handle()), IsEmpty()) << "its event may be running";
    EXPECT_EQ(1U, m_book.KeepChild(L"C2", Handle()).size());
  });
}

TEST_F(GroupOrderBook, AtTheEndAllHandlesAreTakenOut) {
  m_world.Run([this] {
    for (const wchar_t* key : {L"C1", L"C2", L"C3"}) EXPECT_THAT(m_book.KeepChild(key, Handle()), IsEmpty());
    m_book.EndChild(L"C2");
    EXPECT_EQ(3U, m_book.TakeHandles().size());
    EXPECT_THAT(m_book.TakeHandles(), IsEmpty());
    EXPECT_TRUE(m_book.NoteChild(L"C1"));
  });
}

TEST_F(GroupOrderBook, OfEqualChildKeysTheFirstIsTakenOut) {
  const GroupOrderPtr order = Order(L"G1");
  for (const wchar_t* key : {L"C1", L"C2", L"C1"}) order->AddChild(key);
  order->RemoveChild(L"C1");
  EXPECT_EQ(2U, order->ChildCount());
  order->RemoveChild(L"C1");
  order->RemoveChild(L"C1");
  order->RemoveChild(L"C3");
  EXPECT_EQ(1U, order->ChildCount());
}

}  // namespace
}  // namespace iorder::test

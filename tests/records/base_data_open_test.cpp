#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "records/base_data.h"
#include "tests/support/recording_receiver.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

class BaseDataOpen : public testing::Test {
 protected:
  /// Runs `main` with the record "R": items A and B, node N.
  void Run(const std::function<void()>& main) {
    m_world.Run([&] {
      m_handle = m_world.Record({.name = L"R",
                                 .items = {{.name = L"A", .fields = {Field(L"id", 1)}},
                                           {.name = L"B", .fields = {Field(L"id", 2)}}},
                                 .nodes = {{.name = L"N", .fields = {Field(L"id", 3)}}}});
      m_record = CBaseData::OpenByHandle(m_world.world, m_handle, nullptr);
      m_world.bus.changes->calls.clear();
      main();
      m_record.reset();
    });
  }

  int64_t Reads(const std::wstring& call) const {
    const auto& calls = m_world.bus.changes->calls;
    return std::count(calls.begin(), calls.end(), L"read " + call);
  }

  static int32_t IdOf(const std::unique_ptr<CBaseData>& record) {
    return record != nullptr ? record->GetInt(L"id", -1) : 0;
  }

  CVirtualWorld m_world;
  int32_t m_handle = 0;
  std::unique_ptr<CBaseData> m_record;
};

TEST_F(BaseDataOpen, AHandleThatStandsForNothingOpensNothing) {
  Run([this] {
    EXPECT_EQ(CBaseData::OpenByHandle(m_world.world, 0, nullptr), nullptr);
    EXPECT_EQ(CBaseData::OpenByHandle(m_world.world, 9999, nullptr), nullptr);
    EXPECT_EQ(CBaseData::OpenByHandle(m_world.world, -1, nullptr), nullptr);
  });
}

TEST_F(BaseDataOpen, ItemsAndNodesAreCountedAndOpenedByIndex) {
  Run([this] {
    EXPECT_EQ(m_record->GetItemCount(), 2);
    EXPECT_EQ(m_record->GetNodeCount(), 1);
    EXPECT_EQ(IdOf(m_record->OpenItem(0, nullptr)), 1);
    EXPECT_EQ(IdOf(m_record->OpenItem(1, nullptr)), 2);
    EXPECT_EQ(IdOf(m_record->OpenNode(0)), 3);
  });
}

TEST_F(BaseDataOpen, ItemsAndNodesAreOpenedByName) {
  Run([this] {
    EXPECT_EQ(IdOf(m_record->OpenItemByName(L"B", nullptr)), 2);
    EXPECT_EQ(IdOf(m_record->OpenNodeByName(L"N", nullptr)), 3);
    EXPECT_EQ(m_record->OpenItemByName(L"N", nullptr), nullptr);
    EXPECT_EQ(m_record->OpenNodeByName(L"A", nullptr), nullptr);
    EXPECT_EQ(m_record->OpenItemByName(L"b", nullptr), nullptr);
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataOpen, ACountIsReadOnceForSeveralItems) {
  Run([this] {
    m_record->OpenItem(0, nullptr);
    m_record->OpenItem(1, nullptr);
    m_record->OpenNode(0);
    m_record->OpenNode(0);
    EXPECT_EQ(Reads(L"4 -1"), 1);
    EXPECT_EQ(Reads(L"6 -1"), 1);
  });
}

TEST_F(BaseDataOpen, AnIndexAtTheCountGivesNoneAfterTwoCountReadsAndNoSleep) {
  Run([this] {
    EXPECT_EQ(m_record->OpenItem(2, nullptr), nullptr);
    EXPECT_EQ(m_record->OpenNode(1), nullptr);
    EXPECT_EQ(Reads(L"4 -1"), 2);
    EXPECT_EQ(Reads(L"6 -1"), 2);
    EXPECT_EQ(Reads(L"4 2"), 0);
    EXPECT_EQ(Reads(L"6 1"), 0);
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataOpen, ACountThatHasGrownIsReadAgain) {
  Run([this] {
    EXPECT_EQ(m_record->GetItemCount(), 2);
    EXPECT_EQ(m_record->GetNodeCount(), 1);
    m_world.Record({.name = L"R",
                    .items = {{.name = L"C", .fields = {Field(L"id", 4)}}},
                    .nodes = {{.name = L"M", .fields = {Field(L"id", 5)}}}});
    EXPECT_EQ(IdOf(m_record->OpenItem(2, nullptr)), 4);
    EXPECT_EQ(IdOf(m_record->OpenNode(1)), 5);
    EXPECT_EQ(Reads(L"4 -1"), 2);
    EXPECT_EQ(Reads(L"6 -1"), 2);
  });
}

TEST_F(BaseDataOpen, ACountThatIsNoNumberGivesZeroAndLeavesTheEarlierOne) {
  for (const Value& bad : {Value(-1), Value(int64_t{2}), Value(L"2"), Value()}) {
    m_world.bus.changes->getValue = nullptr;
    Run([&] {
      EXPECT_EQ(m_record->GetItemCount(), 2);
      EXPECT_EQ(m_record->GetNodeCount(), 1);
      m_world.bus.changes->getValue = [&bad](int32_t, int32_t argument) {
        return argument == -1 ? std::optional(bad) : std::nullopt;
      };
      EXPECT_EQ(m_record->GetItemCount(), 0);
      EXPECT_EQ(m_record->GetNodeCount(), 0);
      EXPECT_EQ(IdOf(m_record->OpenItem(1, nullptr)), 2);
      EXPECT_EQ(IdOf(m_record->OpenNode(0)), 3);
    });
  }
}

TEST_F(BaseDataOpen, AnItemThatStaysUnresolvedGivesNoneAfterTwentyTriesAndOneSecond) {
  Run([this] {
    m_world.embeddedBus.FailItem(L"R", L"", 1, std::nullopt);
    EXPECT_EQ(m_record->OpenItem(1, nullptr), nullptr);
    EXPECT_EQ(Reads(L"4 1"), 20);
    EXPECT_EQ(m_world.Elapsed(), 1000);
  });
}

TEST_F(BaseDataOpen, AnItemThatResolvesAtTheTwentiethTryIsOpened) {
  Run([this] {
    m_world.embeddedBus.FailItem(L"R", L"", 1, 19);
    EXPECT_EQ(IdOf(m_record->OpenItem(1, nullptr)), 2);
    EXPECT_EQ(m_world.Elapsed(), 19 * 50);
  });
}

TEST_F(BaseDataOpen, AnItemThatResolvesAtOnceCostsNoSleep) {
  Run([this] {
    EXPECT_EQ(IdOf(m_record->OpenItem(1, nullptr)), 2);
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataOpen, AHandleOfAnotherKindCountsAsUnresolved) {
  Run([this] {
    int left = 2;
    m_world.bus.changes->getValue = [&left](int32_t code, int32_t argument) -> std::optional<Value> {
      if (code != read_code::kItem || argument != 0 || left-- <= 0) return std::nullopt;
      return left == 1 ? Value(L"5") : Value(int64_t{5});
    };
    EXPECT_EQ(IdOf(m_record->OpenItem(0, nullptr)), 1);
    EXPECT_EQ(m_world.Elapsed(), 100);
  });
}

TEST_F(BaseDataOpen, ANodeThatIsUnresolvedIsNotTriedAgain) {
  Run([this] {
    m_world.bus.changes->getValue = [](int32_t code, int32_t argument) -> std::optional<Value> {
      return code == read_code::kNode && argument == 0 ? std::optional<Value>(9999) : std::nullopt;
    };
    EXPECT_EQ(m_record->OpenNode(0), nullptr);
    EXPECT_EQ(Reads(L"6 0"), 1);
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataOpen, ItemsAreOpenedWithTheirReceiverAndNodesByIndexWithout) {
  Run([this] {
    CRecordingReceiver receiver;
    const auto item = m_record->OpenItem(0, &receiver);
    EXPECT_EQ(m_world.bus.changes->calls.back(), L"advise");
    const auto byName = m_record->OpenItemByName(L"B", &receiver);
    EXPECT_EQ(m_world.bus.changes->calls.back(), L"advise");
    const auto node = m_record->OpenNode(0);
    EXPECT_EQ(m_world.bus.changes->calls.back(), L"read 6 0");
  });
}

}  // namespace
}  // namespace iorder::test

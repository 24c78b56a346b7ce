#include <gtest/gtest.h>

#include <memory>

#include "records/base_data.h"
#include "tests/support/recording_receiver.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using Lines = std::vector<std::wstring>;

class BaseDataEvent : public testing::Test {
 protected:
  void Run(const std::function<void()>& main) {
    m_world.Run([&] {
      m_handle = m_world.Record({.name = L"R", .fields = {Field(L"id", 1)}});
      m_record = Open();
      main();
      m_record.reset();
    });
  }

  std::unique_ptr<CBaseData> Open() { return CBaseData::OpenByHandle(m_world.world, m_handle, &m_receiver); }
  void Fire(int32_t originator, std::wstring payload = L"") {
    m_world.embeddedBus.Fire(L"R", {.originator = originator, .payload = std::move(payload)});
  }
  void FireReplace(int32_t originator) {
    m_world.embeddedBus.Fire(L"R", {.replace = true, .originator = originator});
  }
  std::shared_ptr<IThread> FireOnThread(int32_t originator) {
    return m_world.Start(L"bus", [this, originator] { Fire(originator); });
  }
  void Join(const std::shared_ptr<IThread>& thread) { m_world.runtime.Wait(*thread, std::nullopt); }
  void Sleep(int64_t ms) { m_world.runtime.Sleep(Milliseconds(ms)); }

  CVirtualWorld m_world;
  CRecordingReceiver m_receiver;
  int32_t m_handle = 0;
  std::unique_ptr<CBaseData> m_record;
};

TEST_F(BaseDataEvent, AnUpdateReachesTheReceiverWithSourceOriginatorAndPayload) {
  Run([this] {
    Fire(7, L"BN1=[]");
    EXPECT_EQ(m_receiver.events, Lines{L"update 7 BN1=[]"});
    EXPECT_EQ(m_receiver.sources, std::vector<CBaseData*>{m_record.get()});
  });
}

TEST_F(BaseDataEvent, AnUpdateOfTheOwnWriterIsNotPassedOn) {
  Run([this] {
    const int32_t token = m_record->BeginWrite();
    Fire(token);
    Fire(token + 1000);
    EXPECT_EQ(m_receiver.events, Lines{L"update " + std::to_wstring(token + 1000)});
  });
}

TEST_F(BaseDataEvent, AReplacementByTheOwnWriterIsPassedOn) {
  Run([this] {
    const int32_t token = m_record->BeginWrite();
    FireReplace(token);
    EXPECT_EQ(m_receiver.events, Lines{L"replace " + std::to_wstring(token)});
    EXPECT_EQ(m_receiver.sources, std::vector<CBaseData*>{m_record.get()});
  });
}

TEST_F(BaseDataEvent, BeforeTheFirstBatchTheOwnWriterIsMinus999) {
  Run([this] {
    Fire(-999);
    EXPECT_EQ(m_receiver.events, Lines());
    m_record->BeginWrite();
    Fire(-999);
    EXPECT_EQ(m_receiver.events, Lines{L"update -999"});
  });
}

TEST_F(BaseDataEvent, AWriteIsHeardByOtherHandlesAndNotByItsOwn) {
  Run([this] {
    CRecordingReceiver other;
    const auto second = CBaseData::OpenByHandle(m_world.world, m_handle, &other);
    const int32_t token = m_record->BeginWrite();
    m_record->WriteValue(token, write_code::kClear, 255, {});
    m_record->EndWrite(token);
    EXPECT_EQ(m_receiver.events, Lines());
    EXPECT_EQ(other.events, Lines{L"update " + std::to_wstring(token)});
  });
}

TEST_F(BaseDataEvent, AHandleWithoutAReceiverOpensNoConnection) {
  Run([this] {
    m_world.bus.changes->calls.clear();
    const auto silent = CBaseData::OpenByHandle(m_world.world, m_handle, nullptr);
    EXPECT_EQ(m_world.bus.changes->calls, Lines());
  });
}

TEST_F(BaseDataEvent, ASecondAttachChangesOnlyTheReceiver) {
  Run([this] {
    CRecordingReceiver second;
    m_world.bus.changes->calls.clear();
    EXPECT_TRUE(m_record->Attach(&second, m_world.world.bus.CreateObject()));
    EXPECT_EQ(m_world.bus.changes->calls, Lines());
    EXPECT_EQ(m_record->GetInt(L"id", 0), 1);
    Fire(7);
    EXPECT_EQ(m_receiver.events, Lines());
    EXPECT_EQ(second.events, Lines{L"update 7"});
  });
}

TEST_F(BaseDataEvent, AReceiverTakenLaterByAnUnconnectedHandleHearsNothing) {
  Run([this] {
    const auto silent = CBaseData::OpenByHandle(m_world.world, m_handle, nullptr);
    CRecordingReceiver late;
    EXPECT_TRUE(silent->Attach(&late, nullptr));
    Fire(7);
    EXPECT_EQ(late.events, Lines());
  });
}

TEST_F(BaseDataEvent, AReceiverThatIsTakenAwayHearsNothing) {
  Run([this] {
    EXPECT_TRUE(m_record->Attach(nullptr, nullptr));
    Fire(7);
    FireReplace(7);
    EXPECT_EQ(m_receiver.events, Lines());
  });
}

TEST_F(BaseDataEvent, UpdatesOfOneHandleWaitForEachOther) {
  Run([this] {
    std::vector<int64_t> begins;
    m_receiver.onUpdate = [&] {
      begins.push_back(m_world.Elapsed());
      if (begins.size() == 1) Sleep(1000);
    };
    const auto first = FireOnThread(1);
    Sleep(100);
    const auto second = FireOnThread(2);
    Join(first);
    Join(second);
    EXPECT_EQ(begins, (std::vector<int64_t>{0, 1000}));
  });
}

TEST_F(BaseDataEvent, AnUpdateWaitsAtMostThreeSecondsForAnother) {
  Run([this] {
    std::vector<int64_t> begins;
    m_receiver.onUpdate = [&] {
      begins.push_back(m_world.Elapsed());
      if (begins.size() == 1) Sleep(10000);
    };
    const auto first = FireOnThread(1);
    Sleep(100);
    const auto second = FireOnThread(2);
    Join(first);
    Join(second);
    EXPECT_EQ(begins, (std::vector<int64_t>{0, 3100}));
  });
}

TEST_F(BaseDataEvent, AReplacementDoesNotWaitForAnUpdate) {
  Run([this] {
    m_receiver.onUpdate = [this] { Sleep(1000); };
    const auto update = FireOnThread(1);
    Sleep(100);
    FireReplace(2);
    EXPECT_EQ(m_world.Elapsed(), 100);
    EXPECT_EQ(m_receiver.events, (Lines{L"update 1", L"replace 2"}));
    Join(update);
  });
}

TEST_F(BaseDataEvent, AnUpdateThatFailsOpensTheGateForTheNext) {
  Run([this] {
    m_receiver.onUpdate = [this] {
      if (m_receiver.events.size() == 1) throw std::runtime_error("receiver");
    };
    EXPECT_THROW(Fire(1), std::runtime_error);
    Fire(2);
    EXPECT_EQ(m_world.Elapsed(), 0);
    EXPECT_EQ(m_receiver.events, (Lines{L"update 1", L"update 2"}));
  });
}

TEST_F(BaseDataEvent, DeletingWaitsForAnUpdateInFlight) {
  Run([this] {
    m_receiver.onUpdate = [this] { Sleep(1000); };
    const auto update = FireOnThread(1);
    Sleep(100);
    m_record.reset();
    EXPECT_EQ(m_world.Elapsed(), 1000);
    Join(update);
  });
}

TEST_F(BaseDataEvent, DeletingWaitsAtMostThreeSecondsForAStuckUpdate) {
  Run([this] {
    m_receiver.onUpdate = [this] { Sleep(60000); };
    const auto update = FireOnThread(1);
    Sleep(100);
    m_record.reset();
    // The gate is set once the connection is closed, so the second wait ends at once.
    EXPECT_EQ(m_world.Elapsed(), 3100);
    Join(update);
  });
}

TEST_F(BaseDataEvent, DeletingAtRestTakesNoTime) {
  Run([this] {
    m_record.reset();
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataEvent, ADeletedHandleIsDisconnectedAndHearsNothing) {
  Run([this] {
    m_world.bus.changes->calls.clear();
    m_record.reset();
    EXPECT_EQ(m_world.bus.changes->calls, Lines{L"unadvise"});
    Fire(1);
    FireReplace(2);
    EXPECT_EQ(m_receiver.events, Lines());
  });
}

TEST_F(BaseDataEvent, AnUpdateThatWaitsAtTheGateOfADeletedHandleIsDropped) {
  Run([this] {
    m_receiver.onUpdate = [this] { Sleep(1000); };
    const auto running = FireOnThread(1);
    Sleep(100);
    const auto deleting = m_world.Start(L"owner", [this] { m_record.reset(); });
    Sleep(100);
    const auto waiting = FireOnThread(2);
    Join(running);
    Join(deleting);
    Join(waiting);
    EXPECT_EQ(m_receiver.events, Lines{L"update 1"});
  });
}

}  // namespace
}  // namespace iorder::test

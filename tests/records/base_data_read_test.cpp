#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "records/base_data.h"
#include "records/record_copy.h"
#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

constexpr int64_t kLarge = 30000000000;

class BaseDataRead : public testing::Test {
 protected:
  BaseDataRead() {
    m_world.Run([this] {
      const int32_t handle = m_world.Record(
          {.name = L"R",
           .fields = {Field(L"int32", 5), Field(L"int64", kLarge), Field(L"text", L"12x"),
                      Field(L"negative", -7), Field(L"empty", L""), Field(L"word", L"abc"),
                      Field(L"least", std::numeric_limits<int32_t>::min()),
                      Field(L"json", LR"({"a":"期","b":5,"c":{"d":"x"}})"), Field(L"broken", L"{\"a\":")},
           .numbers = {Number(3, int64_t{125}), Number(4, 5), Number(6, L"7"), Number(8, NoValue)}});
      m_record = CBaseData::OpenByHandle(m_world.world, handle, nullptr);
      ASSERT_NE(m_record, nullptr);
    });
  }
  ~BaseDataRead() override {
    m_world.Run([this] { m_record.reset(); });
  }

  CVirtualWorld m_world;
  std::unique_ptr<CBaseData> m_record;
};

TEST_F(BaseDataRead, ANumericFieldMustBeA64BitInteger) {
  EXPECT_EQ(m_record->GetFieldById(3), 125);
  EXPECT_EQ(m_record->GetFieldById(4), NoValue);
  EXPECT_EQ(m_record->GetFieldById(6), NoValue);
  EXPECT_EQ(m_record->GetFieldById(8), NoValue);
  EXPECT_EQ(m_record->GetFieldById(99), NoValue);
}

TEST_F(BaseDataRead, ANumericFieldCostsOneCallOfTheBus) {
  m_world.bus.changes->calls.clear();
  m_record->GetFieldById(3);
  EXPECT_EQ(m_world.bus.changes->calls, std::vector<std::wstring>{L"read 1 3"});
}

TEST_F(BaseDataRead, AVariantKeepsItsKind) {
  EXPECT_EQ(m_record->GetVariant(L"int32"), Value(5));
  EXPECT_EQ(m_record->GetVariant(L"int64"), Value(kLarge));
  EXPECT_EQ(m_record->GetVariant(L"text"), Value(L"12x"));
  EXPECT_EQ(m_record->GetVariant(L"missing"), Value());
}

TEST_F(BaseDataRead, GetStringSpellsNumbersInDecimalDigits) {
  EXPECT_EQ(m_record->GetString(L"text"), L"12x");
  EXPECT_EQ(m_record->GetString(L"negative"), L"-7");
  EXPECT_EQ(m_record->GetString(L"int64"), L"30000000000");
  EXPECT_EQ(m_record->GetString(L"missing"), L"");
}

TEST_F(BaseDataRead, GetIntTakes32BitsAndTexts) {
  EXPECT_EQ(m_record->GetInt(L"int32", 1), 5);
  EXPECT_EQ(m_record->GetInt(L"negative", 1), -7);
  EXPECT_EQ(m_record->GetInt(L"text", 1), 12);
}

TEST_F(BaseDataRead, GetIntOfATextWithoutANumberIsZero) {
  EXPECT_EQ(m_record->GetInt(L"word", 1), 0);
  EXPECT_EQ(m_record->GetInt(L"empty", 1), 0);
}

TEST_F(BaseDataRead, GetIntOfA64BitFieldIsTheDefault) {
  EXPECT_EQ(m_record->GetInt(L"int64", 1), 1);
  EXPECT_EQ(m_record->GetInt(L"missing", 1), 1);
}

TEST_F(BaseDataRead, GetInt64TakesBothIntegersAndTexts) {
  EXPECT_EQ(m_record->GetInt64(L"int64", 1), kLarge);
  EXPECT_EQ(m_record->GetInt64(L"negative", 1), -7);
  EXPECT_EQ(m_record->GetInt64(L"text", 1), 12);
  EXPECT_EQ(m_record->GetInt64(L"word", 1), 0);
  EXPECT_EQ(m_record->GetInt64(L"missing", 1), 1);
}

TEST_F(BaseDataRead, GetEnumLeavesThePresetValueAsTheDefault) {
  EXPECT_EQ(m_record->GetEnum(L"int32", 1), 5);
  EXPECT_EQ(m_record->GetEnum(L"missing", 1), 1);
  EXPECT_EQ(m_record->GetEnum(L"text", 1), 1);
  EXPECT_EQ(m_record->GetEnum(L"least", 1), 1);
}

TEST_F(BaseDataRead, GetJsonStringGivesAStringMemberOfTheTopLevel) {
  EXPECT_EQ(m_record->GetJsonString(L"json", L"a"), L"期");
}

TEST_F(BaseDataRead, GetJsonStringGivesNothingElse) {
  EXPECT_EQ(m_record->GetJsonString(L"json", L"b"), L"");
  EXPECT_EQ(m_record->GetJsonString(L"json", L"d"), L"");
  EXPECT_EQ(m_record->GetJsonString(L"json", L"missing"), L"");
  EXPECT_EQ(m_record->GetJsonString(L"broken", L"a"), L"");
  EXPECT_EQ(m_record->GetJsonString(L"int32", L"a"), L"");
  EXPECT_EQ(m_record->GetJsonString(L"missing", L"a"), L"");
}

TEST_F(BaseDataRead, AHandleWithoutAnObjectGivesDefaults) {
  m_world.Run([this] {
    CBaseData record(m_world.world);
    EXPECT_EQ(record.GetValue(read_code::kItem, -1), Value());
    EXPECT_EQ(record.GetString(L"text"), L"");
    EXPECT_EQ(record.GetInt(L"int32", 1), 1);
    EXPECT_EQ(record.GetInt64(L"int64", 2), 2);
    EXPECT_EQ(record.GetEnum(L"int32", 3), 3);
    EXPECT_EQ(record.GetJsonString(L"json", L"a"), L"");
    EXPECT_EQ(record.GetItemCount(), 0);
    EXPECT_EQ(record.GetNodeCount(), 0);
    EXPECT_EQ(record.OpenItem(0, nullptr), nullptr);
    EXPECT_EQ(record.OpenItemByName(L"a", nullptr), nullptr);
    EXPECT_EQ(record.OpenNode(0), nullptr);
    EXPECT_EQ(record.OpenNodeByName(L"a", nullptr), nullptr);
    EXPECT_EQ(record.BeginWrite(), -1);
    record.WriteValue(-1, write_code::kClear, 255, {});
    record.EndWrite(-1);
    EXPECT_EQ(m_world.Elapsed(), 0);
  });
}

TEST_F(BaseDataRead, AttachWithoutAnObjectMakesOne) {
  m_world.Run([this] {
    CBaseData record(m_world.world);
    EXPECT_TRUE(record.Attach(nullptr, nullptr));
    EXPECT_GE(record.BeginWrite(), 0);
  });
}

TEST_F(BaseDataRead, AttachFailsWithoutTheComponent) {
  m_world.bus.changes->createFails = [] { return true; };
  m_world.Run([this] {
    CBaseData record(m_world.world);
    EXPECT_FALSE(record.Attach(nullptr, nullptr));
    EXPECT_EQ(record.BeginWrite(), -1);
  });
}

TEST_F(BaseDataRead, ARecordIsCopiedThroughAWriteBatch) {
  m_world.Run([this] {
    auto held = std::make_unique<CBaseData>(m_world.world);
    ASSERT_TRUE(held->Attach(nullptr, nullptr));
    m_world.bus.changes->calls.clear();

    const CBaseData* const first = held.get();
    const auto copy = CopyRecord(m_world.world, *m_record, std::move(held));
    EXPECT_EQ(m_world.bus.changes->calls,
              (std::vector<std::wstring>{L"read 11 1024", L"begin", L"write 15", L"write 17", L"end"}));
    ASSERT_EQ(copy.get(), first) << "the copy that is held is used again";
    EXPECT_EQ(copy->GetVariant(L"int32"), Value(5));
    EXPECT_EQ(copy->GetVariant(L"int64"), Value(kLarge));
    EXPECT_EQ(copy->GetVariant(L"text"), Value(L"12x"));
    EXPECT_EQ(copy->GetVariant(L"missing"), Value());
    EXPECT_EQ(copy->GetFieldById(3), 125);
  });
}

TEST_F(BaseDataRead, ACopyStaysAsItWas) {
  m_world.Run([this] {
    const auto copy = CopyRecord(m_world.world, *m_record, nullptr);
    ASSERT_NE(copy, nullptr) << "without a target a new record is made";
    m_world.Record({.name = L"R", .fields = {Field(L"int32", 6)}});
    EXPECT_EQ(m_record->GetInt(L"int32", 1), 6);
    EXPECT_EQ(copy->GetInt(L"int32", 1), 5);
  });
}

TEST_F(BaseDataRead, ASourceWithNothingToCopyLeavesTheTargetAlone) {
  m_world.Run([this] {
    CBaseData nothing(m_world.world);
    auto copy = CopyRecord(m_world.world, *m_record, nullptr);
    copy = CopyRecord(m_world.world, nothing, std::move(copy));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetInt(L"int32", 1), 5);
    EXPECT_EQ(CopyRecord(m_world.world, nothing, nullptr), nullptr);
  });
}

}  // namespace
}  // namespace iorder::test

#include "grouporder/chase_price.h"

#include <gtest/gtest.h>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

class ChasePrice : public ::testing::Test {
 protected:
  /// The text for a kind, from settings that hold these texts for all symbols.
  std::wstring Build(int32_t kind, const std::vector<FieldChange>& texts) {
    std::wstring text;
    m_world.Run([&] {
      const int32_t record =
          m_world.Record({.name = L"settings", .items = {{.name = L"ALL", .fields = texts}}});
      const auto settings = CBaseData::OpenByHandle(m_world.world, record, nullptr);
      text = BuildChasePrice(settings.get(), kind, L"B1", L"A1", L"ND.O.TWF.TX.202403.C.18000");
    });
    return text;
  }

  const Value m_on = std::wstring(LR"({"On":"1"})");
  CVirtualWorld m_world;
};

TEST_F(ChasePrice, GroupOrdersHaveTheirKeys) {
  EXPECT_EQ(L"0|1|100|C|2", Build(kGroupChaseKind, {Field(L"1-B1-A1", m_on)}));
  EXPECT_EQ(L"0|1|100|C|2", Build(kGroupChaseKind, {Field(L"1-ALL", m_on)}));
}

TEST_F(ChasePrice, NoOtherKindHasSettings) {
  const std::vector<FieldChange> all = {Field(L"1-B1-A1", m_on), Field(L"2-B1-A1", m_on),
                                        Field(L"1-ALL", m_on), Field(L"2-ALL", m_on)};
  EXPECT_EQ(L"", Build(2, all));
  EXPECT_EQ(L"", Build(0, all));
}

TEST_F(ChasePrice, TheKeyNamesTheKind) {
  EXPECT_EQ(L"", Build(kGroupChaseKind, {Field(L"2-B1-A1", m_on), Field(L"2-ALL", m_on)}));
}

TEST_F(ChasePrice, WithoutSettingsThereIsNone) {
  m_world.Run([] { EXPECT_EQ(L"", BuildChasePrice(nullptr, kGroupChaseKind, L"B1", L"A1", L"X")); });
}

}  // namespace
}  // namespace iorder::test

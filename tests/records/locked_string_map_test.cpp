#include "records/locked_string_map.h"

#include <gtest/gtest.h>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

class LockedStringMap : public testing::Test {
 protected:
  CVirtualWorld m_world;
  CGlcMapStringToString m_texts{m_world.runtime, "texts"};
  CGlcMapStringToVal m_values{m_world.runtime, "values"};
};

TEST_F(LockedStringMap, FindsNothingThatWasNotSet) {
  m_world.Run([this] {
    EXPECT_EQ(m_texts.Lookup(L"a"), std::nullopt);
    EXPECT_EQ(m_values.Lookup(L""), std::nullopt);
  });
}

TEST_F(LockedStringMap, AnEmptyTextIsAValueLikeAnyOther) {
  m_world.Run([this] {
    m_texts.Set(L"a", L"");
    EXPECT_EQ(m_texts.Lookup(L"a"), L"");
  });
}

TEST_F(LockedStringMap, AnEmptyKeyIsAKeyLikeAnyOther) {
  m_world.Run([this] {
    m_texts.Set(L"", L"x");
    EXPECT_EQ(m_texts.Lookup(L""), L"x");
  });
}

TEST_F(LockedStringMap, MinusOneComesBackAsMinusOne) {
  m_world.Run([this] {
    m_values.Set(L"a", -1);
    m_values.Set(L"b", std::numeric_limits<int32_t>::min());
    EXPECT_EQ(m_values.Lookup(L"a"), -1);
    EXPECT_EQ(m_values.Lookup(L"b"), std::numeric_limits<int32_t>::min());
  });
}

TEST_F(LockedStringMap, SetReplacesAValue) {
  m_world.Run([this] {
    m_texts.Set(L"a", L"1");
    m_texts.Set(L"a", L"2");
    m_values.Set(L"a", 1);
    m_values.Set(L"a", 2);
    EXPECT_EQ(m_texts.Lookup(L"a"), L"2");
    EXPECT_EQ(m_values.Lookup(L"a"), 2);
  });
}

TEST_F(LockedStringMap, KeysCountWithTheirCase) {
  m_world.Run([this] {
    m_texts.Set(L"a", L"1");
    m_texts.Set(L"A", L"2");
    EXPECT_EQ(m_texts.Lookup(L"a"), L"1");
    EXPECT_EQ(m_texts.Lookup(L"a "), std::nullopt);
  });
}

TEST_F(LockedStringMap, InsertTellsWhetherTheKeyWasNew) {
  m_world.Run([this] {
    EXPECT_TRUE(m_texts.Insert(L"a", L"1"));
    EXPECT_FALSE(m_texts.Insert(L"a", L"2"));
    EXPECT_EQ(m_texts.Lookup(L"a"), L"1");
  });
}

}  // namespace
}  // namespace iorder::test

#include "reference/order_settings.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

constexpr const wchar_t* kRecord = L"TRADE.EXTENDORDER.SETUP";

class OrderSettings : public ReferenceTest {
 protected:
  /// Items of these names, each with its name in the field "Name".
  void Fill(std::initializer_list<const wchar_t*> names) {
    RecordChange record;
    record.name = kRecord;
    for (const wchar_t* name : names) {
      RecordChange& item = record.items.emplace_back();
      item.name = name;
      item.fields.push_back(Field(L"Name", std::wstring(name)));
    }
    m_bus.Apply(record);
  }

  /// The name of the item that applies to a symbol, "none" if there is none.
  std::wstring Find(const std::wstring& symbol) {
    std::wstring name = L"none";
    Run([&] {
      const auto record = m_host.OpenRecord(kRecord, nullptr);
      if (const auto item = FindRecordForSymbol(*record, symbol)) name = item->GetString(L"Name");
    });
    return name;
  }
};

TEST_F(OrderSettings, WithoutItemsThereIsNone) {
  EXPECT_EQ(L"none", Find(L"ND.O.TWF.TX.202403.C.18000"));
  EXPECT_EQ(L"none", Find(L""));
}

TEST_F(OrderSettings, TheNarrowestNameWins) {
  const std::wstring symbol = L"ND.O.TWF.TX.202403.C.18000";
  for (const wchar_t* name : {L"ALL", L"OPTION", L"ND.O", L"ND.O.TWF", L"ND.O.TWF.TX", L"ND.O.TWF.TX.202403",
                              L"ND.O.TWF.TX.202403.C.18000"}) {
    Fill({name});
    EXPECT_EQ(name, Find(symbol));
  }
}

TEST_F(OrderSettings, ATypeHasItsWord) {
  Fill({L"OPTION", L"STOCK", L"FUTURE", L"ALL"});
  EXPECT_EQ(L"OPTION", Find(L"ND.O.TWF.TX"));
  EXPECT_EQ(L"STOCK", Find(L"ND.S.TWSE.2330"));
  EXPECT_EQ(L"FUTURE", Find(L"ND.F.TWF.TX.202403"));
  EXPECT_EQ(L"FUTURE", Find(L"ND.X.TWF"));
  EXPECT_EQ(L"FUTURE", Find(L"ND.o.TWF"));
  EXPECT_EQ(L"FUTURE", Find(L"ND"));
  EXPECT_EQ(L"FUTURE", Find(L""));
}

TEST_F(OrderSettings, WithoutItsWordASymbolGoesByAll) {
  Fill({L"OPTION", L"ALL"});
  EXPECT_EQ(L"ALL", Find(L"ND.S.TWSE.2330"));
  EXPECT_EQ(L"ALL", Find(L"ND.F.TWF.TX.202403"));
  EXPECT_EQ(L"ALL", Find(L""));
}

TEST_F(OrderSettings, AShorterSymbolIsLookedUpByTheTokensThatItHas) {
  Fill({L"ND.F", L"ND.F.TWF", L"ND.F.TWF.TX"});
  EXPECT_EQ(L"ND.F.TWF.TX", Find(L"ND.F.TWF.TX"));
  EXPECT_EQ(L"ND.F.TWF.TX", Find(L"ND.F.TWF.TX.202403"));
  EXPECT_EQ(L"ND.F.TWF", Find(L"ND.F.TWF.TE"));
  EXPECT_EQ(L"ND.F.TWF", Find(L"ND.F.TWF"));
  EXPECT_EQ(L"ND.F", Find(L"ND.F.DCE.M.2405"));
  EXPECT_EQ(L"none", Find(L"ND"));
}

TEST_F(OrderSettings, AMissingTokenIsNotLookedUpAsAnEmptyOne) {
  Fill({L"ND.F.TWF.TX.", L"ND.F.TWF.", L"ND.F.", L"ND.", L"", L"FUTURE"});
  EXPECT_EQ(L"FUTURE", Find(L"ND.F.TWF.TX"));
  EXPECT_EQ(L"FUTURE", Find(L"ND.F.TWF"));
  EXPECT_EQ(L"FUTURE", Find(L"ND.F"));
  EXPECT_EQ(L"FUTURE", Find(L"ND"));
}

TEST_F(OrderSettings, ARunOfDotsCountsAsOneInAllNamesButTheWhole) {
  Fill({L"ND.O.TWF.TX"});
  EXPECT_EQ(L"ND.O.TWF.TX", Find(L".ND..O.TWF.TX"));
  Fill({L".ND..O.TWF.TX"});
  EXPECT_EQ(L".ND..O.TWF.TX", Find(L".ND..O.TWF.TX"));
}

}  // namespace
}  // namespace iorder::testing

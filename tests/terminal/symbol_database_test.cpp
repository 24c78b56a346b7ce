#include "terminal/symbol_database.h"

#include <gmock/gmock.h>

#include "platform/virtual/virtual_runtime.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SymbolDatabase : public ::testing::Test {
 protected:
  SymbolDatabase()
      : m_runtime(VirtualRuntimeOptions()),
        m_component(m_runtime, true, [this](const SymbolQuery& query) { m_queries.push_back(query); }),
        m_connection(m_component.CreateDatabase(L"C:\\Terminal\\", nullptr)),
        m_set(m_component.CreateRecordSet()),
        m_item(m_component.CreateRecordItem()) {
    EXPECT_EQ(1, m_connection->Connect(L".", L""));
    m_connection->SelectTable(L"Glacette_X", L"SymbolSearch", L"");
  }

  static SymbolsAction::Row Row(const std::string& symbol, const std::string& searchName,
                                const std::string& product, std::optional<std::string> suffix = "") {
    return {symbol, "O", searchName, "20240320", product, std::move(suffix)};
  }
  void Add(std::vector<SymbolsAction::Row> rows, std::optional<std::string> database = std::nullopt) {
    m_component.AddRows({std::move(database), std::move(rows)});
  }
  /// The symbols that the clause finds, in their order.
  std::vector<std::wstring> Find(const std::wstring& where) {
    std::vector<std::wstring> symbols;
    m_found = m_connection->Query(L"SymbolSearch", where, L"", *m_set);
    for (int32_t i = 0; i < m_set->Count(); ++i) {
      EXPECT_TRUE(m_set->Fetch(i, *m_item));
      symbols.push_back(m_item->Get(L"Symbol"));
    }
    return symbols;
  }

  CVirtualRuntime m_runtime;
  std::vector<SymbolQuery> m_queries;
  CSymbolDatabase m_component;
  std::unique_ptr<ISymbolDatabase> m_connection;
  std::unique_ptr<IRecordSet> m_set;
  std::unique_ptr<IRecordItem> m_item;
  bool m_found = false;
};

TEST_F(SymbolDatabase, RunsTheWhereClauseAsItIsBuilt) {
  Add({Row("ND.O.TWF.TX.202403.C.18000", "18000", "TX"), Row("ND.O.TWF.TX.202403.C.9000", "9000", "TX"),
       Row("ND.O.TWF.TX.202403.P.9000", "9000", "TX"), Row("ND.O.TWF.TXO.202403.C.100", "100", "TXO"),
       Row("ND.O.TWF.TX1.202403.C.500", "500", "TX1", "1"),
       Row("ND.O.TWF.TX.202403.C.700", "700", "TX", std::nullopt)});
  EXPECT_THAT(
      Find(L"Symbol like '%ND.O.TWF.TX%.202403.C.%' and substr(product, 0, "
           L"length(product)-length(setpriadj)+1) "
           L"= 'TX' and Type = 'O' order by CAST(SearchName AS INTEGER)"),
      ElementsAre(L"ND.O.TWF.TX1.202403.C.500", L"ND.O.TWF.TX.202403.C.9000", L"ND.O.TWF.TX.202403.C.18000"));
}

TEST_F(SymbolDatabase, EqualKeysKeepTheOrderOfTheDay) {
  Add({Row("B", "1", ""), Row("A", "1", ""), Row("C", "1", "")});
  EXPECT_THAT(Find(L"Type = 'O' order by CAST(SearchName AS INTEGER)"), ElementsAre(L"B", L"A", L"C"));
  EXPECT_THAT(Find(L"Type = 'O' ORDER BY CAST(SearchName AS INTEGER) desc"), ElementsAre(L"B", L"A", L"C"));
  EXPECT_THAT(Find(L"Type = 'O'"), ElementsAre(L"B", L"A", L"C"));
}

TEST_F(SymbolDatabase, ARowGivesTextAndNothingForNullOrAnUnknownColumn) {
  Add({Row("Ä", "1", "TX", std::nullopt)});
  EXPECT_THAT(Find(L"Symbol = 'Ä'"), ElementsAre(L"Ä"));
  EXPECT_EQ(L"20240320", m_item->Get(L"ExpDate"));
  EXPECT_EQ(L"", m_item->Get(L"setpriadj"));
  EXPECT_EQ(L"", m_item->Get(L"Nothing"));
  EXPECT_FALSE(m_set->Fetch(1, *m_item));
  EXPECT_FALSE(m_set->Fetch(-1, *m_item));
}

TEST_F(SymbolDatabase, RowsOfANamedDatabaseAreOnlyThere) {
  Add({Row("everywhere", "1", "")});
  Add({Row("replay", "1", "")}, "ReplayGLM_X");
  EXPECT_THAT(Find(L"1 = 1"), ElementsAre(L"everywhere"));
  Add({Row("later", "1", "")});
  Add({Row("here", "1", "")}, "Glacette_X");
  EXPECT_THAT(Find(L"1 = 1"), ElementsAre(L"everywhere", L"later", L"here"));
  m_connection->SelectTable(L"ReplayGLM_X", L"SymbolSearch", L"");
  EXPECT_THAT(Find(L"1 = 1"), ElementsAre(L"everywhere", L"replay", L"later"));
}

TEST_F(SymbolDatabase, ABrokenClauseFails) {
  EXPECT_THAT(Find(L"no such thing"), IsEmpty());
  EXPECT_FALSE(m_found);
  ASSERT_EQ(1U, m_queries.size());
  EXPECT_EQ(-1, m_queries[0].rows);
}

TEST_F(SymbolDatabase, AFaultFailsConnectingAndQuerying) {
  m_component.SetFailing(true);
  EXPECT_LT(m_connection->Connect(L".", L""), 1);
  Find(L"1 = 1");
  EXPECT_FALSE(m_found);
  m_component.SetFailing(false);
  Find(L"1 = 1");
  EXPECT_TRUE(m_found);
}

TEST_F(SymbolDatabase, AHostWithoutTheComponentGivesNone) {
  CSymbolDatabase none(m_runtime, false);
  EXPECT_EQ(nullptr, none.CreateDatabase(L"", nullptr));
  EXPECT_EQ(nullptr, none.CreateRecordSet());
  EXPECT_EQ(nullptr, none.CreateRecordItem());
}

}  // namespace
}  // namespace iorder::testing

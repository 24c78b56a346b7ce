#include "records/symbol_database_access.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <vector>

#include "tests/support/virtual_world.h"

namespace iorder::test {
namespace {

using Lines = std::vector<std::wstring>;

/// What the component was asked for, and what of it is to fail.
struct DatabaseScript {
  Lines calls;
  bool hasComponent = true;
  bool hasRecordSet = true;
  bool hasRecordItem = true;
  int32_t connectResult = 1;
  bool queryResult = true;
  Lines rows = {L"a", L"b", L"c"};
  std::set<int32_t> unfetchable;
};

class CScriptedItem : public IRecordItem {
 public:
  std::wstring Get(std::wstring_view column) override { return std::wstring(column) + L"=" + row; }
  std::wstring row;
};

class CScriptedSet : public IRecordSet {
 public:
  explicit CScriptedSet(DatabaseScript& script) : m_script(script) {}
  int32_t Count() override { return static_cast<int32_t>(m_script.rows.size()); }
  bool Fetch(int32_t index, IRecordItem& row) override {
    if (m_script.unfetchable.contains(index)) return false;
    static_cast<CScriptedItem&>(row).row = m_script.rows[static_cast<size_t>(index)];
    return true;
  }

 private:
  DatabaseScript& m_script;
};

class CScriptedDatabase : public ISymbolDatabase {
 public:
  explicit CScriptedDatabase(DatabaseScript& script) : m_script(script) {}
  int32_t Connect(const std::wstring& server, const std::wstring& systemName) override {
    m_script.calls.push_back(L"connect " + server + L"|" + systemName);
    return m_script.connectResult;
  }
  int32_t SelectTable(const std::wstring& database, const std::wstring& table,
                      const std::wstring& extra) override {
    m_script.calls.push_back(L"select " + database + L"|" + table + L"|" + extra);
    return 0;  // nobody looks at it
  }
  bool Query(const std::wstring& table, const std::wstring& where, const std::wstring& extra,
             IRecordSet&) override {
    m_script.calls.push_back(L"query " + table + L"|" + where + L"|" + extra);
    return m_script.queryResult;
  }

 private:
  DatabaseScript& m_script;
};

class CScriptedComponent : public ISymbolDatabaseComponent {
 public:
  explicit CScriptedComponent(DatabaseScript& script) : m_script(script) {}
  std::unique_ptr<ISymbolDatabase> CreateDatabase(const std::wstring& baseFolder,
                                                  CDataBaseEventReceiver*) override {
    m_script.calls.push_back(L"create " + baseFolder);
    return m_script.hasComponent ? std::make_unique<CScriptedDatabase>(m_script) : nullptr;
  }
  std::unique_ptr<IRecordSet> CreateRecordSet() override {
    m_script.calls.push_back(L"set");
    return m_script.hasRecordSet ? std::make_unique<CScriptedSet>(m_script) : nullptr;
  }
  std::unique_ptr<IRecordItem> CreateRecordItem() override {
    m_script.calls.push_back(L"item");
    return m_script.hasRecordItem ? std::make_unique<CScriptedItem>() : nullptr;
  }

 private:
  DatabaseScript& m_script;
};

class COneSetting : public ISettingsFile {
 public:
  explicit COneSetting(DatabaseScript& script) : m_script(script) {}
  std::wstring ReadString(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                          const std::wstring& fallback, size_t limit) override {
    m_script.calls.push_back(L"setting " + path + L"|" + section + L"|" + key + L"|" + fallback + L"|" +
                             std::to_wstring(limit));
    return L"SIM";
  }

 private:
  DatabaseScript& m_script;
};

class SymbolDatabase : public testing::Test {
 protected:
  void Open(bool replay = false) { m_access.Open(&m_receiver, L"C:\\Terminal\\", replay); }
  Lines Query() {
    Lines rows;
    m_access.Query(L"Type = 'O'", [&rows](IRecordItem& row) { rows.push_back(row.Get(L"Symbol")); });
    return rows;
  }

  CVirtualWorld m_virtual;
  DatabaseScript m_script;
  CScriptedComponent m_component{m_script};
  COneSetting m_setting{m_script};
  World m_world{m_virtual.runtime, m_virtual.bus, m_component, m_setting, L"C:\\Terminal\\Host.exe"};
  CDataBaseEventReceiver m_receiver;
  CSymbolDatabaseAccess m_access{m_world};
};

TEST_F(SymbolDatabase, IsOpenedInThisOrder) {
  m_virtual.Run([this] {
    Open();
    EXPECT_EQ(m_script.calls,
              (Lines{L"create C:\\Terminal\\",
                     L"setting C:\\Terminal\\ComShared\\SystemSettings.ini|SYSTEM|SystemName||256",
                     L"connect .|SIM", L"set", L"item", L"select Glacette_SIM|SymbolSearch|"}));
  });
}

TEST_F(SymbolDatabase, OfAReplayHasAnotherName) {
  m_virtual.Run([this] {
    Open(true);
    EXPECT_EQ(m_script.calls.back(), L"select ReplayGLM_SIM|SymbolSearch|");
  });
}

TEST_F(SymbolDatabase, IsOpenedOnce) {
  m_virtual.Run([this] {
    Open();
    m_script.calls.clear();
    Open(true);
    EXPECT_EQ(m_script.calls, Lines());
  });
}

TEST_F(SymbolDatabase, QueriesTheTableAndHandsOutTheRowsThatCanBeFetched) {
  m_virtual.Run([this] {
    Open();
    m_script.calls.clear();
    m_script.unfetchable = {1};
    EXPECT_EQ(Query(), (Lines{L"Symbol=a", L"Symbol=c"}));
    EXPECT_EQ(m_script.calls, Lines{L"query SymbolSearch|Type = 'O'|"});
  });
}

TEST_F(SymbolDatabase, AQueryThatFailsHasNoRows) {
  m_virtual.Run([this] {
    Open();
    m_script.queryResult = false;
    EXPECT_EQ(Query(), Lines());
  });
}

TEST_F(SymbolDatabase, IsNotAskedBeforeItIsOpen) {
  m_virtual.Run([this] {
    EXPECT_EQ(Query(), Lines());
    EXPECT_EQ(m_script.calls, Lines());
  });
}

TEST_F(SymbolDatabase, WithoutTheComponentNothingElseIsAskedFor) {
  m_virtual.Run([this] {
    m_script.hasComponent = false;
    Open();
    EXPECT_EQ(m_script.calls, Lines{L"create C:\\Terminal\\"});
    EXPECT_EQ(Query(), Lines());
  });
}

TEST_F(SymbolDatabase, AConnectBelowOneIsAFailure) {
  m_virtual.Run([this] {
    for (const int32_t result : {0, -1}) {
      m_script.calls.clear();
      m_script.connectResult = result;
      Open();
      EXPECT_EQ(m_script.calls.back(), L"connect .|SIM");
      EXPECT_EQ(Query(), Lines());
    }
  });
}

TEST_F(SymbolDatabase, WithoutARecordSetThereIsNoDatabase) {
  m_virtual.Run([this] {
    m_script.hasRecordSet = false;
    Open();
    EXPECT_EQ(m_script.calls.back(), L"set");
    EXPECT_EQ(Query(), Lines());
  });
}

TEST_F(SymbolDatabase, WithoutARecordItemThereIsNoDatabase) {
  m_virtual.Run([this] {
    m_script.hasRecordItem = false;
    Open();
    EXPECT_EQ(m_script.calls.back(), L"item");
    EXPECT_EQ(Query(), Lines());
  });
}

TEST_F(SymbolDatabase, AFailedOpeningCanBeMadeAgain) {
  m_virtual.Run([this] {
    m_script.hasRecordItem = false;
    Open();
    m_script.hasRecordItem = true;
    Open(true);
    EXPECT_EQ(m_script.calls.back(), L"select ReplayGLM_SIM|SymbolSearch|");
    EXPECT_EQ(Query().size(), 3u);
  });
}

TEST_F(SymbolDatabase, AWrapperWithoutADatabaseGivesZero) {
  m_virtual.Run([this] {
    DbAPIObj database(m_world);
    CScriptedSet rows(m_script);
    EXPECT_EQ(database.Connect(L".", L"SIM"), 0);
    EXPECT_EQ(database.SelectTable(L"a", L"b", L""), 0);
    EXPECT_FALSE(database.Query(L"a", L"b", L"", rows));
    EXPECT_EQ(m_script.calls, Lines());
  });
}

TEST_F(SymbolDatabase, AnEmptyBaseFolderMeansTheFolderOfTheHost) {
  m_virtual.Run([this] {
    DbAPIObj database(m_world);
    EXPECT_TRUE(database.Open(nullptr, L""));
    EXPECT_EQ(m_script.calls, Lines{L"create C:\\Terminal\\"});
  });
}

TEST_F(SymbolDatabase, ASecondOpenOfTheWrapperIsTrueAndMakesNothing) {
  m_virtual.Run([this] {
    DbAPIObj database(m_world);
    EXPECT_TRUE(database.Open(nullptr, L"D:\\"));
    m_script.hasComponent = false;
    EXPECT_TRUE(database.Open(nullptr, L"E:\\"));
    EXPECT_EQ(m_script.calls, Lines{L"create D:\\"});
  });
}

}  // namespace
}  // namespace iorder::test

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/critical_section.h"
#include "platform/symbol_database.h"
#include "terminal/day.h"

struct sqlite3;

namespace iorder {

/// One query that the database answered; `rows` is -1 if it failed.
struct SymbolQuery {
  std::wstring database;
  std::wstring table;
  std::wstring where;
  int32_t rows;
};

/// The symbol database of the embedded terminal: SQLite in memory, one database for each name that is
/// selected. The where-clauses run exactly as they come, with the order of the rows in the day as the last
/// sort key.
///
/// All operations may come from any thread; one lock guards all of it. The observer is called under no lock.
class CSymbolDatabase : public ISymbolDatabaseComponent {
 public:
  using Observer = std::function<void(const SymbolQuery&)>;

  /// `isThere` false: the host has no such component.
  CSymbolDatabase(IRuntime& runtime, bool isThere, Observer observer = {});
  ~CSymbolDatabase() override;

  std::unique_ptr<ISymbolDatabase> CreateDatabase(const std::wstring& baseFolder,
                                                  CDataBaseEventReceiver* receiver) override;
  std::unique_ptr<IRecordSet> CreateRecordSet() override;
  std::unique_ptr<IRecordItem> CreateRecordItem() override;

  /// Adds rows to the table SymbolSearch of the named database, or of every database.
  void AddRows(const SymbolsAction& symbols);
  /// Connecting and querying fail from now on, or work again.
  void SetFailing(bool failing);

 private:
  friend class CDatabaseConnection;
  using Database = std::unique_ptr<sqlite3, void (*)(sqlite3*)>;
  using Rows = std::vector<std::vector<std::wstring>>;

  bool IsFailing();
  bool Query(const std::wstring& database, const std::wstring& table, const std::wstring& where,
             std::vector<std::wstring>& columns, Rows& rows);
  Database& DatabaseOf(const std::string& name) IORDER_REQUIRES(m_section);

  const bool m_isThere;
  const Observer m_observer;
  CCriticalSection m_section;
  bool m_isFailing IORDER_GUARDED_BY(m_section) = false;
  /// All rows in their order, each with the database that it is for.
  std::vector<std::pair<std::optional<std::string>, SymbolsAction::Row>> m_rows IORDER_GUARDED_BY(m_section);
  std::map<std::string, Database> m_databases IORDER_GUARDED_BY(m_section);
};

}  // namespace iorder

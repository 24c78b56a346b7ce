#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/critical_section.h"
#include "platform/symbol_database.h"
#include "platform/world.h"

namespace iorder {

/// A connection to the host's database component. Without a component behind it every call gives 0.
class DbAPIObj {
 public:
  explicit DbAPIObj(World& world) : m_world(world) {}

  /// Makes the component's object, once. An empty `baseFolder` means the folder of the host's executable.
  /// False if the component isn't there.
  bool Open(CDataBaseEventReceiver* receiver, std::wstring baseFolder);
  int32_t Connect(const std::wstring& server, const std::wstring& systemName);
  bool Query(const std::wstring& table, const std::wstring& where, const std::wstring& extra,
             IRecordSet& rows);
  int32_t SelectTable(const std::wstring& database, const std::wstring& table, const std::wstring& extra);

 private:
  World& m_world;
  std::unique_ptr<ISymbolDatabase> m_database;
};

/// The engine's symbol database: opened once, then asked from strategy and order threads. The result set and
/// the row are one pair for all queries; the lock keeps a query and the walk over its rows together.
///
/// All failures are silent: without a database every query gives no rows.
class CSymbolDatabaseAccess {
 public:
  explicit CSymbolDatabaseAccess(World& world) : m_world(world), m_cs(world.runtime, "symbol database") {}

  /// Connects to the database of the host's system, or to its replay twin. Nothing happens if it is open
  /// already.
  void Open(CDataBaseEventReceiver* receiver, const std::wstring& workFolder, bool replay)
      IORDER_EXCLUDES(m_cs);

  /// Runs a where-clause on the table of symbols and hands each row that can be fetched to `take`, in order.
  void Query(const std::wstring& where, const std::function<void(IRecordItem& row)>& take)
      IORDER_EXCLUDES(m_cs);

 private:
  World& m_world;
  CCriticalSection m_cs;
  std::wstring m_strSystemName IORDER_GUARDED_BY(m_cs);
  std::unique_ptr<DbAPIObj> m_pDataBase IORDER_GUARDED_BY(m_cs);
  std::unique_ptr<IRecordSet> m_pRecordSet IORDER_GUARDED_BY(m_cs);
  std::unique_ptr<IRecordItem> m_pRecordItem IORDER_GUARDED_BY(m_cs);
};

}  // namespace iorder

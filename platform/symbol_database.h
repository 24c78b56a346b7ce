#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace iorder {

/// One row of a result.
class IRecordItem {
 public:
  virtual ~IRecordItem() = default;
  /// The column's value as text, "" if there is no such column or no value.
  virtual std::wstring Get(std::wstring_view column) = 0;
};

/// The rows that a query found.
class IRecordSet {
 public:
  virtual ~IRecordSet() = default;
  virtual int32_t Count() = 0;
  /// Copies the row of this index, from 0, into `row`. False if there is none.
  virtual bool Fetch(int32_t index, IRecordItem& row) = 0;
};

/// A connection to the host's symbol database. Calls on one connection come from several threads, but not at
/// once.
class ISymbolDatabase {
 public:
  virtual ~ISymbolDatabase() = default;
  /// Below 1 is failure.
  virtual int32_t Connect(const std::wstring& server, const std::wstring& systemName) = 0;
  virtual int32_t SelectTable(const std::wstring& database, const std::wstring& table,
                              const std::wstring& extra) = 0;
  /// Runs a where-clause (with what follows it) on a table and fills `rows`. False on failure.
  virtual bool Query(const std::wstring& table, const std::wstring& where, const std::wstring& extra,
                     IRecordSet& rows) = 0;
};

/// Receives the events of the database component.
class CDataBaseEventReceiver {
 public:
  virtual ~CDataBaseEventReceiver() = default;
  virtual void OnCommandMsg(int32_t, int32_t, const std::wstring&) {}
  virtual void OnWriteLog(const std::wstring&) {}
};

/// The host's database component. Each operation gives none if the component, or that class of it, isn't
/// there.
class ISymbolDatabaseComponent {
 public:
  virtual ~ISymbolDatabaseComponent() = default;
  /// `baseFolder` ends in a backslash. `receiver` may be none; it outlives the connection.
  virtual std::unique_ptr<ISymbolDatabase> CreateDatabase(const std::wstring& baseFolder,
                                                          CDataBaseEventReceiver* receiver) = 0;
  virtual std::unique_ptr<IRecordSet> CreateRecordSet() = 0;
  virtual std::unique_ptr<IRecordItem> CreateRecordItem() = 0;
};

}  // namespace iorder

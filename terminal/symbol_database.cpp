#include "terminal/symbol_database.h"

#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <stdexcept>

#include "platform/text.h"

namespace iorder {
namespace {

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

Statement Prepare(sqlite3* database, const std::string& text) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, text.c_str(), -1, &statement, nullptr);
  return {statement, sqlite3_finalize};
}

void Execute(sqlite3* database, const std::string& text) {
  if (sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(std::string("symbol database: ") + sqlite3_errmsg(database));
  }
}

std::string CreateTable() {
  std::string columns;
  for (const char* const column : kSymbolColumns) {
    columns += (columns.empty() ? "" : ", ") + std::string(column) + " text";
  }
  return "create table SymbolSearch (" + columns + ")";
}

void Insert(sqlite3* database, const std::vector<const SymbolsAction::Row*>& rows) {
  Execute(database, "begin");
  const Statement insert = Prepare(database, "insert into SymbolSearch values (?, ?, ?, ?, ?, ?)");
  static_assert(std::size(kSymbolColumns) == 6);
  for (const SymbolsAction::Row* const row : rows) {
    sqlite3_reset(insert.get());
    for (size_t i = 0; i < row->size(); ++i) {
      const std::optional<std::string>& value = (*row)[i];
      if (value) {
        sqlite3_bind_text(insert.get(), static_cast<int>(i) + 1, value->data(),
                          static_cast<int>(value->size()), SQLITE_STATIC);
      } else {
        sqlite3_bind_null(insert.get(), static_cast<int>(i) + 1);
      }
    }
    if (sqlite3_step(insert.get()) != SQLITE_DONE) {
      throw std::runtime_error(std::string("symbol database: ") + sqlite3_errmsg(database));
    }
  }
  Execute(database, "commit");
}

/// Rows that the clause's own order leaves open come in the order in which they were added.
std::string OrderOf(std::string where) {
  std::transform(where.begin(), where.end(), where.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return where.find(" order by ") != std::string::npos ? ", rowid" : " order by rowid";
}

std::wstring ColumnText(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  const int length = sqlite3_column_bytes(statement, column);
  return text == nullptr ? std::wstring()
                         : ToWide({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
}

class CRecordItem : public IRecordItem {
 public:
  std::wstring Get(std::wstring_view column) override {
    const auto found = std::find(m_columns.begin(), m_columns.end(), column);
    return found != m_columns.end() ? m_values[static_cast<size_t>(found - m_columns.begin())]
                                    : std::wstring();
  }

  std::vector<std::wstring> m_columns;
  std::vector<std::wstring> m_values;
};

class CRecordSet : public IRecordSet {
 public:
  int32_t Count() override { return static_cast<int32_t>(m_rows.size()); }

  bool Fetch(int32_t index, IRecordItem& row) override {
    CRecordItem* const item = dynamic_cast<CRecordItem*>(&row);
    if (item == nullptr || index < 0 || static_cast<size_t>(index) >= m_rows.size()) {
      return false;
    }
    item->m_columns = m_columns;
    item->m_values = m_rows[static_cast<size_t>(index)];
    return true;
  }

  std::vector<std::wstring> m_columns;
  std::vector<std::vector<std::wstring>> m_rows;
};

}  // namespace

/// One client's connection: it knows which database the client has selected.
class CDatabaseConnection : public ISymbolDatabase {
 public:
  explicit CDatabaseConnection(CSymbolDatabase& component) : m_component(component) {}

  int32_t Connect(const std::wstring&, const std::wstring&) override {
    return m_component.IsFailing() ? 0 : 1;
  }

  int32_t SelectTable(const std::wstring& database, const std::wstring&, const std::wstring&) override {
    m_selected = database;
    return 1;
  }

  bool Query(const std::wstring& table, const std::wstring& where, const std::wstring&,
             IRecordSet& rows) override {
    CRecordSet* const result = dynamic_cast<CRecordSet*>(&rows);
    if (result == nullptr) {
      return false;
    }
    result->m_rows.clear();
    return m_component.Query(m_selected, table, where, result->m_columns, result->m_rows);
  }

 private:
  CSymbolDatabase& m_component;
  std::wstring m_selected;
};

CSymbolDatabase::CSymbolDatabase(IRuntime& runtime, bool isThere, Observer observer)
    : m_isThere(isThere), m_observer(std::move(observer)), m_section(runtime, "database rows") {}

CSymbolDatabase::~CSymbolDatabase() = default;

std::unique_ptr<ISymbolDatabase> CSymbolDatabase::CreateDatabase(const std::wstring&,
                                                                 CDataBaseEventReceiver*) {
  return m_isThere ? std::make_unique<CDatabaseConnection>(*this) : nullptr;
}

std::unique_ptr<IRecordSet> CSymbolDatabase::CreateRecordSet() {
  return m_isThere ? std::make_unique<CRecordSet>() : nullptr;
}

std::unique_ptr<IRecordItem> CSymbolDatabase::CreateRecordItem() {
  return m_isThere ? std::make_unique<CRecordItem>() : nullptr;
}

void CSymbolDatabase::AddRows(const SymbolsAction& symbols) {
  CLockGuard guard(m_section);
  for (const SymbolsAction::Row& row : symbols.rows) {
    m_rows.emplace_back(symbols.database, row);
  }
  for (auto& [name, database] : m_databases) {
    if (symbols.database.value_or(name) == name) {
      std::vector<const SymbolsAction::Row*> rows;
      for (const SymbolsAction::Row& row : symbols.rows) {
        rows.push_back(&row);
      }
      Insert(database.get(), rows);
    }
  }
}

void CSymbolDatabase::SetFailing(bool failing) {
  CLockGuard guard(m_section);
  m_isFailing = failing;
}

bool CSymbolDatabase::IsFailing() {
  CLockGuard guard(m_section);
  return m_isFailing;
}

CSymbolDatabase::Database& CSymbolDatabase::DatabaseOf(const std::string& name) {
  const auto found = m_databases.find(name);
  if (found != m_databases.end()) {
    return found->second;
  }
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(":memory:", &opened);
  Database database(opened, [](sqlite3* closed) { sqlite3_close(closed); });
  if (result != SQLITE_OK) {
    throw std::runtime_error("symbol database: SQLite can't be opened");
  }
  Execute(database.get(), CreateTable());
  std::vector<const SymbolsAction::Row*> rows;
  for (const auto& [only, row] : m_rows) {
    if (only.value_or(name) == name) {
      rows.push_back(&row);
    }
  }
  Insert(database.get(), rows);
  return m_databases.emplace(name, std::move(database)).first->second;
}

bool CSymbolDatabase::Query(const std::wstring& database, const std::wstring& table,
                            const std::wstring& where, std::vector<std::wstring>& columns, Rows& rows) {
  bool done = false;
  {
    CLockGuard guard(m_section);
    if (!m_isFailing) {
      const std::string clause = ToUtf8(where);
      const Statement select =
          Prepare(DatabaseOf(ToUtf8(database)).get(),
                  "select * from " + ToUtf8(table) + " where " + clause + OrderOf(clause));
      columns.clear();
      for (int i = 0; select != nullptr && i < sqlite3_column_count(select.get()); ++i) {
        columns.push_back(ToWide(sqlite3_column_name(select.get(), i)));
      }
      int step = select != nullptr ? sqlite3_step(select.get()) : SQLITE_ERROR;
      for (; step == SQLITE_ROW; step = sqlite3_step(select.get())) {
        std::vector<std::wstring>& row = rows.emplace_back();
        for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
          row.push_back(ColumnText(select.get(), i));
        }
      }
      done = step == SQLITE_DONE;
    }
  }
  if (m_observer) {
    m_observer({database, table, where, done ? static_cast<int32_t>(rows.size()) : -1});
  }
  return done;
}

}  // namespace iorder

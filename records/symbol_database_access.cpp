#include "records/symbol_database_access.h"

#include <utility>

#include "platform/settings_file.h"

namespace iorder {

namespace {

constexpr const wchar_t* kSymbolTable = L"SymbolSearch";
constexpr size_t kSettingLimit = 256;

std::wstring FolderOf(const std::wstring& path) {
  return path.substr(0, path.rfind(L'\\') + 1);
}

}  // namespace

bool DbAPIObj::Open(CDataBaseEventReceiver* receiver, std::wstring baseFolder) {
  if (m_database != nullptr) return true;
  if (baseFolder.empty()) baseFolder = FolderOf(m_world.hostExecutable);
  m_database = m_world.database.CreateDatabase(baseFolder, receiver);
  return m_database != nullptr;
}

int32_t DbAPIObj::Connect(const std::wstring& server, const std::wstring& systemName) {
  return m_database != nullptr ? m_database->Connect(server, systemName) : 0;
}

bool DbAPIObj::Query(const std::wstring& table, const std::wstring& where, const std::wstring& extra,
                     IRecordSet& rows) {
  return m_database != nullptr && m_database->Query(table, where, extra, rows);
}

int32_t DbAPIObj::SelectTable(const std::wstring& database, const std::wstring& table,
                              const std::wstring& extra) {
  return m_database != nullptr ? m_database->SelectTable(database, table, extra) : 0;
}

void CSymbolDatabaseAccess::Open(CDataBaseEventReceiver* receiver, const std::wstring& workFolder,
                                 bool replay) {
  CLockGuard guard(m_cs);
  if (m_pDataBase != nullptr) return;
  auto database = std::make_unique<DbAPIObj>(m_world);
  if (!database->Open(receiver, workFolder)) return;
  m_strSystemName = m_world.settings.ReadString(workFolder + L"ComShared\\SystemSettings.ini", L"SYSTEM",
                                                L"SystemName", L"", kSettingLimit);
  if (database->Connect(L".", m_strSystemName) < 1) return;
  m_pRecordSet = m_world.database.CreateRecordSet();
  if (m_pRecordSet == nullptr) return;
  m_pRecordItem = m_world.database.CreateRecordItem();
  if (m_pRecordItem == nullptr) return;
  database->SelectTable((replay ? L"ReplayGLM_" : L"Glacette_") + m_strSystemName, kSymbolTable, L"");
  m_pDataBase = std::move(database);
}

void CSymbolDatabaseAccess::Query(const std::wstring& where,
                                  const std::function<void(IRecordItem& row)>& take) {
  CLockGuard guard(m_cs);
  if (m_pDataBase == nullptr || !m_pDataBase->Query(kSymbolTable, where, L"", *m_pRecordSet)) return;
  for (int32_t i = 0; i < m_pRecordSet->Count(); ++i) {
    if (m_pRecordSet->Fetch(i, *m_pRecordItem)) take(*m_pRecordItem);
  }
}

}  // namespace iorder

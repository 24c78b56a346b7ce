#pragma once

#include <set>
#include <string>

#include "platform/critical_section.h"
#include "records/base_data.h"

namespace iorder {

/// The accounts whose connection is up now. Any thread may call.
class CConnectedAccounts {
 public:
  explicit CConnectedAccounts(IRuntime& runtime) : m_csAccounts(runtime, "m_csAccounts") {}

  /// Rebuilds the table from nothing out of the record "ACCOUNTS". The lock is held while the record is read.
  void Rebuild(CBaseData& accounts);
  /// Broker and account count with their case.
  bool IsReady(const std::wstring& broker, const std::wstring& account);

 private:
  void AddConnected(CBaseData& broker) IORDER_REQUIRES(m_csAccounts);

  CCriticalSection m_csAccounts;
  std::set<std::wstring> m_mapConnected IORDER_GUARDED_BY(m_csAccounts);
};

}  // namespace iorder

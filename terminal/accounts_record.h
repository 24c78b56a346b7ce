#pragma once

#include <set>
#include <string>

#include "platform/critical_section.h"
#include "terminal/day.h"
#include "terminal/record_bus.h"

namespace iorder {

/// The record "ACCOUNTS": one node per broker, one item per account. Any thread may call; it fires nothing.
class CAccountsRecord {
 public:
  CAccountsRecord(IRuntime& runtime, CEmbeddedBus& bus) : m_bus(bus), m_section(runtime, "accounts") {}

  /// Rewrites the record: an account that isn't named is gone.
  void Set(const AccountsAction& accounts);
  /// Shows the account ("BROKER_ACCOUNT") as not connected, or as it was given.
  void Drop(const std::wstring& account, bool dropped);
  /// Why the account takes no orders: it isn't connected. "" if it is.
  std::wstring ComplaintAbout(const std::wstring& broker, const std::wstring& account);

 private:
  void Write() IORDER_REQUIRES(m_section);

  CEmbeddedBus& m_bus;
  CCriticalSection m_section;
  AccountsAction m_accounts IORDER_GUARDED_BY(m_section);
  std::set<std::wstring> m_dropped IORDER_GUARDED_BY(m_section);
};

inline constexpr const wchar_t* kAccountsRecord = L"ACCOUNTS";

}  // namespace iorder

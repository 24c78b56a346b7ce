#include "terminal/accounts_record.h"

#include <algorithm>

namespace iorder {
namespace {

constexpr int32_t kConnected = 2;
constexpr int32_t kNotConnected = 0;

}  // namespace

void CAccountsRecord::Set(const AccountsAction& accounts) {
  CLockGuard guard(m_section);
  m_accounts = accounts;
  Write();
}

void CAccountsRecord::Drop(const std::wstring& account, bool dropped) {
  CLockGuard guard(m_section);
  if (dropped) {
    m_dropped.insert(account);
  } else {
    m_dropped.erase(account);
  }
  Write();
}

std::wstring CAccountsRecord::ComplaintAbout(const std::wstring& broker, const std::wstring& account) {
  const bool isConnected = m_bus.ItemHas(kAccountsRecord, broker, account, L"ConnectStatus", kConnected);
  return isConnected ? std::wstring() : L"account " + broker + L"/" + account + L" isn't connected";
}

void CAccountsRecord::Write() {
  RecordChange record;
  record.name = kAccountsRecord;
  record.clear = true;
  for (const AccountsAction::Account& account : m_accounts.accounts) {
    auto node = std::find_if(record.nodes.begin(), record.nodes.end(),
                             [&](const RecordChange& broker) { return broker.name == account.broker; });
    if (node == record.nodes.end()) {
      node = record.nodes.insert(node, RecordChange());
      node->name = account.broker;
    }
    RecordChange& item = node->items.emplace_back();
    item.name = account.account;
    item.fields = {{L"BrokerID", {{}, account.broker, {}}}, {L"Account", {{}, account.account, {}}}};
    if (m_dropped.contains(account.broker + L"_" + account.account)) {
      item.fields.push_back({L"ConnectStatus", {{}, kNotConnected, {}}});
    } else if (account.hasStatus) {
      item.fields.push_back({L"ConnectStatus", account.status});
    }
  }
  m_bus.Apply(record);
}

}  // namespace iorder

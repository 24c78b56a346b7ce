#include "engine/connected_accounts.h"

#include <algorithm>

#include "reference/symbol.h"

namespace iorder {

namespace {

constexpr int32_t kConnected = 2;
/// Characters before a name in a list of nodes.
constexpr size_t kNamePrefix = 2;

}  // namespace

void CConnectedAccounts::Rebuild(CBaseData& accounts) {
  CLockGuard guard(m_csAccounts);
  m_mapConnected.clear();
  const Value names = accounts.GetValue(read_code::kNames, kNodeNamesSelector);
  const std::wstring* list = std::get_if<std::wstring>(&names);
  if (list == nullptr) return;
  CTokenizer pieces(*list);
  for (auto piece = pieces.Next(L';'); !piece.empty(); piece = pieces.Next(L';')) {
    piece.remove_prefix(std::min(kNamePrefix, piece.size()));
    if (const auto broker = accounts.OpenNodeByName(piece, nullptr)) AddConnected(*broker);
  }
}

void CConnectedAccounts::AddConnected(CBaseData& broker) {
  const int32_t count = Int32Or(broker.GetValue(read_code::kItem, -1), 0);
  for (int32_t i = 0; i < count; ++i) {
    const auto item = broker.OpenItem(i, nullptr);
    if (item == nullptr || item->GetInt(L"ConnectStatus", NoInt) != kConnected) continue;
    m_mapConnected.insert(item->GetString(L"BrokerID") + L"_" + item->GetString(L"Account"));
  }
}

bool CConnectedAccounts::IsReady(const std::wstring& broker, const std::wstring& account) {
  const std::wstring key = broker + L"_" + account;
  CLockGuard guard(m_csAccounts);
  return m_mapConnected.contains(key);
}

}  // namespace iorder

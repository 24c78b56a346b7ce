#include "engine/pnl_settings.h"

#include <utility>

#include "records/json_reader.h"
#include "records/scaled_value.h"

namespace iorder {

void CPnLLimits::Read(const rapidjson::Value& command) {
  if (const auto* profit = FindObject(command, "Profit")) {
    m_lProfitEnable = ReadJsonInt(*profit, "Enable", 0);
    m_llProfitValue = Truncate(ReadJsonNumber(*profit, "Value", -1));
    m_dbProfitValueP = ReadJsonNumber(*profit, "Value%", -1.0);
  }
  if (const auto* loss = FindObject(command, "Loss")) {
    m_lLossEnable = ReadJsonInt(*loss, "Enable", 0);
    m_llLossValue = Truncate(ReadJsonNumber(*loss, "Value", -1));
    m_dbLossValueP = ReadJsonNumber(*loss, "Value%", -1.0);
  }
}

CPnLLimits CPnLInfo::Update(const rapidjson::Value& command) {
  CLockGuard guard(m_cs);
  m_limits.Read(command);
  return m_limits;
}

CPnLLimits CPnLInfo::Get() {
  CLockGuard guard(m_cs);
  return m_limits;
}

std::shared_ptr<CPnLInfo> CPnLSettings::Touch(const std::wstring& tag) {
  CLockGuard guard(m_csPnL);
  auto& info = m_mapPnLSettings[tag];
  if (info == nullptr) info = std::make_shared<CPnLInfo>(m_runtime);
  m_mapPnLTags.insert(tag);
  return info;
}

std::shared_ptr<CPnLInfo> CPnLSettings::Find(const std::wstring& tag) {
  CLockGuard guard(m_csPnL);
  const auto found = m_mapPnLSettings.find(tag);
  return found == m_mapPnLSettings.end() ? nullptr : found->second;
}

std::set<std::wstring> CPnLSettings::TakeChangedTags() {
  CLockGuard guard(m_csPnL);
  return std::exchange(m_mapPnLTags, {});
}

}  // namespace iorder

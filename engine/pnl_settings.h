#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "platform/critical_section.h"

namespace iorder {

/// The profit and loss limits of one strategy tag. The starting values trigger nothing.
struct CPnLLimits {
  int32_t m_lProfitEnable = 0;
  int64_t m_llProfitValue = -1;    ///< money
  double m_dbProfitValueP = -1.0;  ///< percent of the cost
  int32_t m_lLossEnable = 0;
  int64_t m_llLossValue = -1;
  double m_dbLossValueP = -1.0;

  /// Reads "Profit" and "Loss" of a limit command; an object that is missing leaves its three fields alone.
  void Read(const rapidjson::Value& command);
};

/// The limits of one tag with their lock.
class CPnLInfo {
 public:
  explicit CPnLInfo(IRuntime& runtime) : m_cs(runtime, "limit lock") {}

  /// Takes a limit command over and returns what holds from now on.
  CPnLLimits Update(const rapidjson::Value& command);
  CPnLLimits Get();

 private:
  CCriticalSection m_cs;
  CPnLLimits m_limits IORDER_GUARDED_BY(m_cs);
};

/// The limits of all tags, and the tags whose limits have changed since the monitor last looked. Any thread
/// may call.
class CPnLSettings {
 public:
  explicit CPnLSettings(IRuntime& runtime) : m_runtime(runtime), m_csPnL(runtime, "m_csPnL") {}

  /// The limits of a tag, made if there are none yet; the tag counts as changed.
  std::shared_ptr<CPnLInfo> Touch(const std::wstring& tag);
  /// The limits of a tag, or none.
  std::shared_ptr<CPnLInfo> Find(const std::wstring& tag);
  /// The changed tags; none counts as changed afterwards.
  std::set<std::wstring> TakeChangedTags();

 private:
  IRuntime& m_runtime;
  CCriticalSection m_csPnL;
  std::map<std::wstring, std::shared_ptr<CPnLInfo>> m_mapPnLSettings IORDER_GUARDED_BY(m_csPnL);
  std::set<std::wstring> m_mapPnLTags IORDER_GUARDED_BY(m_csPnL);
};

}  // namespace iorder

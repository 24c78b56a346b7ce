#pragma once

#include <functional>
#include <string>
#include <vector>

#include "records/base_data.h"

namespace iorder::test {

/// Notes the events of record handles, one line each: "update 7 payload", "replace 7".
class CRecordingReceiver : public CBaseDataEventReceiver {
 public:
  void OnUpdate(CBaseData* source, int32_t originator, const std::wstring& payload) override;
  void OnReplace(CBaseData* source, int32_t originator) override;

  /// Called inside each update, after it was noted.
  std::function<void()> onUpdate;
  std::vector<std::wstring> events;
  std::vector<CBaseData*> sources;
};

}  // namespace iorder::test

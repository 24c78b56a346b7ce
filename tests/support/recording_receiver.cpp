#include "tests/support/recording_receiver.h"

namespace iorder::test {

void CRecordingReceiver::OnUpdate(CBaseData* source, int32_t originator, const std::wstring& payload) {
  events.push_back(L"update " + std::to_wstring(originator) + (payload.empty() ? L"" : L" " + payload));
  sources.push_back(source);
  if (onUpdate) onUpdate();
}

void CRecordingReceiver::OnReplace(CBaseData* source, int32_t originator) {
  events.push_back(L"replace " + std::to_wstring(originator));
  sources.push_back(source);
}

}  // namespace iorder::test

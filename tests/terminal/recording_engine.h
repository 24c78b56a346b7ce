#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/host_events.h"
#include "platform/record_bus.h"

namespace iorder::testing {

/// Stands where the engine stands: notes what the host tells it and, if wanted, does something at each call.
class CRecordingEngine : public INordoManager {
 public:
  void SetPhase(int32_t category, int32_t phase) override {
    calls.push_back(L"phase " + std::to_wstring(category) + L" " + std::to_wstring(phase));
    if (onPhase) {
      onPhase(category, phase);
    }
  }

  void OnTopicMessage(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override {
    calls.push_back(topic + L" " + std::to_wstring(first) + L" " + std::to_wstring(second) + L" " + text);
    values.push_back(value);
    if (onMessage) {
      onMessage(topic, text, value);
    }
  }

  std::vector<std::wstring> calls;
  std::vector<Value> values;
  std::function<void(int32_t category, int32_t phase)> onPhase;
  std::function<void(const std::wstring& topic, const std::wstring& text, const Value& value)> onMessage;
};

/// Notes the events of one record.
class CRecordingSink : public IBusEvents {
 public:
  void OnUpdate(int32_t originator, const std::wstring& payload) override {
    events.push_back(L"update " + std::to_wstring(originator) + (payload.empty() ? L"" : L" " + payload));
    if (onUpdate) {
      onUpdate();
    }
  }
  void OnReplace(int32_t originator) override { events.push_back(L"replace " + std::to_wstring(originator)); }

  std::vector<std::wstring> events;
  std::function<void()> onUpdate;
};

}  // namespace iorder::testing

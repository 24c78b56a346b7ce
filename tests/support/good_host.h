#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/host_events.h"

namespace iorder::test {

/// A sink that notes every event as one line and answers each with 1; records are opened by `openRecord`.
class CGoodHost : public IHostEvents {
 public:
  std::optional<int32_t> Advertise(const std::wstring& topic, int32_t value) override;
  std::optional<int32_t> Subscribe(const std::wstring& topic) override;
  void Unsubscribe(const std::wstring& topic) override;
  std::optional<int32_t> OpenRecord(const std::wstring& name) override;
  Value Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                const Value& value) override;
  void WriteLog(const std::wstring& text) override;
  void ReportFault(uint32_t code, const std::wstring& text) override;

  std::function<std::optional<int32_t>(const std::wstring& name)> openRecord;
  std::vector<std::wstring> events;
};

}  // namespace iorder::test

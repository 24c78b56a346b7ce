#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/value.h"

namespace iorder {

/// The host's sink for the engine's events: every request of the engine goes out through one of these. Any
/// engine thread may call, several at once. A sink that fails gives no reply (nullopt, or an empty value);
/// nothing is raised.
class IHostEvents {
 public:
  virtual ~IHostEvents() = default;

  /// Event 1: the engine serves `topic`.
  virtual std::optional<int32_t> Advertise(const std::wstring& topic, int32_t value) = 0;
  /// Event 2: the engine wants messages or data of `topic`.
  virtual std::optional<int32_t> Subscribe(const std::wstring& topic) = 0;
  /// Event 3.
  virtual void Unsubscribe(const std::wstring& topic) = 0;
  /// Event 4: the handle of the record of that name. None if the call failed, 0 if there is no such record.
  virtual std::optional<int32_t> OpenRecord(const std::wstring& name) = 0;
  /// Event 5: an order, a cancel, a status message, a request. The reply's kind is the topic's.
  virtual Value Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                        const Value& value) = 0;
  /// Event 7: one line of the log.
  virtual void WriteLog(const std::wstring& text) = 0;

  /// Not one of the numbered events: an exception ended one message or timer callback of an engine thread.
  /// `code` is the platform's error code (0x80070057 and so on).
  virtual void ReportFault(uint32_t code, const std::wstring& text) = 0;
};

/// The host's way into the engine.
class INordoManager {
 public:
  virtual ~INordoManager() = default;
  virtual void SetPhase(int32_t category, int32_t phase) = 0;
  virtual void OnTopicMessage(const std::wstring& topic, int32_t first, int32_t second,
                              const std::wstring& text, const Value& value) = 0;
};

}  // namespace iorder

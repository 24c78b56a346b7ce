#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/world.h"
#include "records/base_data.h"

namespace iorder {

/// The way out to the host as the parts of the engine see it. The engine answers it; all operations may come
/// from any thread, and none may be called under a lock but where that is said.
class IHostGateway {
 public:
  virtual ~IHostGateway() = default;

  virtual World& GetWorld() = 0;
  /// One log line; the engine's prefix is put before it.
  virtual void WriteLog(const std::wstring& text) = 0;
  /// The handle of the record of that name, owned by the caller, or none.
  virtual std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name,
                                                CBaseDataEventReceiver* receiver) = 0;
  /// Fires the command event and gives the host's reply, empty if there is none.
  virtual Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second,
                              const std::wstring& text, const Value& value) = 0;
  virtual void FireSubscribe(const std::wstring& topic) = 0;
  virtual void FireUnsubscribe(const std::wstring& topic) = 0;
};

}  // namespace iorder

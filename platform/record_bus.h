#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace iorder {

/// The two events of a record. They arrive on the bus's threads.
class IBusEvents {
 public:
  virtual ~IBusEvents() = default;
  virtual void OnUpdate(int32_t originator, const std::wstring& payload) = 0;
  virtual void OnReplace(int32_t originator) = 0;
};

/// The read codes of IBusObject::GetValue.
namespace read_code {
inline constexpr int32_t kNumber = 1;      ///< numeric field by id: 64-bit value
inline constexpr int32_t kField = 3;       ///< text field by name: a value of any kind
inline constexpr int32_t kItem = 4;        ///< -1: number of items; index or name: the item's handle
inline constexpr int32_t kItemByName = 5;  ///< name: the item's handle
inline constexpr int32_t kNode = 6;        ///< -1: number of nodes; index: the node's handle
inline constexpr int32_t kNodeByName = 7;  ///< name: the node's handle
inline constexpr int32_t kNames = 11;      ///< 16384: names of the nodes; 1024: text for a copy
inline constexpr int32_t kContent = 17;    ///< the text of kNames 1024: a value that stands for the content
}  // namespace read_code

/// Selectors of read code 11.
inline constexpr int32_t kNodeNamesSelector = 16384;
inline constexpr int32_t kCopySelector = 1024;

/// The write codes of IBusObject::WriteValue; they serve only to copy a record.
namespace write_code {
inline constexpr int32_t kClear = 15;
inline constexpr int32_t kContent = 17;
}  // namespace write_code

/// One record of the host's bus, as one client holds it. Calls may come from any thread; nothing is raised.
class IBusObject {
 public:
  virtual ~IBusObject() = default;

  /// Dispatch id 5 with a number or a name as argument. An empty value where there is nothing.
  virtual Value GetValue(int32_t code, int32_t argument) = 0;
  virtual Value GetValue(int32_t code, std::wstring_view argument) = 0;
  /// Dispatch id 8: fills `slot` if the record has an enumeration of this name, else leaves it.
  virtual void GetEnum(std::wstring_view name, int32_t& slot) = 0;

  /// Dispatch id 1: begins a batch; the token is also the originator of the updates that the batch causes.
  virtual int32_t BeginWrite() = 0;
  /// Dispatch id 3.
  virtual void WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra) = 0;
  /// Dispatch id 4.
  virtual void EndWrite(int32_t token) = 0;

  /// Connects a sink for the record's events; the cookie isn't 0. The bus may still be calling a sink when
  /// Unadvise returns, and holds a reference for as long.
  virtual int32_t Advise(std::shared_ptr<IBusEvents> sink) = 0;
  virtual void Unadvise(int32_t cookie) = 0;
};

/// The host's record bus.
class IRecordBus {
 public:
  virtual ~IRecordBus() = default;
  /// The object of a record handle, or none.
  virtual std::shared_ptr<IBusObject> Resolve(int32_t handle) = 0;
  /// A new, empty object outside the bus's records, or none if the component isn't there.
  virtual std::shared_ptr<IBusObject> CreateObject() = 0;
};

}  // namespace iorder

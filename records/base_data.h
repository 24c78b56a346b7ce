#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/record_bus.h"
#include "platform/value.h"
#include "platform/world.h"
#include "records/scaled_value.h"

namespace iorder {

class CBaseData;

/// Receives the events of record handles, on the bus's threads. `source` tells which of its handles changed.
class CBaseDataEventReceiver {
 public:
  virtual ~CBaseDataEventReceiver() = default;
  /// What keeps the receiver alive while an event is delivered to it. A receiver that is destroyed only after
  /// its handles needs nothing; one that is shared gives a reference to itself, or none if it is being
  /// destroyed: then the event is dropped.
  virtual std::optional<std::shared_ptr<void>> Pin() { return nullptr; }
  virtual void OnUpdate(CBaseData* source, int32_t originator, const std::wstring& payload);
  virtual void OnReplace(CBaseData* source, int32_t originator);
};

/// The handle of one record on the bus: reads its values with fixed coercions and defaults, opens
/// sub-records, and passes the record's events on to its receiver.
///
/// Any thread may read. Nothing here raises: a field that is missing or of another kind gives the default.
/// Deleting a handle waits for an event that is being delivered, for at most 3 seconds; it may not be
/// deleted from inside its own event. Handles that the Open operations return belong to the caller.
class CBaseData {
 public:
  explicit CBaseData(World& world);
  ~CBaseData();
  CBaseData(const CBaseData&) = delete;
  CBaseData& operator=(const CBaseData&) = delete;

  /// Takes the receiver (or none) and, if no bus object is bound yet, binds `object` or, given none, a new
  /// one of the bus component. False if there is none. A second call changes only the receiver.
  bool Attach(CBaseDataEventReceiver* receiver, std::shared_ptr<IBusObject> object);
  /// The handle of the record that `handle` stands for, or none.
  static std::unique_ptr<CBaseData> OpenByHandle(World& world, int32_t handle,
                                                 CBaseDataEventReceiver* receiver);

  Value GetValue(int32_t code, int32_t argument);
  Value GetValue(int32_t code, std::wstring_view argument);
  /// The quote path: one bus call, no text. NoValue for anything but a 64-bit integer.
  int64_t GetFieldById(int32_t id);
  Value GetVariant(std::wstring_view field);
  /// Numbers become decimal digits; "" for no value.
  std::wstring GetString(std::wstring_view field);
  /// A 32-bit field gives its value, a text its leading decimal number, all else (64-bit fields too) the
  /// default.
  int32_t GetInt(std::wstring_view field, int32_t fallback);
  /// As GetInt, and a 64-bit field gives its value.
  int64_t GetInt64(std::wstring_view field, int64_t fallback);
  /// The string member of that name of the JSON object that the field holds as text; else "".
  std::wstring GetJsonString(std::wstring_view field, std::wstring_view member);
  int32_t GetEnum(std::wstring_view name, int32_t fallback);

  /// Each asks the bus and keeps a good answer (0 or above) for OpenItem and OpenNode; anything else gives 0.
  int32_t GetItemCount();
  int32_t GetNodeCount();
  /// Tries up to 20 times, with a sleep of 50 ms after each failed try; none at once for an index beyond the
  /// count.
  std::unique_ptr<CBaseData> OpenItem(int32_t index, CBaseDataEventReceiver* receiver);
  std::unique_ptr<CBaseData> OpenItemByName(std::wstring_view name, CBaseDataEventReceiver* receiver);
  /// One try, unlike OpenItem.
  std::unique_ptr<CBaseData> OpenNode(int32_t index);
  std::unique_ptr<CBaseData> OpenNodeByName(std::wstring_view name, CBaseDataEventReceiver* receiver);

  /// The token, also the own writer identity: updates that carry it aren't passed on. -1 without a bus
  /// object.
  int32_t BeginWrite();
  void WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra);
  void EndWrite(int32_t token);

 private:
  class Connection;

  std::unique_ptr<CBaseData> OpenResult(const Value& handle, CBaseDataEventReceiver* receiver);
  int32_t RefreshCount(int32_t code, std::atomic<int32_t>& cache);

  World& m_world;
  std::shared_ptr<IBusObject> m_object;
  /// The receiver, the gate, the cookie and the own writer identity: what an event in flight needs. It
  /// outlives the handle for as long as the bus is calling it. None for a handle that is only read, so that
  /// a walk over a chain's records makes none.
  std::shared_ptr<Connection> m_connection;
  std::atomic<int32_t> m_itemCount{-1};
  std::atomic<int32_t> m_nodeCount{-1};
};

}  // namespace iorder

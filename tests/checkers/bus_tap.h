#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "platform/record_bus.h"
#include "platform/world_runtime.h"
#include "tests/checkers/bus_read.h"

namespace iorder::testing {

/// Is told what passes through the tap.
class IBusReader {
 public:
  virtual ~IBusReader() = default;
  virtual void OnRead(const BusRead& read) = 0;
};

/// Stands between the engine and the bus, and tells what the engine reads of the records that it is told to
/// heed and of all below them. It changes nothing, and gives no thread a turn. For virtual time alone, in
/// which one thread runs at a time.
class CBusTap : public IRecordBus {
 public:
  CBusTap(IRecordBus& bus, IWorldRuntime& runtime, IBusReader& reader)
      : m_bus(bus), m_runtime(runtime), m_reader(reader) {}

  /// From now on what is opened by that handle is heeded, and told under that name.
  void Heed(int32_t handle, const std::string& record) { m_records[handle] = record; }

  std::shared_ptr<IBusObject> Resolve(int32_t handle) override;
  std::shared_ptr<IBusObject> CreateObject() override { return m_bus.CreateObject(); }

  void Tell(BusRead::Kind kind, const std::string& record, const std::string& name, const Value& value);

 private:
  IRecordBus& m_bus;
  IWorldRuntime& m_runtime;
  IBusReader& m_reader;
  std::map<int32_t, std::string> m_records;  ///< by handle
};

}  // namespace iorder::testing

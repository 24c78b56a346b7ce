#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/record_bus.h"

namespace iorder::test {

/// What of a bus is to be different. An empty function, or none as answer, leaves the call to the bus.
struct BusChanges {
  std::function<std::optional<Value>(int32_t code, int32_t argument)> getValue;
  std::function<bool()> createFails;
  /// Notes the calls: "read 4 -1", "advise", "begin", "write 15", "end".
  std::vector<std::wstring> calls;
};

class CWrappedObject : public IBusObject {
 public:
  CWrappedObject(std::shared_ptr<IBusObject> object, std::shared_ptr<BusChanges> changes)
      : m_object(std::move(object)), m_changes(std::move(changes)) {}

  Value GetValue(int32_t code, int32_t argument) override {
    Note(L"read " + std::to_wstring(code) + L" " + std::to_wstring(argument));
    if (m_changes->getValue) {
      if (auto value = m_changes->getValue(code, argument)) return *value;
    }
    return m_object->GetValue(code, argument);
  }
  Value GetValue(int32_t code, std::wstring_view argument) override {
    return m_object->GetValue(code, argument);
  }
  void GetEnum(std::wstring_view name, int32_t& slot) override { m_object->GetEnum(name, slot); }
  int32_t BeginWrite() override {
    Note(L"begin");
    return m_object->BeginWrite();
  }
  void WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra) override {
    Note(L"write " + std::to_wstring(code));
    m_object->WriteValue(token, code, value, extra);
  }
  void EndWrite(int32_t token) override {
    Note(L"end");
    m_object->EndWrite(token);
  }
  int32_t Advise(std::shared_ptr<IBusEvents> sink) override {
    Note(L"advise");
    return m_object->Advise(std::move(sink));
  }
  void Unadvise(int32_t cookie) override {
    Note(L"unadvise");
    m_object->Unadvise(cookie);
  }

 private:
  void Note(std::wstring call) { m_changes->calls.push_back(std::move(call)); }

  std::shared_ptr<IBusObject> m_object;
  std::shared_ptr<BusChanges> m_changes;
};

/// A good bus of which single calls can be changed.
class CWrappedBus : public IRecordBus {
 public:
  explicit CWrappedBus(IRecordBus& bus) : m_bus(bus) {}

  std::shared_ptr<IBusObject> Resolve(int32_t handle) override { return Wrap(m_bus.Resolve(handle)); }
  std::shared_ptr<IBusObject> CreateObject() override {
    if (changes->createFails && changes->createFails()) return nullptr;
    return Wrap(m_bus.CreateObject());
  }

  std::shared_ptr<BusChanges> changes = std::make_shared<BusChanges>();

 private:
  std::shared_ptr<IBusObject> Wrap(std::shared_ptr<IBusObject> object) {
    return object != nullptr ? std::make_shared<CWrappedObject>(std::move(object), changes) : nullptr;
  }

  IRecordBus& m_bus;
};

}  // namespace iorder::test

#include "tests/checkers/bus_tap.h"

#include <utility>

#include "platform/text.h"

namespace iorder::testing {
namespace {

constexpr int32_t kCount = -1;

class CTappedObject : public IBusObject {
 public:
  CTappedObject(CBusTap& tap, std::shared_ptr<IBusObject> object, std::string record)
      : m_tap(tap), m_object(std::move(object)), m_record(std::move(record)) {}

  Value GetValue(int32_t code, int32_t argument) override {
    Value value = m_object->GetValue(code, argument);
    if (code != read_code::kItem) return value;
    if (argument == kCount) {
      m_tap.Tell(BusRead::Kind::kItemCount, m_record, "", value);
    } else {
      Below(BusRead::Kind::kItem, "#" + std::to_string(argument), value);
    }
    return value;
  }

  Value GetValue(int32_t code, std::wstring_view argument) override {
    Value value = m_object->GetValue(code, argument);
    const std::string name = ToUtf8(argument);
    if (code == read_code::kField) m_tap.Tell(BusRead::Kind::kField, m_record, name, value);
    if (code == read_code::kItemByName) Below(BusRead::Kind::kItemByName, name, value);
    if (code == read_code::kNodeByName) Below(BusRead::Kind::kNodeByName, name, value);
    return value;
  }

  int32_t Advise(std::shared_ptr<IBusEvents> sink) override {
    m_tap.Tell(BusRead::Kind::kFollow, m_record, "", {});
    return m_object->Advise(std::move(sink));
  }
  void Unadvise(int32_t cookie) override {
    m_object->Unadvise(cookie);
    m_tap.Tell(BusRead::Kind::kLeave, m_record, "", {});
  }

  void GetEnum(std::wstring_view name, int32_t& slot) override { m_object->GetEnum(name, slot); }
  int32_t BeginWrite() override { return m_object->BeginWrite(); }
  void WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra) override {
    m_object->WriteValue(token, code, value, extra);
  }
  void EndWrite(int32_t token) override { m_object->EndWrite(token); }

 private:
  void Below(BusRead::Kind kind, const std::string& name, const Value& value) {
    if (const int32_t handle = Int32Or(value, 0)) {
      const bool isIndexed = kind == BusRead::Kind::kItem;
      m_tap.Heed(handle, m_record + (isIndexed ? "" : "/") + name);
    }
    m_tap.Tell(kind, m_record, name, value);
  }

  CBusTap& m_tap;
  const std::shared_ptr<IBusObject> m_object;
  const std::string m_record;
};

}  // namespace

std::shared_ptr<IBusObject> CBusTap::Resolve(int32_t handle) {
  std::shared_ptr<IBusObject> object = m_bus.Resolve(handle);
  const auto record = m_records.find(handle);
  if (object == nullptr || record == m_records.end()) return object;
  return std::make_shared<CTappedObject>(*this, std::move(object), record->second);
}

void CBusTap::Tell(BusRead::Kind kind, const std::string& record, const std::string& name,
                   const Value& value) {
  m_reader.OnRead({kind, ToLocalTime(m_runtime.ToLocal(m_runtime.Now())),
                   ToUtf8(m_runtime.CurrentThreadName()), record, name, value});
}

}  // namespace iorder::testing

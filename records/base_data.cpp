#include "records/base_data.h"

#include <utility>

#include "platform/runtime.h"
#include "platform/text.h"
#include "records/json_document.h"
#include "records/number_text.h"

namespace iorder {

namespace {

constexpr Milliseconds kGateLimit{3000};
constexpr int kItemTries = 20;
constexpr Milliseconds kItemRetry{50};
constexpr int32_t kCount = -1;
constexpr int32_t kNoWriter = -999;

}  // namespace

void CBaseDataEventReceiver::OnUpdate(CBaseData*, int32_t, const std::wstring&) {}
void CBaseDataEventReceiver::OnReplace(CBaseData*, int32_t) {}

/// The bus's end of a handle's event connection.
class CBaseData::Connection : public IBusEvents {
 public:
  Connection(World& world, CBaseData* source)
      : m_runtime(world.runtime), m_source(source), m_gate(m_runtime.CreateEvent(EventReset::kAuto, true)) {}

  void SetReceiver(CBaseDataEventReceiver* receiver) { m_receiver = receiver; }
  void SetCookie(int32_t cookie) { m_cookie = cookie; }
  void SetWriter(int32_t token) { m_ownWriter = token; }
  int32_t Cookie() const { return m_cookie; }
  bool HasReceiver() const { return m_receiver != nullptr; }

  /// An event that is stuck holds a wait up for the limit only; the step then goes on all the same.
  void WaitGate() { m_runtime.Wait(*m_gate, kGateLimit); }
  void SetGate() { m_gate->Set(); }

  void OnUpdate(int32_t originator, const std::wstring& payload) override {
    // Let go only after the gate is open again: the receiver may go with it, and its handles wait for the
    // gate.
    std::optional<std::shared_ptr<void>> pin;
    WaitGate();
    const GateOpener opener{*m_gate};
    CBaseDataEventReceiver* receiver = m_receiver;
    if (m_cookie == 0 || receiver == nullptr || originator == m_ownWriter) return;
    pin = receiver->Pin();
    if (pin) receiver->OnUpdate(m_source, originator, payload);
  }

  /// Neither gate nor echo test: a replacement always reaches the receiver at once.
  void OnReplace(int32_t originator) override {
    CBaseDataEventReceiver* receiver = m_receiver;
    if (receiver == nullptr) return;
    if (const auto pin = receiver->Pin()) receiver->OnReplace(m_source, originator);
  }

 private:
  struct GateOpener {
    IEvent& gate;
    ~GateOpener() { gate.Set(); }
  };

  IRuntime& m_runtime;
  CBaseData* const m_source;
  std::unique_ptr<IEvent> m_gate;
  std::atomic<CBaseDataEventReceiver*> m_receiver{nullptr};
  std::atomic<int32_t> m_cookie{0};
  std::atomic<int32_t> m_ownWriter{kNoWriter};
};

CBaseData::CBaseData(World& world) : m_world(world) {}

CBaseData::~CBaseData() {
  if (m_connection == nullptr) return;
  CutOffShield shield(m_world.runtime);
  m_connection->WaitGate();
  m_connection->SetReceiver(nullptr);
  if (m_object != nullptr && m_connection->Cookie() != 0) m_object->Unadvise(m_connection->Cookie());
  m_connection->SetGate();
  m_connection->SetCookie(0);
  // An event in flight has ended once the gate opens again.
  m_connection->WaitGate();
  m_connection->SetGate();
}

bool CBaseData::Attach(CBaseDataEventReceiver* receiver, std::shared_ptr<IBusObject> object) {
  if (m_connection == nullptr && receiver != nullptr) {
    m_connection = std::make_shared<Connection>(m_world, this);
  }
  if (m_connection != nullptr) m_connection->SetReceiver(receiver);
  if (m_object != nullptr) return true;
  m_object = object != nullptr ? std::move(object) : m_world.bus.CreateObject();
  if (m_object == nullptr) return false;
  if (receiver != nullptr) m_connection->SetCookie(m_object->Advise(m_connection));
  return true;
}

std::unique_ptr<CBaseData> CBaseData::OpenByHandle(World& world, int32_t handle,
                                                   CBaseDataEventReceiver* receiver) {
  std::shared_ptr<IBusObject> object = world.bus.Resolve(handle);
  if (object == nullptr) return nullptr;
  auto record = std::make_unique<CBaseData>(world);
  return record->Attach(receiver, std::move(object)) ? std::move(record) : nullptr;
}

Value CBaseData::GetValue(int32_t code, int32_t argument) {
  return m_object != nullptr ? m_object->GetValue(code, argument) : Value{};
}

Value CBaseData::GetValue(int32_t code, std::wstring_view argument) {
  return m_object != nullptr ? m_object->GetValue(code, argument) : Value{};
}

int64_t CBaseData::GetFieldById(int32_t id) {
  const Value value = GetValue(read_code::kNumber, id);
  const int64_t* number = std::get_if<int64_t>(&value);
  return number != nullptr ? *number : NoValue;
}

Value CBaseData::GetVariant(std::wstring_view field) {
  return GetValue(read_code::kField, field);
}

std::wstring CBaseData::GetString(std::wstring_view field) {
  Value value = GetVariant(field);
  if (std::wstring* text = std::get_if<std::wstring>(&value)) return std::move(*text);
  if (const int32_t* number = std::get_if<int32_t>(&value)) return ToDecimal(*number);
  if (const int64_t* number = std::get_if<int64_t>(&value)) return ToDecimal(*number);
  return {};
}

int32_t CBaseData::GetInt(std::wstring_view field, int32_t fallback) {
  const Value value = GetVariant(field);
  if (const std::wstring* text = std::get_if<std::wstring>(&value)) return LeadingInt32(*text);
  return Int32Or(value, fallback);
}

int64_t CBaseData::GetInt64(std::wstring_view field, int64_t fallback) {
  const Value value = GetVariant(field);
  if (const int64_t* number = std::get_if<int64_t>(&value)) return *number;
  if (const int32_t* number = std::get_if<int32_t>(&value)) return *number;
  if (const std::wstring* text = std::get_if<std::wstring>(&value)) return LeadingInt64(*text);
  return fallback;
}

std::wstring CBaseData::GetJsonString(std::wstring_view field, std::wstring_view member) {
  const Value value = GetVariant(field);
  const std::wstring* text = std::get_if<std::wstring>(&value);
  if (text == nullptr) return {};
  rapidjson::Document document;
  ParseJson(ToUtf8(*text), document);
  return StringMember(document, ToUtf8(member));
}

int32_t CBaseData::GetEnum(std::wstring_view name, int32_t fallback) {
  int32_t slot = NoInt;
  if (m_object != nullptr) m_object->GetEnum(name, slot);
  return slot == NoInt ? fallback : slot;
}

int32_t CBaseData::RefreshCount(int32_t code, std::atomic<int32_t>& cache) {
  const int32_t count = Int32Or(GetValue(code, kCount), -1);
  if (count < 0) return 0;
  cache = count;
  return count;
}

int32_t CBaseData::GetItemCount() {
  return RefreshCount(read_code::kItem, m_itemCount);
}
int32_t CBaseData::GetNodeCount() {
  return RefreshCount(read_code::kNode, m_nodeCount);
}

std::unique_ptr<CBaseData> CBaseData::OpenResult(const Value& handle, CBaseDataEventReceiver* receiver) {
  const int32_t* number = std::get_if<int32_t>(&handle);
  return number != nullptr ? OpenByHandle(m_world, *number, receiver) : nullptr;
}

std::unique_ptr<CBaseData> CBaseData::OpenItem(int32_t index, CBaseDataEventReceiver* receiver) {
  if (m_itemCount < 0) GetItemCount();
  if (m_itemCount <= index) GetItemCount();
  if (m_itemCount <= index) return nullptr;
  for (int i = 0; i < kItemTries; ++i) {
    if (auto item = OpenResult(GetValue(read_code::kItem, index), receiver)) return item;
    m_world.runtime.Sleep(kItemRetry);
  }
  return nullptr;
}

std::unique_ptr<CBaseData> CBaseData::OpenItemByName(std::wstring_view name,
                                                     CBaseDataEventReceiver* receiver) {
  return OpenResult(GetValue(read_code::kItemByName, name), receiver);
}

std::unique_ptr<CBaseData> CBaseData::OpenNode(int32_t index) {
  if (m_nodeCount < 0) GetNodeCount();
  if (m_nodeCount <= index) GetNodeCount();
  if (m_nodeCount <= index) return nullptr;
  return OpenResult(GetValue(read_code::kNode, index), nullptr);
}

std::unique_ptr<CBaseData> CBaseData::OpenNodeByName(std::wstring_view name,
                                                     CBaseDataEventReceiver* receiver) {
  return OpenResult(GetValue(read_code::kNodeByName, name), receiver);
}

int32_t CBaseData::BeginWrite() {
  if (m_object == nullptr) return -1;
  const int32_t token = m_object->BeginWrite();
  if (m_connection != nullptr) m_connection->SetWriter(token);
  return token;
}

void CBaseData::WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra) {
  if (m_object != nullptr) m_object->WriteValue(token, code, value, extra);
}

void CBaseData::EndWrite(int32_t token) {
  if (m_object != nullptr) m_object->EndWrite(token);
}

}  // namespace iorder

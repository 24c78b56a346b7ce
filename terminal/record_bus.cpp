#include "terminal/record_bus.h"

#include <algorithm>
#include <utility>

namespace iorder {
namespace {

constexpr const wchar_t* kStandingRecords[] = {
    L"PERMISSIONS.General", L"TRADE.EXTENDORDER.SETUP", L"STRATEGY.POSITION", L"TRADE.ORDERSET",
    L"Security.Info",       L"NordoSystemTime",         L"ACCOUNTS"};

/// Tokens lie far above the running numbers of updates, so that a writer's own updates can't be taken for
/// others'.
constexpr int32_t kFirstToken = 0x40000000;

/// Says that a record can be copied; what it says is the bus's own affair.
constexpr std::wstring_view kCopyText = L"FIELDS";

}  // namespace

CBusObject::CBusObject(CEmbeddedBus& bus, int32_t handle, std::wstring name, std::wstring top, bool hidden)
    : m_bus(bus), m_handle(handle), m_name(std::move(name)), m_top(std::move(top)), m_hidden(hidden) {}

void CBusObject::WriteValue(int32_t, int32_t code, const Value&, const Value& extra) {
  m_bus.Write(*this, code, extra);
}

CEmbeddedBus::CEmbeddedBus(IRuntime& runtime, bool needsSubscription, IBusObserver* observer)
    : m_needsSubscription(needsSubscription), m_observer(observer), m_section(runtime, "record bus") {
  CLockGuard guard(m_section);
  for (const wchar_t* const name : kStandingRecords) {
    MakeLocked(name);
  }
}

CEmbeddedBus::~CEmbeddedBus() = default;

bool CEmbeddedBus::IsSymbol(std::wstring_view name) {
  return name.starts_with(L"ND.");
}

bool CEmbeddedBus::NeedsSubscription(std::wstring_view name) const {
  return m_needsSubscription && (IsSymbol(name) || name.starts_with(L"OPT."));
}

// ---- Handles ----

std::shared_ptr<IBusObject> CEmbeddedBus::Resolve(int32_t handle) {
  CLockGuard guard(m_section);
  const size_t index = static_cast<size_t>(handle) - 1;
  return handle > 0 && index < m_objects.size() ? m_objects[index] : nullptr;
}

std::shared_ptr<IBusObject> CEmbeddedBus::CreateObject() {
  return std::make_shared<CBusObject>(*this, 0, std::wstring(), std::wstring(), false);
}

int32_t CEmbeddedBus::Open(const std::wstring& name) {
  CLockGuard guard(m_section);
  if (m_failOpen.contains(name)) {
    return 0;
  }
  const CBusObject* const object = IsSymbol(name) ? &MakeLocked(name) : FindLocked(name);
  return object != nullptr ? object->m_handle : 0;
}

CBusObject& CEmbeddedBus::MakeLocked(const std::wstring& name) {
  CBusObject* const object = FindLocked(name);
  if (object != nullptr) {
    return *object;
  }
  CBusObject& made = NewObject(name, name, NeedsSubscription(name) && !m_subscribed.contains(name));
  m_handles.emplace(name, made.m_handle);
  if (const auto watch = m_watches.find(name); watch != m_watches.end()) {
    made.m_watch = &watch->second;
  }
  return made;
}

CBusObject* CEmbeddedBus::FindLocked(const std::wstring& name) {
  const auto found = m_handles.find(name);
  return found != m_handles.end() ? &ObjectOf(found->second) : nullptr;
}

CBusObject& CEmbeddedBus::NewObject(const std::wstring& name, const std::wstring& top, bool hidden) {
  const int32_t handle = static_cast<int32_t>(m_objects.size()) + 1;
  m_objects.push_back(std::make_shared<CBusObject>(*this, handle, name, top, hidden));
  return *m_objects.back();
}

CBusObject& CEmbeddedBus::ObjectOf(int32_t handle) {
  return *m_objects[static_cast<size_t>(handle) - 1];
}

// ---- What the engine reads ----

Value CEmbeddedBus::Read(const CBusObject& object, int32_t code, int32_t argument) {
  CLockGuard guard(m_section);
  if (object.m_hidden) {
    return argument == -1 && (code == read_code::kItem || code == read_code::kNode) ? Value(0) : Value();
  }
  const CRecord& record = object.m_record;
  const bool isItem = code == read_code::kItem;
  switch (code) {
    case read_code::kNumber:
      return record.Number(argument);
    case read_code::kItem:
    case read_code::kNode: {
      const std::vector<CRecord::Child>& children = isItem ? record.Items() : record.Nodes();
      if (argument == -1) {
        return static_cast<int32_t>(children.size());
      }
      const bool isThere = argument >= 0 && static_cast<size_t>(argument) < children.size();
      return ChildHandle(object, children,
                         isThere ? std::optional(static_cast<size_t>(argument)) : std::nullopt, isItem);
    }
    case read_code::kNames: {
      if (argument == kCopySelector) {
        return std::wstring(kCopyText);
      }
      if (argument != kNodeNamesSelector) {
        return {};
      }
      std::wstring names;
      for (const CRecord::Child& node : record.Nodes()) {
        names += names.empty() ? L"BN" : L";BN";
        names += node.name;
      }
      return names;
    }
    default:
      return {};
  }
}

Value CEmbeddedBus::Read(const CBusObject& object, int32_t code, std::wstring_view argument) {
  CLockGuard guard(m_section);
  if (object.m_hidden) {
    const bool asksMcode = code == read_code::kField && argument == L"MCODE" && IsSymbol(object.m_name);
    return asksMcode ? Value(0) : Value();
  }
  const CRecord& record = object.m_record;
  switch (code) {
    case read_code::kField:
      return record.Field(argument);
    case read_code::kItem:
    case read_code::kItemByName:
      return ChildHandle(object, record.Items(), FindChild(record.Items(), argument), true);
    case read_code::kNodeByName:
      return ChildHandle(object, record.Nodes(), FindChild(record.Nodes(), argument), false);
    case read_code::kContent:
      return argument == kCopyText ? Value(PackFields(record)) : Value();
    default:
      return {};
  }
}

void CEmbeddedBus::ReadEnum(const CBusObject& object, std::wstring_view name, int32_t& slot) {
  CLockGuard guard(m_section);
  if (!object.m_hidden) {
    slot = Int32Or(object.m_record.Field(name), slot);
  }
}

Value CEmbeddedBus::ChildHandle(const CBusObject& object, const std::vector<CRecord::Child>& children,
                                std::optional<size_t> index, bool items) {
  if (!index) {
    return {};
  }
  if (items && TakeItemFault(object, children[*index], *index)) {
    return 0;  // announced, but it resolves to nothing
  }
  return children[*index].handle;
}

bool CEmbeddedBus::TakeItemFault(const CBusObject& object, const CRecord::Child& item, size_t index) {
  for (ItemFault& fault : m_itemFaults) {
    const bool inNode = object.m_name != object.m_top;
    const bool isHere =
        fault.record == object.m_top && fault.node == (inNode ? object.m_name : std::wstring());
    const bool isItem = fault.item == Value(static_cast<int32_t>(index)) || fault.item == Value(item.name);
    if (isHere && isItem && fault.times != 0) {
      fault.times -= fault.times > 0 ? 1 : 0;
      return true;
    }
  }
  return false;
}

// ---- What the engine writes: copies of records ----

int32_t CEmbeddedBus::BeginWrite() {
  CLockGuard guard(m_section);
  return kFirstToken + m_tokenCount++;
}

void CEmbeddedBus::Write(CBusObject& object, int32_t code, const Value& extra) {
  CLockGuard guard(m_section);
  if (code == write_code::kClear) {
    object.m_record.ClearFields();
  } else if (code == write_code::kContent && std::holds_alternative<std::wstring>(extra)) {
    UnpackFields(std::get<std::wstring>(extra), object.m_record);
  }
}

// ---- Events ----

int32_t CEmbeddedBus::Advise(CBusObject& object, std::shared_ptr<IBusEvents> sink) {
  CLockGuard guard(m_section);
  auto sinks = object.m_sinks ? std::make_shared<SinkList>(*object.m_sinks) : std::make_shared<SinkList>();
  sinks->emplace_back(++m_cookieCount, std::move(sink));
  object.m_sinks = std::move(sinks);
  return m_cookieCount;
}

void CEmbeddedBus::Unadvise(CBusObject& object, int32_t cookie) {
  std::shared_ptr<const SinkList> former;  // dropped outside the lock: it may be the last reference to a sink
  CLockGuard guard(m_section);
  if (object.m_sinks == nullptr) {
    return;
  }
  auto sinks = std::make_shared<SinkList>(*object.m_sinks);
  std::erase_if(*sinks, [cookie](const SinkList::value_type& sink) { return sink.first == cookie; });
  former = std::exchange(object.m_sinks, std::move(sinks));
}

void CEmbeddedBus::EndWrite(CBusObject& object, int32_t token) {
  Fire(object, {false, token, std::wstring()});
}

void CEmbeddedBus::Fire(const std::wstring& name, const Firing& firing) {
  Fire(Quote(name), firing);
}

void CEmbeddedBus::FireUnnamed(int32_t handle) {
  CBusObject* object = nullptr;
  {
    CLockGuard guard(m_section);
    object = &ObjectOf(handle);
  }
  Fire(*object, {});
}

void CEmbeddedBus::Fire(CBusObject& object, const Firing& firing) {
  std::shared_ptr<const SinkList> sinks;
  int32_t originator = 0;
  bool fires = false;
  {
    CLockGuard guard(m_section);
    sinks = BeginFire(object, firing, originator, fires);
  }
  if (fires) {
    CallSinks(object, sinks, originator, firing);
  }
}

std::shared_ptr<const CEmbeddedBus::SinkList> CEmbeddedBus::BeginFire(const CBusObject& object,
                                                                      const Firing& firing,
                                                                      int32_t& originator, bool& fires) {
  fires = !object.m_hidden;
  if (!fires) {
    return nullptr;
  }
  originator = firing.originator ? *firing.originator : ++m_eventCount;
  return object.m_sinks;
}

void CEmbeddedBus::CallSinks(const CBusObject& object, const std::shared_ptr<const SinkList>& sinks,
                             int32_t originator, const Firing& firing) {
  if (m_observer != nullptr) {
    m_observer->OnFire(object.m_top, originator, firing.payload, firing.replace);
  }
  if (sinks == nullptr) {
    return;
  }
  for (const auto& [cookie, sink] : *sinks) {
    if (firing.replace) {
      sink->OnReplace(originator);
    } else {
      sink->OnUpdate(originator, firing.payload);
    }
  }
}

// ---- Subscriptions ----

std::optional<uint64_t> CEmbeddedBus::Subscribe(const std::wstring& name) {
  CLockGuard guard(m_section);
  if (!NeedsSubscription(name) || m_subscribed.contains(name)) {
    return std::nullopt;
  }
  m_subscribed[name] = ++m_subscriptionCount;
  return m_subscriptionCount;
}

void CEmbeddedBus::Unsubscribe(const std::wstring& name) {
  CLockGuard guard(m_section);
  CBusObject* const object = FindLocked(name);
  if (m_subscribed.erase(name) > 0 && object != nullptr) {
    object->m_hidden = true;
  }
}

void CEmbeddedBus::Show(const std::wstring& name, uint64_t subscription) {
  CBusObject* object = nullptr;
  {
    CLockGuard guard(m_section);
    const auto subscribed = m_subscribed.find(name);
    object = IsSymbol(name) ? &MakeLocked(name) : FindLocked(name);
    if (subscribed == m_subscribed.end() || subscribed->second != subscription || object == nullptr) {
      return;
    }
    object->m_hidden = false;
  }
  Fire(*object, {});
}

}  // namespace iorder

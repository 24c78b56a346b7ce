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

bool IsSymbol(std::wstring_view name) {
  return name.starts_with(L"ND.");
}

/// The clock's time of day in the digits that a quote's time format asks for.
int64_t QuoteTime(const DateTime& utc, int32_t timeFormat) {
  const int64_t time = ToTime6(utc);
  if (timeFormat == 1) {
    return time * 1000 + utc.millisecond;
  }
  return timeFormat == 2 ? (time * 1000 + utc.millisecond) * 1000 : time;
}

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

// ---- What the day changes ----

void CEmbeddedBus::Watch(const std::wstring& name, std::function<void()> changed) {
  CLockGuard guard(m_section);
  const auto watch = m_watches.try_emplace(name, std::move(changed)).first;
  if (CBusObject* const object = FindLocked(name)) {
    object->m_watch = &watch->second;
  }
}

void CEmbeddedBus::TellWatch(const std::function<void()>* watch) {
  if (watch != nullptr) {
    (*watch)();
  }
}

void CEmbeddedBus::Apply(const RecordChange& change) {
  const std::function<void()>* watch = nullptr;
  {
    CLockGuard guard(m_section);
    CBusObject& object = MakeLocked(change.name);
    ApplyLocked(object, change);
    watch = object.m_watch;
  }
  TellWatch(watch);
}

void CEmbeddedBus::Change(CBusObject& record, const RecordChange& change, const Firing& firing) {
  const std::function<void()>* watch = nullptr;
  {
    CLockGuard guard(m_section);
    ApplyLocked(record, change);
    watch = record.m_watch;
  }
  TellWatch(watch);
  Fire(record, firing);
}

void CEmbeddedBus::ApplyLocked(CBusObject& object, const RecordChange& change) {
  if (change.clear) {
    ClearLocked(object);
  }
  CRecord& record = object.m_record;
  for (const FieldChange& field : change.fields) {
    if (field.value.kind == FieldValue::Kind::kRemove) {
      record.RemoveField(field.name);
    } else {
      record.SetField(field.name, ToValue(field.value));
    }
  }
  for (const NumberChange& number : change.numbers) {
    if (number.value.kind == FieldValue::Kind::kRemove) {
      record.RemoveNumber(number.id);
    } else {
      record.SetNumber(number.id, ToValue(number.value));
    }
  }
  ApplyChildren(object, change.items, false);
  ApplyChildren(object, change.nodes, true);
}

Value CEmbeddedBus::ValueOf(const FieldValue& value) {
  CLockGuard guard(m_section);
  return ToValue(value);
}

Value CEmbeddedBus::ToValue(const FieldValue& value) {
  if (value.kind != FieldValue::Kind::kHandle && value.kind != FieldValue::Kind::kHandle64) {
    return value.value;
  }
  const CBusObject* const record =
      IsSymbol(value.record) ? &MakeLocked(value.record) : FindLocked(value.record);
  const int32_t handle = record != nullptr ? record->m_handle : 0;
  return value.kind == FieldValue::Kind::kHandle ? Value(handle) : Value(int64_t{handle});
}

void CEmbeddedBus::ApplyChildren(CBusObject& object, const std::vector<RecordChange>& changes, bool nodes) {
  std::vector<CRecord::Child>& children = nodes ? object.m_record.Nodes() : object.m_record.Items();
  for (const RecordChange& change : changes) {
    const std::optional<size_t> index = change.name.empty() ? std::nullopt : FindChild(children, change.name);
    if (!change.remove) {
      ApplyLocked(index ? ObjectOf(children[*index].handle) : AddChild(object, change.name, nodes), change);
    } else if (index) {
      RemoveChild(object, *index, nodes);
    }
  }
}

CBusObject& CEmbeddedBus::AddChild(CBusObject& object, const std::wstring& name, bool node) {
  std::vector<CRecord::Child>& children = node ? object.m_record.Nodes() : object.m_record.Items();
  std::vector<CRecord::Child>& former = node ? object.m_formerNodes : object.m_formerItems;
  const std::optional<size_t> again = name.empty() ? std::nullopt : FindChild(former, name);
  if (again) {
    children.push_back(former[*again]);
    former.erase(former.begin() + static_cast<std::ptrdiff_t>(*again));
    return ObjectOf(children.back().handle);
  }
  CBusObject& child = NewObject(name, object.m_top, false);
  children.push_back({name, child.m_handle});
  return child;
}

void CEmbeddedBus::RemoveChild(CBusObject& object, size_t index, bool node) {
  std::vector<CRecord::Child>& children = node ? object.m_record.Nodes() : object.m_record.Items();
  std::vector<CRecord::Child>& former = node ? object.m_formerNodes : object.m_formerItems;
  ClearLocked(ObjectOf(children[index].handle));
  if (!children[index].name.empty()) {
    former.push_back(children[index]);
  }
  children.erase(children.begin() + static_cast<std::ptrdiff_t>(index));
}

void CEmbeddedBus::ClearLocked(CBusObject& object) {
  object.m_record.ClearFields();
  for (const bool node : {false, true}) {
    const std::vector<CRecord::Child>& children = node ? object.m_record.Nodes() : object.m_record.Items();
    while (!children.empty()) {
      RemoveChild(object, 0, node);
    }
  }
}

// ---- Quotes ----

CBusObject& CEmbeddedBus::Quote(const std::wstring& symbol) {
  CLockGuard guard(m_section);
  return MakeLocked(symbol);
}

void CEmbeddedBus::PlayQuote(CBusObject& quote, const QuoteUpdate& update, const RecordChange* more,
                             const DateTime& utc, const Firing& firing) {
  std::shared_ptr<const SinkList> sinks;
  const std::function<void()>* watch = nullptr;
  int32_t originator = 0;
  bool fires = false;
  {
    CLockGuard guard(m_section);
    ApplyQuoteLocked(quote, update, utc);
    if (more != nullptr) {
      ApplyLocked(quote, *more);
      watch = quote.m_watch;
    }
    sinks = BeginFire(quote, firing, originator, fires);
  }
  TellWatch(watch);
  if (fires) {
    CallSinks(quote, sinks, originator, firing);
  }
}

void CEmbeddedBus::ApplyQuoteLocked(CBusObject& quote, const QuoteUpdate& update, const DateTime& utc) {
  CRecord& record = quote.m_record;
  if (update.mcode || !record.HasMcode()) {
    record.SetField(L"MCODE", update.mcode.value_or(1));
  }
  if (update.timeFormat) {
    record.SetField(L"TradeTimeFormat", *update.timeFormat);
  }
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.remove) {
      record.RemoveNumber(number.id);
    } else {
      record.SetNumber(number.id, number.value);
    }
  }
  if (update.clock && !update.hasTime) {
    record.SetNumber(quote_field::kTime, QuoteTime(utc, record.TimeFormat()));
  }
  if (update.clock && !update.hasDate) {
    record.SetNumber(quote_field::kDate, ToDate8(utc));
  }
}

// ---- Orders, positions, accounts ----

void CEmbeddedBus::ApplyToNode(const std::wstring& name, int32_t index, const RecordChange& change) {
  CLockGuard guard(m_section);
  CBusObject& object = MakeLocked(name);
  while (object.m_record.Nodes().size() <= static_cast<size_t>(index)) {
    AddChild(object, std::wstring(), true);
  }
  ApplyLocked(ObjectOf(object.m_record.Nodes()[static_cast<size_t>(index)].handle), change);
}

void CEmbeddedBus::ReplaceItems(const std::wstring& name, const std::wstring& node,
                                const std::vector<RecordChange>& items) {
  CLockGuard guard(m_section);
  CBusObject& object = MakeLocked(name);
  const std::optional<size_t> index = FindChild(object.m_record.Nodes(), node);
  CBusObject& target =
      index ? ObjectOf(object.m_record.Nodes()[*index].handle) : AddChild(object, node, true);
  while (!target.m_record.Items().empty()) {
    RemoveChild(target, 0, false);
  }
  ApplyChildren(target, items, false);
}

void CEmbeddedBus::RemoveNode(const std::wstring& name, const std::wstring& node) {
  CLockGuard guard(m_section);
  CBusObject& object = MakeLocked(name);
  if (const std::optional<size_t> index = FindChild(object.m_record.Nodes(), node)) {
    RemoveChild(object, *index, true);
  }
}

int32_t CEmbeddedBus::ApplyUnnamed(int32_t handle, const RecordChange& change) {
  CLockGuard guard(m_section);
  CBusObject& object = handle != 0 ? ObjectOf(handle) : NewObject(change.name, change.name, false);
  ApplyLocked(object, change);
  return object.m_handle;
}

bool CEmbeddedBus::HasData(const std::wstring& name) {
  CLockGuard guard(m_section);
  const CBusObject* const object = FindLocked(name);
  return object != nullptr && (!object->m_record.Fields().empty() || !object->m_record.Numbers().empty());
}

std::map<std::wstring, Value, std::less<>> CEmbeddedBus::Fields(const std::wstring& name) {
  CLockGuard guard(m_section);
  const CBusObject* const object = FindLocked(name);
  return object != nullptr ? object->m_record.Fields() : std::map<std::wstring, Value, std::less<>>();
}

bool CEmbeddedBus::ItemHas(const std::wstring& name, const std::wstring& node, const std::wstring& item,
                           std::wstring_view field, int32_t value) {
  CLockGuard guard(m_section);
  CBusObject* const top = FindLocked(name);
  const std::optional<size_t> nodeIndex =
      top != nullptr ? FindChild(top->m_record.Nodes(), node) : std::nullopt;
  if (!nodeIndex) {
    return false;
  }
  const CRecord& record = ObjectOf(top->m_record.Nodes()[*nodeIndex].handle).m_record;
  const std::optional<size_t> itemIndex = FindChild(record.Items(), item);
  return itemIndex && ObjectOf(record.Items()[*itemIndex].handle).m_record.Field(field) == Value(value);
}

Value CEmbeddedBus::ItemField(const std::wstring& name, const std::wstring& item, std::wstring_view field) {
  CLockGuard guard(m_section);
  CBusObject* const top = FindLocked(name);
  const std::optional<size_t> index = top != nullptr ? FindChild(top->m_record.Items(), item) : std::nullopt;
  return index ? ObjectOf(top->m_record.Items()[*index].handle).m_record.Field(field) : Value();
}

// ---- Faults ----

void CEmbeddedBus::FailOpen(const std::wstring& name, bool fail) {
  CLockGuard guard(m_section);
  if (fail) {
    m_failOpen.insert(name);
  } else {
    m_failOpen.erase(name);
  }
}

void CEmbeddedBus::FailItem(const std::wstring& name, const std::wstring& node, const Value& item,
                            std::optional<int32_t> times) {
  ClearItemFault(name, node, item);
  CLockGuard guard(m_section);
  m_itemFaults.push_back({name, node, item, times.value_or(-1)});
}

void CEmbeddedBus::ClearItemFault(const std::wstring& name, const std::wstring& node, const Value& item) {
  CLockGuard guard(m_section);
  std::erase_if(m_itemFaults, [&](const ItemFault& fault) {
    return fault.record == name && fault.node == node && fault.item == item;
  });
}

}  // namespace iorder

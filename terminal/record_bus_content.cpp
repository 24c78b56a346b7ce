#include <algorithm>
#include <utility>

#include "terminal/record_bus.h"

namespace iorder {
namespace {

/// The clock's time of day in the digits that a quote's time format asks for.
int64_t QuoteTime(const DateTime& utc, int32_t timeFormat) {
  const int64_t time = ToTime6(utc);
  if (timeFormat == 1) {
    return time * 1000 + utc.millisecond;
  }
  return timeFormat == 2 ? (time * 1000 + utc.millisecond) * 1000 : time;
}

}  // namespace

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

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/critical_section.h"
#include "platform/record_bus.h"
#include "terminal/quote_update.h"
#include "terminal/record.h"
#include "terminal/record_change.h"

namespace iorder {

class CBusObject;

/// What the bus tells of every event that it fires.
class IBusObserver {
 public:
  virtual ~IBusObserver() = default;
  /// Before the sinks are called, on the thread that fires, under no lock.
  virtual void OnFire(const std::wstring& record, int32_t originator, const std::wstring& payload,
                      bool replace) = 0;
};

/// The record bus of the embedded terminal, in memory.
///
/// Records keep their handle for the whole day, whatever changes in them. The standing records are always
/// there, the record of a symbol (its name begins with "ND.") comes when it is asked for, any other when the
/// day makes it.
///
/// All operations may come from any thread. One lock guards all content; sinks are called under no lock, on
/// the thread that fires.
class CEmbeddedBus : public IRecordBus {
 public:
  /// With `needsSubscription` the records of symbols and option figures show nothing until Subscribe and
  /// Show. The observer (or none) outlives the bus.
  CEmbeddedBus(IRuntime& runtime, bool needsSubscription, IBusObserver* observer = nullptr);
  ~CEmbeddedBus() override;

  std::shared_ptr<IBusObject> Resolve(int32_t handle) override;
  std::shared_ptr<IBusObject> CreateObject() override;

  /// The host's answer to the engine's wish to open a record: its handle, or 0.
  int32_t Open(const std::wstring& name);

  /// Notes that the engine wants the record. A number if its data are now to be shown, none if there is
  /// nothing to show.
  std::optional<uint64_t> Subscribe(const std::wstring& name);
  void Unsubscribe(const std::wstring& name);
  /// Shows the data that Subscribe gave `subscription` for and fires one update, unless the engine has
  /// unsubscribed since.
  void Show(const std::wstring& name, uint64_t subscription);

  /// From now on `changed` is called behind each change of the record's fields, whether they show or not and
  /// before the change is fired, on the thread that changes it and under no lock. Only the first watch of a
  /// record counts.
  void Watch(const std::wstring& name, std::function<void()> changed);

  /// Makes the record if need be and changes it. Fires nothing.
  void Apply(const RecordChange& change);
  /// Changes a record that is at hand, whatever name the change has, and fires.
  void Change(CBusObject& record, const RecordChange& change, const Firing& firing);
  /// The value by now: the handle of a record, if that is asked for.
  Value ValueOf(const FieldValue& value);

  /// Fires the event of a record. Without an originator it gets the running number of the bus's events,
  /// from 1. A record that shows nothing fires nothing.
  void Fire(const std::wstring& name, const Firing& firing);
  void FireUnnamed(int32_t handle);

  /// A record for the quote path: found once, then used without any look-up. It lives as long as the bus.
  CBusObject& Quote(const std::wstring& symbol);
  /// Changes the quote and fires its update. `more` (or none) holds what has no place in `update`; `utc` is
  /// the clock, for a quote that doesn't name time or date (QuoteUpdate::NeedsClock).
  void PlayQuote(CBusObject& quote, const QuoteUpdate& update, const RecordChange* more, const DateTime& utc,
                 const Firing& firing);

  /// Changes the node of that index, with empty ones before it if need be.
  void ApplyToNode(const std::wstring& name, int32_t index, const RecordChange& change);
  /// Replaces the items of the named node, which is made if need be.
  void ReplaceItems(const std::wstring& name, const std::wstring& node,
                    const std::vector<RecordChange>& items);
  void RemoveNode(const std::wstring& name, const std::wstring& node);
  /// Makes a record that no name opens, or changes it; a handle of 0 makes one. Its handle. The name of
  /// `change` shows in traces alone.
  int32_t ApplyUnnamed(int32_t handle, const RecordChange& change);

  /// Whether the record holds any data, shown or not.
  bool HasData(const std::wstring& name);
  /// The fields of the record, shown or not; none if it isn't there.
  std::map<std::wstring, Value, std::less<>> Fields(const std::wstring& name);
  /// Whether the item of that name in the node of that name has the 32-bit value in its field.
  bool ItemHas(const std::wstring& name, const std::wstring& node, const std::wstring& item,
               std::wstring_view field, int32_t value);

  /// A text field of the item of that name, as it is: without the faults that the engine sees.
  Value ItemField(const std::wstring& name, const std::wstring& item, std::wstring_view field);

  /// Faults: the record doesn't open, or an item (by index or name) doesn't resolve, for ever or for so many
  /// tries.
  void FailOpen(const std::wstring& name, bool fail);
  void FailItem(const std::wstring& name, const std::wstring& node, const Value& item,
                std::optional<int32_t> times);
  void ClearItemFault(const std::wstring& name, const std::wstring& node, const Value& item);

 private:
  friend class CBusObject;
  using SinkList = std::vector<std::pair<int32_t, std::shared_ptr<IBusEvents>>>;

  struct ItemFault {
    std::wstring record;
    std::wstring node;
    Value item;
    int32_t times;  ///< -1: for ever
  };

  Value Read(const CBusObject& object, int32_t code, int32_t argument);
  Value Read(const CBusObject& object, int32_t code, std::wstring_view argument);
  void ReadEnum(const CBusObject& object, std::wstring_view name, int32_t& slot);
  int32_t BeginWrite();
  void Write(CBusObject& object, int32_t code, const Value& extra);
  int32_t Advise(CBusObject& object, std::shared_ptr<IBusEvents> sink);
  void Unadvise(CBusObject& object, int32_t cookie);
  void EndWrite(CBusObject& object, int32_t token);
  void Fire(CBusObject& object, const Firing& firing);
  void ApplyQuoteLocked(CBusObject& quote, const QuoteUpdate& update, const DateTime& utc)
      IORDER_REQUIRES(m_section);
  /// The sinks to call, or none if nothing is to be fired; draws the running number if need be.
  std::shared_ptr<const SinkList> BeginFire(const CBusObject& object, const Firing& firing,
                                            int32_t& originator, bool& fires) IORDER_REQUIRES(m_section);
  void CallSinks(const CBusObject& object, const std::shared_ptr<const SinkList>& sinks, int32_t originator,
                 const Firing& firing);

  static void TellWatch(const std::function<void()>* watch);
  CBusObject& MakeLocked(const std::wstring& name) IORDER_REQUIRES(m_section);
  CBusObject* FindLocked(const std::wstring& name) IORDER_REQUIRES(m_section);
  CBusObject& NewObject(const std::wstring& name, const std::wstring& top, bool hidden)
      IORDER_REQUIRES(m_section);
  CBusObject& ObjectOf(int32_t handle) IORDER_REQUIRES(m_section);
  void ApplyLocked(CBusObject& object, const RecordChange& change) IORDER_REQUIRES(m_section);
  void ApplyChildren(CBusObject& object, const std::vector<RecordChange>& changes, bool nodes)
      IORDER_REQUIRES(m_section);
  CBusObject& AddChild(CBusObject& object, const std::wstring& name, bool node) IORDER_REQUIRES(m_section);
  void RemoveChild(CBusObject& object, size_t index, bool node) IORDER_REQUIRES(m_section);
  void ClearLocked(CBusObject& object) IORDER_REQUIRES(m_section);
  Value ToValue(const FieldValue& value) IORDER_REQUIRES(m_section);
  bool TakeItemFault(const CBusObject& object, const CRecord::Child& item, size_t index)
      IORDER_REQUIRES(m_section);
  Value ChildHandle(const CBusObject& object, const std::vector<CRecord::Child>& children,
                    std::optional<size_t> index, bool items) IORDER_REQUIRES(m_section);
  static bool IsSymbol(std::wstring_view name);
  bool NeedsSubscription(std::wstring_view name) const;

  const bool m_needsSubscription;
  IBusObserver* const m_observer;
  CCriticalSection m_section;
  /// The object of handle n stands at n - 1. It only grows.
  std::deque<std::shared_ptr<CBusObject>> m_objects IORDER_GUARDED_BY(m_section);
  /// Of the records that a name opens; never walked.
  std::unordered_map<std::wstring, int32_t> m_handles IORDER_GUARDED_BY(m_section);
  std::map<std::wstring, uint64_t> m_subscribed IORDER_GUARDED_BY(m_section);
  uint64_t m_subscriptionCount IORDER_GUARDED_BY(m_section) = 0;
  /// They stay where they are.
  std::map<std::wstring, std::function<void()>> m_watches IORDER_GUARDED_BY(m_section);
  std::set<std::wstring> m_failOpen IORDER_GUARDED_BY(m_section);
  std::vector<ItemFault> m_itemFaults IORDER_GUARDED_BY(m_section);
  int32_t m_cookieCount IORDER_GUARDED_BY(m_section) = 0;
  int32_t m_tokenCount IORDER_GUARDED_BY(m_section) = 0;
  int32_t m_eventCount IORDER_GUARDED_BY(m_section) = 0;
};

/// One record of the bus. Its content belongs to the bus's lock.
class CBusObject : public IBusObject {
 public:
  CBusObject(CEmbeddedBus& bus, int32_t handle, std::wstring name, std::wstring top, bool hidden);

  Value GetValue(int32_t code, int32_t argument) override { return m_bus.Read(*this, code, argument); }
  Value GetValue(int32_t code, std::wstring_view argument) override {
    return m_bus.Read(*this, code, argument);
  }
  void GetEnum(std::wstring_view name, int32_t& slot) override { m_bus.ReadEnum(*this, name, slot); }
  int32_t BeginWrite() override { return m_bus.BeginWrite(); }
  void WriteValue(int32_t token, int32_t code, const Value& value, const Value& extra) override;
  void EndWrite(int32_t token) override { m_bus.EndWrite(*this, token); }
  int32_t Advise(std::shared_ptr<IBusEvents> sink) override { return m_bus.Advise(*this, std::move(sink)); }
  void Unadvise(int32_t cookie) override { m_bus.Unadvise(*this, cookie); }

 private:
  friend class CEmbeddedBus;

  CEmbeddedBus& m_bus;
  const int32_t m_handle;     ///< 0 outside the bus's records
  const std::wstring m_name;  ///< of the record, item or node; may be empty
  const std::wstring m_top;   ///< the record that it lies in, itself if it is one
  CRecord m_record;
  std::vector<CRecord::Child> m_formerItems;  ///< taken out, with their handles should they come again
  std::vector<CRecord::Child> m_formerNodes;
  bool m_hidden;
  const std::function<void()>* m_watch = nullptr;  ///< to be called when the fields have changed, or none
  /// Replaced as a whole when it changes, so that firing takes no copy.
  std::shared_ptr<const CEmbeddedBus::SinkList> m_sinks;
};

}  // namespace iorder

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

namespace iorder {

/// The content of one record: named fields, numeric fields, and the handles of its items and nodes in their
/// order. It has no lock of its own.
class CRecord {
 public:
  /// An item or a node. Several may be without a name.
  struct Child {
    std::wstring name;
    int32_t handle = 0;
  };

  /// Empty if there is no such field.
  Value Field(std::wstring_view name) const;
  void SetField(std::wstring_view name, Value value);
  void RemoveField(std::wstring_view name);
  const std::map<std::wstring, Value, std::less<>>& Fields() const { return m_fields; }

  /// The two fields that every quote needs are kept at hand: no look-up by text.
  bool HasMcode() const { return m_hasMcode; }
  int32_t TimeFormat() const { return m_timeFormat; }

  Value Number(int32_t id) const;
  /// The quote path: a 64-bit number, without any memory once the id has been seen.
  void SetNumber(int32_t id, int64_t value);
  void SetNumber(int32_t id, Value value);
  void RemoveNumber(int32_t id);
  /// Ids and values, in ascending order of the ids.
  std::vector<std::pair<int32_t, Value>> Numbers() const;

  std::vector<Child>& Items() { return m_items; }
  std::vector<Child>& Nodes() { return m_nodes; }
  const std::vector<Child>& Items() const { return m_items; }
  const std::vector<Child>& Nodes() const { return m_nodes; }

  /// Empties fields and numeric fields; items and nodes stay.
  void ClearFields();

 private:
  struct NumericField {
    int32_t id;
    int64_t value;
  };

  void NoteField(std::wstring_view name);

  std::map<std::wstring, Value, std::less<>> m_fields;
  /// A quote has about ten of them: a walk over a flat list is the quickest search.
  std::vector<NumericField> m_numbers;
  /// Numeric fields of other kinds than 64-bit: rare, so they live apart.
  std::map<int32_t, Value> m_otherNumbers;
  std::vector<Child> m_items;
  std::vector<Child> m_nodes;
  bool m_hasMcode = false;
  int32_t m_timeFormat = 0;
};

/// The first child of that name, or none.
std::optional<size_t> FindChild(const std::vector<CRecord::Child>& children, std::wstring_view name);

/// The content of a record's fields as one text, and back: how a copy of a record travels over the bus. Items
/// and nodes aren't part of it.
std::wstring PackFields(const CRecord& record);
/// Adds the fields of `packed` to `record`. A text that PackFields didn't make adds what can be read of it.
void UnpackFields(std::wstring_view packed, CRecord& record);

}  // namespace iorder

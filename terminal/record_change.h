#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace iorder {

/// What a field is to become: a value, nothing (it goes), or the handle that a named record has by then.
struct FieldValue {
  enum class Kind { kValue, kRemove, kHandle, kHandle64 };

  Kind kind = Kind::kValue;
  Value value;
  std::wstring record;  ///< whose handle it is

  friend bool operator==(const FieldValue&, const FieldValue&) = default;
};

struct FieldChange {
  std::wstring name;
  FieldValue value;
};

struct NumberChange {
  int32_t id = 0;
  FieldValue value;
};

/// The event that a change of a record fires.
struct Firing {
  bool replace = false;
  std::optional<int32_t> originator;  ///< none: the running number
  std::wstring payload;
};

/// Changes to one record and to its sub-records, in the order in which they take effect.
struct RecordChange {
  std::wstring name;    ///< empty for a sub-record without a name
  bool clear = false;   ///< the record is emptied first
  bool remove = false;  ///< of a sub-record: it goes
  std::vector<FieldChange> fields;
  std::vector<NumberChange> numbers;
  std::vector<RecordChange> items;
  std::vector<RecordChange> nodes;
};

}  // namespace iorder

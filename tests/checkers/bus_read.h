#pragma once

#include <cstdint>
#include <string>

#include "platform/value.h"
#include "terminal/local_time.h"

namespace iorder::testing {

/// What the engine got as it read a record, or that it began or ended to follow one. This is what the outside
/// showed it at that very moment, whatever it makes of it.
struct BusRead {
  enum class Kind { kField, kItemCount, kItem, kItemByName, kNodeByName, kFollow, kLeave };

  Kind kind = Kind::kField;
  LocalTime at;
  std::string thread;
  std::string record;  ///< "STRATEGY.POSITION", and what lies below it: "STRATEGY.POSITION/S1#0"
  std::string name;    ///< of the field, item or node
  Value value;
};

/// The prefix of the name by which the record of a child order is told, before its handle.
inline constexpr std::string_view kChildRecord = "child ";

/// A 64-bit or 32-bit integer, or the number that a text begins with.
int64_t Int64Of(const Value& value, int64_t missing);
/// A 32-bit integer, or the number that a text begins with.
int32_t Int32Of(const Value& value, int32_t missing);
/// A text, or a number's digits; empty for nothing.
std::string TextOf(const Value& value);

/// The whole number that a text begins with, behind white space and a sign; 0 if there is none.
int64_t LeadingWhole(std::string_view text);
double LeadingDecimal(std::string_view text);

}  // namespace iorder::testing

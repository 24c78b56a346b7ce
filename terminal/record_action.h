#pragma once

#include <string_view>
#include <vector>

#include "terminal/day.h"
#include "terminal/object_reader.h"

/// Reads records and their values from the lines of a day. Every mistake is an InputError.
namespace iorder {

/// What a bare number stands for, which depends on where it stands.
enum class BareNumber { kInt32, kInt64, kScaled };

/// A text, a number, null (the value goes), or an object that names the kind of the number.
FieldValue ReadValue(const CObjectReader& reader, std::string_view key, const JsonNode& node,
                     BareNumber number);
Value Int32Value(const CObjectReader& reader, std::string_view key, const JsonNode& node);
/// A text that must be there.
std::wstring NeedWide(CObjectReader& reader, std::string_view key);

/// The members "fields" and "numbers".
std::vector<FieldChange> ReadFields(CObjectReader& reader);
std::vector<NumberChange> ReadNumbers(CObjectReader& reader);
/// The members that nobody asked for are the fields; "Price" and "AvgPrice" may be decimals.
std::vector<FieldChange> ReadRestAsFields(const CObjectReader& reader, bool pricesAreDecimals);

/// A whole record, with its items and nodes and how it fires.
RecordAction ReadRecord(CObjectReader& reader);

}  // namespace iorder

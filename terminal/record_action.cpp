#include "terminal/record_action.h"

#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include "platform/text.h"

namespace iorder {
namespace {

Value Int64Value(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<int64_t> value = IntegerOf(node);
  if (!value) {
    reader.FailKind(key, node, "a 64-bit integer");
  }
  return *value;
}

Value ScaledOf(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<ScaledValue> value = DecimalOf(node);
  if (!value) {
    reader.FailKind(key, node, "a decimal with at most ten places");
  }
  return *value;
}

FieldValue ReadNamedKind(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  CObjectReader kind(node, "the value of '" + std::string(key) + "' in " + reader.What(), reader.Place());
  FieldValue result;
  if (const JsonNode* const int32 = kind.Find("int32")) {
    result.value = Int32Value(kind, "int32", *int32);
  } else if (const JsonNode* const int64 = kind.Find("int64")) {
    result.value = Int64Value(kind, "int64", *int64);
  } else if (const JsonNode* const scaled = kind.Find("scaled")) {
    result.value = ScaledOf(kind, "scaled", *scaled);
  } else if (kind.Find("handle") != nullptr) {
    result.kind = FieldValue::Kind::kHandle;
    result.record = NeedWide(kind, "handle");
  } else if (kind.Find("handle64") != nullptr) {
    result.kind = FieldValue::Kind::kHandle64;
    result.record = NeedWide(kind, "handle64");
  } else {
    kind.Finish();
    reader.FailKind(key, node, "int32, int64, scaled, handle or handle64");
  }
  kind.Finish();
  return result;
}

}  // namespace

// ---- Values ----

std::wstring NeedWide(CObjectReader& reader, std::string_view key) {
  return ToWide(reader.NeedText(key));
}

Value Int32Value(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<int64_t> value = IntegerOf(node);
  if (!value || *value < std::numeric_limits<int32_t>::min() ||
      *value > std::numeric_limits<int32_t>::max()) {
    reader.FailKind(key, node, "a 32-bit integer");
  }
  return static_cast<int32_t>(*value);
}

FieldValue ReadValue(const CObjectReader& reader, std::string_view key, const JsonNode& node,
                     BareNumber number) {
  FieldValue result;
  switch (node.kind) {
    case JsonNode::Kind::kNull:
      result.kind = FieldValue::Kind::kRemove;
      return result;
    case JsonNode::Kind::kText:
      result.value = number == BareNumber::kScaled ? ScaledOf(reader, key, node) : Value(ToWide(node.text));
      return result;
    case JsonNode::Kind::kNumber:
      result.value = number == BareNumber::kInt32   ? Int32Value(reader, key, node)
                     : number == BareNumber::kInt64 ? Int64Value(reader, key, node)
                                                    : ScaledOf(reader, key, node);
      return result;
    case JsonNode::Kind::kObject:
      return ReadNamedKind(reader, key, node);
    default:
      reader.FailKind(key, node, "a text, an integer, null or an object that names the kind");
  }
}

// ---- Fields ----

std::vector<FieldChange> ReadFields(CObjectReader& reader) {
  std::vector<FieldChange> changes;
  if (const JsonNode* const fields = reader.Object("fields")) {
    CObjectReader names(*fields, "the fields of " + reader.What(), reader.Place());
    for (const JsonNode* const field : names.Rest()) {
      changes.push_back({ToWide(field->name), ReadValue(names, field->name, *field, BareNumber::kInt32)});
    }
  }
  return changes;
}

std::vector<NumberChange> ReadNumbers(CObjectReader& reader) {
  std::vector<NumberChange> changes;
  if (const JsonNode* const numbers = reader.Object("numbers")) {
    CObjectReader ids(*numbers, "the numbers of " + reader.What(), reader.Place());
    for (const JsonNode* const number : ids.Rest()) {
      int32_t id = 0;
      const char* const end = number->name.data() + number->name.size();
      const auto [stop, error] = std::from_chars(number->name.data(), end, id);
      if (error != std::errc() || stop != end) {
        ids.Fail(number->name, "isn't the number of a field");
      }
      changes.push_back({id, ReadValue(ids, number->name, *number, BareNumber::kInt64)});
    }
  }
  return changes;
}

std::vector<FieldChange> ReadRestAsFields(const CObjectReader& reader, bool pricesAreDecimals) {
  std::vector<FieldChange> changes;
  for (const JsonNode* const field : reader.Rest()) {
    const bool isPrice = pricesAreDecimals && (field->name == "Price" || field->name == "AvgPrice");
    changes.push_back({ToWide(field->name), ReadValue(reader, field->name, *field,
                                                      isPrice ? BareNumber::kScaled : BareNumber::kInt32)});
  }
  return changes;
}

// ---- Records ----

namespace {

RecordChange ReadSubRecord(const JsonNode& node, const std::string& what, const FilePlace& place);

std::vector<RecordChange> ReadSubRecords(CObjectReader& reader, std::string_view key,
                                         const std::string& what) {
  std::vector<RecordChange> records;
  if (const JsonNode* const list = reader.List(key)) {
    for (const JsonNode& node : list->children) {
      records.push_back(ReadSubRecord(node, what, reader.Place()));
    }
  }
  return records;
}

void ReadContent(CObjectReader& reader, RecordChange& change) {
  change.fields = ReadFields(reader);
  change.numbers = ReadNumbers(reader);
  change.items = ReadSubRecords(reader, "items", "item");
  change.nodes = ReadSubRecords(reader, "nodes", "node");
}

RecordChange ReadSubRecord(const JsonNode& node, const std::string& what, const FilePlace& place) {
  CObjectReader reader(node, what, place);
  RecordChange change;
  change.name = ToWide(reader.Text("name").value_or(""));
  change.remove = reader.Flag("remove").value_or(false);
  change.clear = reader.Flag("clear").value_or(false);
  ReadContent(reader, change);
  reader.Finish();
  if (change.remove && change.name.empty()) {
    reader.Fail("remove", "needs the name of the one to take out");
  }
  return change;
}

std::optional<Firing> ReadFire(CObjectReader& reader) {
  const JsonNode* const node = reader.Find("fire");
  if (node == nullptr || node->kind == JsonNode::Kind::kFalse) {
    return std::nullopt;
  }
  Firing firing;
  if (node->kind == JsonNode::Kind::kTrue) {
    return firing;
  }
  if (!node->IsObject()) {
    reader.FailKind("fire", *node, "true, false or an object");
  }
  CObjectReader event(*node, "fire", reader.Place());
  firing.originator = event.Int32("originator");
  firing.payload = ToWide(event.Text("payload").value_or(""));
  event.Finish();
  return firing;
}

}  // namespace

RecordAction ReadRecord(CObjectReader& reader) {
  RecordAction action;
  action.change.name = NeedWide(reader, "record");
  if (action.change.name.empty()) {
    reader.Fail("record", "a record needs a name");
  }
  action.change.clear = reader.Flag("clear").value_or(false);
  ReadContent(reader, action.change);
  action.firing = ReadFire(reader);
  if (reader.Flag("replace").value_or(false)) {
    action.firing = action.firing.value_or(Firing());
    action.firing->replace = true;
  }
  return action;
}

}  // namespace iorder

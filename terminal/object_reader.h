#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/scaled_value.h"
#include "terminal/json_line.h"

namespace iorder {

/// The one of `words` that `wrong` was probably meant to be, or "" if none is near.
std::string NearestWord(std::string_view wrong, const std::vector<std::string_view>& words);

/// Reads the members of one object of a user's file. A member that was asked for is a known key; Finish
/// reports the others. Every mistake is an InputError with place and key. The object must outlive the reader.
class CObjectReader {
 public:
  /// `what` names the object in messages ("quote"). A node that is no object, or that has a key twice, is a
  /// mistake.
  CObjectReader(const JsonNode& object, std::string what, FilePlace place);

  /// The member, or none.
  const JsonNode* Find(std::string_view key);
  const JsonNode& Need(std::string_view key);

  std::optional<std::string> Text(std::string_view key);
  std::string NeedText(std::string_view key);
  std::optional<int64_t> Integer(std::string_view key, int64_t least = std::numeric_limits<int64_t>::min(),
                                 int64_t most = std::numeric_limits<int64_t>::max());
  int64_t NeedInteger(std::string_view key, int64_t least, int64_t most);
  std::optional<int32_t> Int32(std::string_view key);
  std::optional<bool> Flag(std::string_view key);
  /// A number or a text that spells a decimal, exactly.
  std::optional<ScaledValue> Decimal(std::string_view key);
  /// An object or list member.
  const JsonNode* Object(std::string_view key);
  const JsonNode* List(std::string_view key);

  /// Reports the first member that nobody asked for.
  void Finish();

  /// For members whose names are the user's own: those that nobody asked for, in their order.
  std::vector<const JsonNode*> Rest() const;

  /// Makes a key known without reading it.
  void Allow(std::string_view key) { m_known.push_back(key); }
  const JsonNode& Node() const { return m_object; }
  const FilePlace& Place() const { return m_place; }
  const std::string& What() const { return m_what; }
  /// "FILE:LINE: 'key' in WHAT: what".
  [[noreturn]] void Fail(std::string_view key, const std::string& what) const;
  [[noreturn]] void FailKind(std::string_view key, const JsonNode& node, const std::string& expected) const;

 private:
  [[noreturn]] void FailUnknown(const std::string& wrong, const std::vector<std::string_view>& known) const;

  const JsonNode& m_object;
  std::string m_what;
  FilePlace m_place;
  std::vector<std::string_view> m_known;
};

/// The values that a node spells; none if it is of another kind or out of range.
std::optional<int64_t> IntegerOf(const JsonNode& node);
std::optional<ScaledValue> DecimalOf(const JsonNode& node);

}  // namespace iorder

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "terminal/input_error.h"

namespace iorder {

/// A JSON value as it is written: members in their order, numbers as they are spelled.
struct JsonNode {
  enum class Kind { kNull, kFalse, kTrue, kNumber, kText, kArray, kObject };

  Kind kind = Kind::kNull;
  std::string name;                ///< of a member of an object
  std::string text;                ///< a text, or the digits of a number
  std::vector<JsonNode> children;  ///< of an array or object

  /// The first member of that name, or none.
  const JsonNode* Find(std::string_view member) const;
  bool IsObject() const { return kind == Kind::kObject; }
};

/// Deeper values are refused, so that nothing that walks them runs out of stack.
inline constexpr size_t kMaxLineDepth = 256;

/// Reads one JSON value that fills `text`. A mistake is an InputError at `place`.
JsonNode ParseJson(std::string_view text, const FilePlace& place);

/// "object", "number" and so on.
const char* KindName(JsonNode::Kind kind);

/// Appends the value without blanks: members in their order, numbers as they were spelled.
void AppendCompactJson(const JsonNode& node, std::string& output);

/// Appends `text` as a JSON text with its quotes.
void AppendJsonText(std::string_view text, std::string& output);

}  // namespace iorder

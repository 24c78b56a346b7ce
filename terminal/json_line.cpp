#include "terminal/json_line.h"

#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

namespace iorder {
namespace {

/// Builds the node tree from the reader's events.
class CNodeBuilder {
 public:
  explicit CNodeBuilder(JsonNode& root) : m_root(root) {}

  bool Null() { return Add(JsonNode::Kind::kNull); }
  bool Bool(bool value) { return Add(value ? JsonNode::Kind::kTrue : JsonNode::Kind::kFalse); }
  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    return Add(JsonNode::Kind::kNumber, {text, length});
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return Add(JsonNode::Kind::kText, {text, length});
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    m_key.assign(text, length);
    return true;
  }
  bool StartObject() { return Open(JsonNode::Kind::kObject); }
  bool StartArray() { return Open(JsonNode::Kind::kArray); }
  bool EndObject(rapidjson::SizeType) { return Close(); }
  bool EndArray(rapidjson::SizeType) { return Close(); }

  // The reader hands over every number as its text.
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(int64_t) { return false; }
  bool Uint64(uint64_t) { return false; }
  bool Double(double) { return false; }

 private:
  bool Add(JsonNode::Kind kind, std::string_view text = {}) {
    Append(kind).text.assign(text);
    return true;
  }

  bool Open(JsonNode::Kind kind) {
    if (m_open.size() == kMaxLineDepth) {
      return false;
    }
    m_open.push_back(&Append(kind));
    return true;
  }

  bool Close() {
    m_open.pop_back();
    return true;
  }

  JsonNode& Append(JsonNode::Kind kind) {
    // A list grows only while none of its elements is open, so the pointers to the open ones stay good.
    JsonNode& node = m_open.empty() ? m_root : m_open.back()->children.emplace_back();
    node.kind = kind;
    node.name.swap(m_key);
    m_key.clear();
    return node;
  }

  JsonNode& m_root;
  std::string m_key;
  std::vector<JsonNode*> m_open;
};

}  // namespace

const JsonNode* JsonNode::Find(std::string_view member) const {
  for (const JsonNode& child : children) {
    if (child.name == member) {
      return &child;
    }
  }
  return nullptr;
}

JsonNode ParseJson(std::string_view text, const FilePlace& place) {
  constexpr unsigned kFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag |
                              rapidjson::kParseValidateEncodingFlag;
  JsonNode root;
  CNodeBuilder builder(root);
  rapidjson::MemoryStream bytes(text.data(), text.size());
  rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, builder);
  if (result.IsError()) {
    const std::string why = result.Code() == rapidjson::kParseErrorTermination
                                ? "nested deeper than " + std::to_string(kMaxLineDepth) + " levels"
                                : rapidjson::GetParseError_En(result.Code());
    FailAt(place, "not a JSON value: " + why + " (at character " + std::to_string(result.Offset() + 1) + ")");
  }
  return root;
}

const char* KindName(JsonNode::Kind kind) {
  switch (kind) {
    case JsonNode::Kind::kNull:
      return "null";
    case JsonNode::Kind::kFalse:
    case JsonNode::Kind::kTrue:
      return "true or false";
    case JsonNode::Kind::kNumber:
      return "a number";
    case JsonNode::Kind::kText:
      return "a text";
    case JsonNode::Kind::kArray:
      return "a list";
    case JsonNode::Kind::kObject:
      return "an object";
  }
  return "";
}

void AppendJsonText(std::string_view text, std::string& output) {
  static constexpr char kHex[] = "0123456789abcdef";
  output += '"';
  for (const char character : text) {
    switch (character) {
      case '"':
        output += "\\\"";
        break;
      case '\\':
        output += "\\\\";
        break;
      case '\n':
        output += "\\n";
        break;
      case '\r':
        output += "\\r";
        break;
      case '\t':
        output += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(character) < 0x20) {
          output += "\\u00";
          output += kHex[character >> 4];
          output += kHex[character & 15];
        } else {
          output += character;
        }
    }
  }
  output += '"';
}

void AppendCompactJson(const JsonNode& node, std::string& output) {
  switch (node.kind) {
    case JsonNode::Kind::kNull:
      output += "null";
      return;
    case JsonNode::Kind::kFalse:
      output += "false";
      return;
    case JsonNode::Kind::kTrue:
      output += "true";
      return;
    case JsonNode::Kind::kNumber:
      output += node.text;
      return;
    case JsonNode::Kind::kText:
      AppendJsonText(node.text, output);
      return;
    case JsonNode::Kind::kArray:
    case JsonNode::Kind::kObject:
      break;
  }
  const bool isObject = node.IsObject();
  output += isObject ? '{' : '[';
  for (const JsonNode& child : node.children) {
    if (&child != &node.children.front()) {
      output += ',';
    }
    if (isObject) {
      AppendJsonText(child.name, output);
      output += ':';
    }
    AppendCompactJson(child, output);
  }
  output += isObject ? '}' : ']';
}

}  // namespace iorder

#include "terminal/trace_pattern.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/text.h"
#include "terminal/object_reader.h"

namespace iorder {
namespace {

constexpr std::array<std::string_view, 20> kKeys = {
    "at",   "thread",     "event",   "topic", "first",    "second", "text",  "value", "record", "handle",
    "code", "originator", "payload", "phase", "database", "table",  "where", "rows",  "json",   "order"};
constexpr std::array<std::string_view, 12> kEvents = {"advertise", "subscribe", "unsubscribe", "open_record",
                                                      "command",   "log",       "fault",       "message",
                                                      "phase",     "update",    "replace",     "query"};

/// A decimal as sign, digits without zeros at either end, and the power of ten behind them.
struct Decimal {
  bool negative = false;
  std::string digits;
  int64_t exponent = 0;

  friend bool operator==(const Decimal&, const Decimal&) = default;
};

Decimal ReadDecimal(std::string_view text) {
  Decimal decimal;
  decimal.negative = text.starts_with('-');
  text.remove_prefix(decimal.negative ? 1 : 0);
  const size_t mark = text.find_first_of("eE");
  if (mark != std::string_view::npos) {
    const size_t begin = mark + (text.substr(mark + 1).starts_with('+') ? 2 : 1);
    std::from_chars(text.data() + begin, text.data() + text.size(), decimal.exponent);
    text = text.substr(0, mark);
  }
  const size_t point = text.find('.');
  decimal.digits = text.substr(0, point);
  if (point != std::string_view::npos) {
    decimal.digits += text.substr(point + 1);
    decimal.exponent -= static_cast<int64_t>(text.size() - point - 1);
  }
  decimal.digits.erase(0, decimal.digits.find_first_not_of('0'));
  while (decimal.digits.ends_with('0')) {
    decimal.digits.pop_back();
    ++decimal.exponent;
  }
  return decimal.digits.empty() ? Decimal() : decimal;
}

void CheckWord(std::string_view word, const std::vector<std::string_view>& known, const std::string& what,
               const FilePlace& place) {
  if (std::find(known.begin(), known.end(), word) != known.end()) {
    return;
  }
  const std::string nearest = NearestWord(word, known);
  FailAt(place, "unknown " + what + " '" + std::string(word) + "'" +
                    (nearest.empty() ? std::string() : "; did you mean '" + nearest + "'?"));
}

}  // namespace

bool AreEqualNumbers(std::string_view left, std::string_view right) {
  return left == right || ReadDecimal(left) == ReadDecimal(right);
}

CTraceLine::CTraceLine(std::string text, const FilePlace& place)
    : m_text(std::move(text)), m_node(ParseJson(m_text, place)) {
  const JsonNode* const at = m_node.Find("at");
  const std::optional<LocalTime> time = at != nullptr ? ParseLocalTime(at->text) : std::nullopt;
  if (!time) {
    FailAt(place, "not a trace line: it has no time");
  }
  m_at = at->text;
  m_time = *time;
}

const JsonNode* CTraceLine::Json() const {
  if (!m_jsonTried) {
    m_jsonTried = true;
    const JsonNode* const text = m_node.Find("text");
    if (text != nullptr && text->text.find_first_not_of(" \t\r\n") == text->text.find('{')) {
      try {
        m_json = ParseJson(text->text, {});
      } catch (const InputError&) {
        m_json.reset();  // a text that isn't JSON just doesn't fit
      }
    }
  }
  return m_json && m_json->IsObject() ? &*m_json : nullptr;
}

const OrderFields* CTraceLine::Order() const {
  const JsonNode* const text = m_node.Find("text");
  if (text == nullptr) {
    return nullptr;
  }
  if (!m_order) {
    m_order = ParseOrderText(ToWide(text->text));
  }
  return &*m_order;
}

CTracePattern::CTracePattern(const JsonNode& pattern, const FilePlace& place) {
  CObjectReader check(pattern, "the pattern", place);
  if (pattern.children.empty()) {
    FailAt(place, "an empty pattern fits every line");
  }
  for (const JsonNode& member : pattern.children) {
    CheckWord(member.name, {kKeys.begin(), kKeys.end()}, "key", place);
    if (member.name == "event" && member.text.find_first_of("*{") == std::string::npos) {
      CheckWord(member.text, {kEvents.begin(), kEvents.end()}, "event", place);
    }
    const bool needsObject = member.name == "json" || member.name == "order";
    if (needsObject && !member.IsObject()) {
      check.FailKind(member.name, member, "an object");
    }
    for (const JsonNode& value : member.name == "order" ? member.children : std::vector<JsonNode>()) {
      if (value.kind != JsonNode::Kind::kText) {
        check.FailKind(value.name, value, "a text");
      }
    }
    m_keys.push_back(Compile(member));
    if (member.name == "at") {
      if (member.kind != JsonNode::Kind::kText) {
        check.FailKind("at", member, "a text");
      }
      m_keys.back().text->AllowMore();
    }
  }
}

CTracePattern::Node CTracePattern::Compile(const JsonNode& node) {
  Node compiled;
  compiled.kind = node.kind;
  compiled.name = node.name;
  if (node.kind == JsonNode::Kind::kText) {
    compiled.text.emplace(node.text);
  } else {
    compiled.number = node.text;
  }
  for (const JsonNode& child : node.children) {
    compiled.children.push_back(Compile(child));
  }
  return compiled;
}

bool CTracePattern::FitsNode(const Node& pattern, const JsonNode& node, bool mayHaveMore, PatternNames& names,
                             const PatternRest& rest) {
  if (pattern.kind != node.kind) {
    return false;
  }
  switch (pattern.kind) {
    case JsonNode::Kind::kNumber:
      return AreEqualNumbers(pattern.number, node.text) && rest();
    case JsonNode::Kind::kText:
      return pattern.text->Fits(node.text, names, rest);
    case JsonNode::Kind::kArray:
      return pattern.children.size() == node.children.size() &&
             FitsElements(pattern, 0, node, mayHaveMore, names, rest);
    case JsonNode::Kind::kObject:
      return (mayHaveMore || pattern.children.size() == node.children.size()) &&
             FitsMembers(pattern, 0, node, mayHaveMore, names, rest);
    default:
      return rest();
  }
}

bool CTracePattern::FitsMembers(const Node& pattern, size_t index, const JsonNode& node, bool mayHaveMore,
                                PatternNames& names, const PatternRest& rest) {
  if (index == pattern.children.size()) {
    return rest();
  }
  const JsonNode* const member = node.Find(pattern.children[index].name);
  return member != nullptr && FitsNode(pattern.children[index], *member, mayHaveMore, names, [&] {
           return FitsMembers(pattern, index + 1, node, mayHaveMore, names, rest);
         });
}

bool CTracePattern::FitsElements(const Node& pattern, size_t index, const JsonNode& node, bool mayHaveMore,
                                 PatternNames& names, const PatternRest& rest) {
  if (index == pattern.children.size()) {
    return rest();
  }
  return FitsNode(pattern.children[index], node.children[index], mayHaveMore, names,
                  [&] { return FitsElements(pattern, index + 1, node, mayHaveMore, names, rest); });
}

bool CTracePattern::FitsTime(const Node& pattern, const CTraceLine& line, PatternNames& names,
                             const PatternRest& rest) {
  const std::string_view at = line.At();
  return pattern.text->Fits(at, names, rest) || pattern.text->Fits(at.substr(at.find('T') + 1), names, rest);
}

bool CTracePattern::FitsOrder(const Node& pattern, size_t index, const OrderFields& order,
                              PatternNames& names, const PatternRest& rest) {
  if (index == pattern.children.size()) {
    return rest();
  }
  const Node& key = pattern.children[index];
  const auto field = order.find(ToWide(key.name));
  return field != order.end() && key.text->Fits(ToUtf8(field->second), names, [&] {
    return FitsOrder(pattern, index + 1, order, names, rest);
  });
}

bool CTracePattern::FitsKey(const Node& key, const CTraceLine& line, PatternNames& names,
                            const PatternRest& rest) {
  if (key.name == "at") {
    return FitsTime(key, line, names, rest);
  }
  if (key.name == "json") {
    const JsonNode* const json = line.Json();
    return json != nullptr && FitsNode(key, *json, true, names, rest);
  }
  if (key.name == "order") {
    const OrderFields* const order = line.Order();
    return order != nullptr && FitsOrder(key, 0, *order, names, rest);
  }
  const JsonNode* const member = line.Node().Find(key.name);
  return member != nullptr && FitsNode(key, *member, false, names, rest);
}

bool CTracePattern::FitsFrom(size_t index, const CTraceLine& line, PatternNames& names) const {
  return index == m_keys.size() ||
         FitsKey(m_keys[index], line, names, [&] { return FitsFrom(index + 1, line, names); });
}

bool CTracePattern::Fits(const CTraceLine& line, PatternNames& names) const {
  return FitsFrom(0, line, names);
}

size_t CTracePattern::CountFitting(const CTraceLine& line, const PatternNames& names) const {
  size_t count = 0;
  for (const Node& key : m_keys) {
    PatternNames copy = names;
    count += FitsKey(key, line, copy, [] { return true; }) ? 1 : 0;
  }
  return count;
}

void CTracePattern::CollectNames(const Node& node, bool others, std::vector<std::string>& names) {
  if (node.text) {
    const std::vector<std::string> more = others ? node.text->OtherNames() : node.text->Names();
    names.insert(names.end(), more.begin(), more.end());
  }
  for (const Node& child : node.children) {
    CollectNames(child, others, names);
  }
}

std::vector<std::string> CTracePattern::Names() const {
  std::vector<std::string> names;
  for (const Node& key : m_keys) {
    CollectNames(key, false, names);
  }
  return names;
}

std::vector<std::string> CTracePattern::OtherNames() const {
  std::vector<std::string> names;
  for (const Node& key : m_keys) {
    CollectNames(key, true, names);
  }
  return names;
}

}  // namespace iorder

#include "terminal/object_reader.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

namespace iorder {
namespace {

/// Number of letters to put in, leave out, change or swap with their neighbour between two words.
size_t EditDistance(std::string_view left, std::string_view right) {
  std::vector<std::vector<size_t>> rows(left.size() + 1, std::vector<size_t>(right.size() + 1));
  for (size_t i = 0; i <= left.size(); ++i) {
    for (size_t j = 0; j <= right.size(); ++j) {
      if (i == 0 || j == 0) {
        rows[i][j] = i + j;
        continue;
      }
      const size_t change = rows[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      rows[i][j] = std::min({change, rows[i - 1][j] + 1, rows[i][j - 1] + 1});
      if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
        rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[left.size()][right.size()];
}

}  // namespace

std::string NearestWord(std::string_view wrong, const std::vector<std::string_view>& words) {
  std::string_view nearest;
  size_t best = std::max<size_t>(2, wrong.size() / 3) + 1;
  for (const std::string_view word : words) {
    const size_t distance = EditDistance(wrong, word);
    if (distance < best && distance < word.size()) {
      best = distance;
      nearest = word;
    }
  }
  return std::string(nearest);
}

std::optional<int64_t> IntegerOf(const JsonNode& node) {
  int64_t value = 0;
  const char* const end = node.text.data() + node.text.size();
  const auto [stop, error] = std::from_chars(node.text.data(), end, value);
  if (node.kind != JsonNode::Kind::kNumber || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return value;
}

std::optional<ScaledValue> DecimalOf(const JsonNode& node) {
  if (node.kind != JsonNode::Kind::kNumber && node.kind != JsonNode::Kind::kText) {
    return std::nullopt;
  }
  return ParseScaled(node.text);
}

CObjectReader::CObjectReader(const JsonNode& object, std::string what, FilePlace place)
    : m_object(object), m_what(std::move(what)), m_place(std::move(place)) {
  if (!object.IsObject()) {
    FailAt(m_place, m_what + " must be an object, not " + KindName(object.kind));
  }
  std::set<std::string_view> seen;
  for (const JsonNode& member : object.children) {
    if (!seen.insert(member.name).second) {
      FailAt(m_place, "key '" + member.name + "' stands twice in " + m_what);
    }
  }
}

const JsonNode* CObjectReader::Find(std::string_view key) {
  m_known.push_back(key);
  return m_object.Find(key);
}

const JsonNode& CObjectReader::Need(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node == nullptr) {
    for (const JsonNode* const member : Rest()) {
      if (NearestWord(member->name, {key}) == key) {
        FailUnknown(member->name, {key});
      }
    }
    FailAt(m_place, "key '" + std::string(key) + "' is missing in " + m_what);
  }
  return *node;
}

std::optional<std::string> CObjectReader::Text(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node == nullptr) {
    return std::nullopt;
  }
  if (node->kind != JsonNode::Kind::kText) {
    FailKind(key, *node, "a text");
  }
  return node->text;
}

std::string CObjectReader::NeedText(std::string_view key) {
  Need(key);
  return *Text(key);
}

std::optional<int64_t> CObjectReader::Integer(std::string_view key, int64_t least, int64_t most) {
  const JsonNode* const node = Find(key);
  if (node == nullptr) {
    return std::nullopt;
  }
  const std::optional<int64_t> value = IntegerOf(*node);
  if (!value) {
    FailKind(key, *node, "an integer");
  }
  if (*value < least || *value > most) {
    Fail(key, node->text + " is out of range; it must lie from " + std::to_string(least) + " to " +
                  std::to_string(most));
  }
  return value;
}

int64_t CObjectReader::NeedInteger(std::string_view key, int64_t least, int64_t most) {
  Need(key);
  return *Integer(key, least, most);
}

std::optional<int32_t> CObjectReader::Int32(std::string_view key) {
  const std::optional<int64_t> value =
      Integer(key, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
  return value ? std::optional(static_cast<int32_t>(*value)) : std::nullopt;
}

std::optional<bool> CObjectReader::Flag(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node == nullptr) {
    return std::nullopt;
  }
  if (node->kind != JsonNode::Kind::kTrue && node->kind != JsonNode::Kind::kFalse) {
    FailKind(key, *node, "true or false");
  }
  return node->kind == JsonNode::Kind::kTrue;
}

std::optional<ScaledValue> CObjectReader::Decimal(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node == nullptr) {
    return std::nullopt;
  }
  const std::optional<ScaledValue> value = DecimalOf(*node);
  if (!value) {
    FailKind(key, *node, "a decimal with at most ten places");
  }
  return value;
}

const JsonNode* CObjectReader::Object(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node != nullptr && !node->IsObject()) {
    FailKind(key, *node, "an object");
  }
  return node;
}

const JsonNode* CObjectReader::List(std::string_view key) {
  const JsonNode* const node = Find(key);
  if (node != nullptr && node->kind != JsonNode::Kind::kArray) {
    FailKind(key, *node, "a list");
  }
  return node;
}

void CObjectReader::Finish() {
  const std::vector<const JsonNode*> unknown = Rest();
  if (!unknown.empty()) {
    FailUnknown(unknown.front()->name, m_known);
  }
}

void CObjectReader::FailUnknown(const std::string& wrong, const std::vector<std::string_view>& known) const {
  const std::string nearest = NearestWord(wrong, known);
  FailAt(m_place, "unknown key '" + wrong + "' in " + m_what +
                      (nearest.empty() ? std::string() : "; did you mean '" + nearest + "'?"));
}

std::vector<const JsonNode*> CObjectReader::Rest() const {
  std::vector<const JsonNode*> rest;
  for (const JsonNode& member : m_object.children) {
    if (std::find(m_known.begin(), m_known.end(), member.name) == m_known.end()) {
      rest.push_back(&member);
    }
  }
  return rest;
}

void CObjectReader::Fail(std::string_view key, const std::string& what) const {
  FailAt(m_place, "'" + std::string(key) + "' in " + m_what + ": " + what);
}

void CObjectReader::FailKind(std::string_view key, const JsonNode& node, const std::string& expected) const {
  std::string found;
  AppendCompactJson(node, found);
  if (found.size() > 40) {
    found = KindName(node.kind);
  }
  Fail(key, "expected " + expected + ", found " + found);
}

}  // namespace iorder

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/json_line.h"
#include "terminal/local_time.h"
#include "terminal/order_text.h"
#include "terminal/text_pattern.h"

namespace iorder {

/// One line of a trace, read. What patterns ask of its text is worked out when it is first asked for.
class CTraceLine {
 public:
  /// A line that isn't a trace line is an InputError at `place`.
  CTraceLine(std::string text, const FilePlace& place);

  const std::string& Text() const { return m_text; }
  const JsonNode& Node() const { return m_node; }
  const std::string& At() const { return m_at; }  ///< as it is written
  LocalTime Time() const { return m_time; }
  /// The "text" member as a JSON object; none if it isn't one.
  const JsonNode* Json() const;
  /// The "text" member as an order string; none if there is no such member.
  const OrderFields* Order() const;

 private:
  std::string m_text;
  JsonNode m_node;
  std::string m_at;
  LocalTime m_time;
  mutable std::optional<JsonNode> m_json;
  mutable bool m_jsonTried = false;
  mutable std::optional<OrderFields> m_order;
};

/// What a trace line must look like.
class CTracePattern {
 public:
  /// A mistake in the pattern is an InputError at `place`.
  CTracePattern(const JsonNode& pattern, const FilePlace& place);

  /// Whether the line fits; then `names` holds what the names in the pattern stand for, else it is as before.
  bool Fits(const CTraceLine& line, PatternNames& names) const;
  /// How many keys of the pattern fit by themselves: says which line comes nearest.
  size_t CountFitting(const CTraceLine& line, const PatternNames& names) const;
  size_t KeyCount() const { return m_keys.size(); }

  std::vector<std::string> Names() const;
  std::vector<std::string> OtherNames() const;

 private:
  /// One value of the pattern, compiled.
  struct Node {
    JsonNode::Kind kind = JsonNode::Kind::kNull;
    std::string name;
    std::string number;
    std::optional<CTextPattern> text;
    std::vector<Node> children;
  };

  static Node Compile(const JsonNode& node);
  static bool FitsNode(const Node& pattern, const JsonNode& node, bool mayHaveMore, PatternNames& names,
                       const PatternRest& rest);
  static bool FitsMembers(const Node& pattern, size_t index, const JsonNode& node, bool mayHaveMore,
                          PatternNames& names, const PatternRest& rest);
  static bool FitsElements(const Node& pattern, size_t index, const JsonNode& node, bool mayHaveMore,
                           PatternNames& names, const PatternRest& rest);
  static bool FitsTime(const Node& pattern, const CTraceLine& line, PatternNames& names,
                       const PatternRest& rest);
  static bool FitsOrder(const Node& pattern, size_t index, const OrderFields& order, PatternNames& names,
                        const PatternRest& rest);
  static bool FitsKey(const Node& key, const CTraceLine& line, PatternNames& names, const PatternRest& rest);
  bool FitsFrom(size_t index, const CTraceLine& line, PatternNames& names) const;
  static void CollectNames(const Node& node, bool others, std::vector<std::string>& names);

  std::vector<Node> m_keys;
};

/// Whether two JSON numbers are the same number, however they are spelled.
bool AreEqualNumbers(std::string_view left, std::string_view right);

}  // namespace iorder

#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace iorder {

/// The runs of characters that the names of patterns stand for.
using PatternNames = std::map<std::string, std::string, std::less<>>;

/// What remains to be tried when a part of a pattern fits; false sends the search back.
using PatternRest = std::function<bool()>;

/// A text with `*` for any run of characters, `{$name}` for a run that is the same wherever the name comes
/// again, and
/// `{!name}` for a run that differs from it. `\*` and `\{` are the characters themselves.
class CTextPattern {
 public:
  explicit CTextPattern(std::string_view pattern);

  /// Whether the whole of `text` fits. Names that stand for nothing yet get the shortest run that fits; if
  /// `rest` is false in the end, `names` is as before.
  bool Fits(std::string_view text, PatternNames& names, const PatternRest& rest) const;

  /// Lets the text go on behind the pattern.
  void AllowMore() { m_tokens.push_back({Kind::kAny, {}}); }

  /// The names of `{$name}`, and of `{!name}`.
  std::vector<std::string> Names() const { return Named(Kind::kSame); }
  std::vector<std::string> OtherNames() const { return Named(Kind::kOther); }

 private:
  enum class Kind { kLiteral, kAny, kSame, kOther };
  struct Token {
    Kind kind;
    std::string text;  ///< the characters, or the name
  };

  void Add(char character);
  std::vector<std::string> Named(Kind kind) const;
  bool FitsFrom(size_t token, std::string_view text, PatternNames& names, const PatternRest& rest) const;
  bool FitsRun(size_t token, std::string_view text, PatternNames& names, const PatternRest& rest) const;

  std::vector<Token> m_tokens;
};

}  // namespace iorder

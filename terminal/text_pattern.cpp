#include "terminal/text_pattern.h"

namespace iorder {

CTextPattern::CTextPattern(std::string_view pattern) {
  while (!pattern.empty()) {
    const char first = pattern.front();
    const char second = pattern.size() > 1 ? pattern[1] : '\0';
    size_t length = 1;
    if (first == '\\' && (second == '*' || second == '{')) {
      Add(second);
      length = 2;
    } else if (first == '*') {
      m_tokens.push_back({Kind::kAny, {}});
    } else if (const size_t end = pattern.find('}');
               first == '{' && (second == '$' || second == '!') && end != std::string_view::npos && end > 2) {
      m_tokens.push_back(
          {second == '$' ? Kind::kSame : Kind::kOther, std::string(pattern.substr(2, end - 2))});
      length = end + 1;
    } else {
      Add(first);
    }
    pattern.remove_prefix(length);
  }
}

void CTextPattern::Add(char character) {
  if (m_tokens.empty() || m_tokens.back().kind != Kind::kLiteral) {
    m_tokens.push_back({Kind::kLiteral, {}});
  }
  m_tokens.back().text += character;
}

std::vector<std::string> CTextPattern::Named(Kind kind) const {
  std::vector<std::string> names;
  for (const Token& token : m_tokens) {
    if (token.kind == kind) {
      names.push_back(token.text);
    }
  }
  return names;
}

bool CTextPattern::Fits(std::string_view text, PatternNames& names, const PatternRest& rest) const {
  return FitsFrom(0, text, names, rest);
}

bool CTextPattern::FitsFrom(size_t token, std::string_view text, PatternNames& names,
                            const PatternRest& rest) const {
  if (token == m_tokens.size()) {
    return text.empty() && rest();
  }
  const Token& head = m_tokens[token];
  if (head.kind == Kind::kLiteral) {
    return text.starts_with(head.text) && FitsFrom(token + 1, text.substr(head.text.size()), names, rest);
  }
  const auto known = head.kind == Kind::kSame ? names.find(head.text) : names.end();
  if (known != names.end()) {
    return text.starts_with(known->second) &&
           FitsFrom(token + 1, text.substr(known->second.size()), names, rest);
  }
  return FitsRun(token, text, names, rest);
}

/// Tries every run from the shortest on.
bool CTextPattern::FitsRun(size_t token, std::string_view text, PatternNames& names,
                           const PatternRest& rest) const {
  const Token& head = m_tokens[token];
  const bool isLast = token + 1 == m_tokens.size();
  const bool isBeforeLiteral = !isLast && m_tokens[token + 1].kind == Kind::kLiteral;
  const std::string_view next =
      isBeforeLiteral ? std::string_view(m_tokens[token + 1].text) : std::string_view();
  for (size_t length = isLast ? text.size() : 0; length <= text.size(); ++length) {
    length = text.find(next, length);
    if (length == std::string_view::npos) {
      break;
    }
    const std::string_view run = text.substr(0, length);
    if (head.kind == Kind::kOther) {
      const auto other = names.find(head.text);
      if (other != names.end() && other->second == run) {
        continue;
      }
    } else if (head.kind == Kind::kSame) {
      names.insert_or_assign(head.text, std::string(run));
    }
    if (FitsFrom(token + 1, text.substr(length), names, rest)) {
      return true;
    }
  }
  if (head.kind == Kind::kSame) {
    names.erase(head.text);
  }
  return false;
}

}  // namespace iorder

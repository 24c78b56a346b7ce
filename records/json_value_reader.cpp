#include <algorithm>
#include <cwchar>

#include "records/json_value.h"
#include "records/number_text.h"
#include "records/scaled_value.h"
#include "records/wrapping.h"

namespace iorder {

namespace {

constexpr size_t kNowhere = std::wstring_view::npos;

/// Ten to the exponent by repeated squaring: its last places are part of what is read.
double PowerOfTen(int32_t exponent) {
  const auto wide = static_cast<int64_t>(exponent);
  double power = 1.0;
  double square = 10.0;
  for (int64_t left = wide < 0 ? -wide : wide; left != 0; left /= 2, square *= square) {
    if (left % 2 != 0) power *= square;
  }
  return wide < 0 ? 1.0 / power : power;
}

/// The kind that a number without an exponent has by its spelling.
JsonValue::Payload PlainNumber(std::wstring_view digits, bool negative) {
  constexpr size_t kInt64Digits = 10;
  if (digits.find(L'.') != kNowhere) return negative ? -LeadingDouble(digits) : LeadingDouble(digits);
  const int64_t whole = LeadingInt64(digits);
  if (digits.size() >= kInt64Digits) return negative ? WrappedDifference(0, whole) : whole;
  return static_cast<int32_t>(negative ? -whole : whole);
}

/// Reads one text from front to back. Each operation takes what it reads, or fails; then the rest of the text
/// isn't read.
class CJsonValueReader {
 public:
  explicit CJsonValueReader(std::wstring_view text) : m_text(text) {}

  bool ReadValue(JsonValue& value, int depth = 0);
  size_t Position() const { return m_at; }

 private:
  bool ReadObject(JsonValue& value, int depth);
  bool ReadMember(JsonValue::Object& members, int depth);
  bool ReadArray(JsonValue& value, int depth);
  bool ReadString(std::wstring& string);
  void ReadEscape(std::wstring& string);
  void ReadCode(std::wstring& string);
  bool ReadNumber(JsonValue& value);
  bool ReadPower(JsonValue& value, double mantissa, bool negative);
  bool ReadLiteral(JsonValue& value);

  bool IsAtEnd() const { return m_at == m_text.size(); }
  void SkipSpace();
  /// Passes over white space, and over `character` if it comes then.
  bool Take(wchar_t character);

  const std::wstring_view m_text;
  size_t m_at = 0;
};

bool CJsonValueReader::ReadValue(JsonValue& value, int depth) {
  SkipSpace();
  if (IsAtEnd()) return false;
  const wchar_t first = m_text[m_at];
  if (first == L'{') return ReadObject(value, depth + 1);
  if (first == L'[') return ReadArray(value, depth + 1);
  if (first == L'"') {
    std::wstring string;
    ReadString(string);
    value = JsonValue(std::move(string));
    return true;
  }
  if (first == L'+' || first == L'-' || (first >= L'0' && first <= L'9')) return ReadNumber(value);
  return ReadLiteral(value);
}

/// Without an end it fails, whatever the rest of the text reads as: at the latest a key is missing.
bool CJsonValueReader::ReadObject(JsonValue& value, int depth) {
  if (depth > kMaxJsonValueDepth) return false;
  JsonValue::Object members;
  for (Take(L'{'); !Take(L'}'); Take(L',')) {
    if (!ReadMember(members, depth)) return false;
  }
  value = JsonValue(std::move(members));
  return true;
}

bool CJsonValueReader::ReadMember(JsonValue::Object& members, int depth) {
  std::wstring key;
  JsonValue value;
  if (!ReadString(key) || !Take(L':') || !ReadValue(value, depth)) return false;
  members.insert_or_assign(std::move(key), std::make_unique<JsonValue>(std::move(value)));
  return true;
}

bool CJsonValueReader::ReadArray(JsonValue& value, int depth) {
  if (depth > kMaxJsonValueDepth) return false;
  JsonValue::Array values;
  for (Take(L'['); !Take(L']'); Take(L',')) {
    if (!ReadValue(values.emplace_back(), depth)) return false;
  }
  value = JsonValue(std::move(values));
  return true;
}

/// A string begins at the next double quote, wherever that is, and ends with the text at the latest.
bool CJsonValueReader::ReadString(std::wstring& string) {
  const size_t quote = m_text.find(L'"', m_at);
  if (quote == kNowhere) return false;
  for (m_at = quote + 1; !IsAtEnd();) {
    const wchar_t character = m_text[m_at++];
    if (character == L'"') break;
    if (character == L'\\') {
      ReadEscape(string);
    } else {
      string.push_back(character);
    }
  }
  return true;
}

/// Behind a backslash.
void CJsonValueReader::ReadEscape(std::wstring& string) {
  constexpr std::wstring_view kEscapes = L"\"nrt/";
  constexpr std::wstring_view kMeanings = L"\"\n\r\t/";
  const wchar_t character = IsAtEnd() ? L'\\' : m_text[m_at];
  if (character == L'u') return ReadCode(string);
  const size_t escape = kEscapes.find(character);
  string.push_back(escape != kNowhere ? kMeanings[escape] : L'\\');
  if (!IsAtEnd()) ++m_at;
}

/// At the "u" of "\u0041".
void CJsonValueReader::ReadCode(std::wstring& string) {
  constexpr size_t kLength = 6;
  const std::wstring_view rest = m_text.substr(m_at - 1);
  if (rest.size() < kLength) {
    string += rest;
    m_at = m_text.size();
    return;
  }
  const std::wstring code = L"0x" + std::wstring(rest.substr(2, 4));
  string.push_back(static_cast<wchar_t>(std::wcstoul(code.c_str(), nullptr, 16)));
  m_at += kLength - 1;
}

bool CJsonValueReader::ReadNumber(JsonValue& value) {
  const bool negative = m_text[m_at] == L'-';
  if (negative || m_text[m_at] == L'+') ++m_at;
  const size_t end = m_text.find_first_not_of(L"0123456789.", m_at);
  if (end == kNowhere) return false;
  const std::wstring_view digits = m_text.substr(m_at, end - m_at);
  if (std::count(digits.begin(), digits.end(), L'.') > 1) return false;
  m_at = end;
  if (m_text[end] == L'E') return ReadPower(value, LeadingDouble(digits), negative);
  value = JsonValue(PlainNumber(digits, negative));
  return true;
}

/// At the "E". What lies between the exponent and the next delimiter is passed over.
bool CJsonValueReader::ReadPower(JsonValue& value, double mantissa, bool negative) {
  const size_t end = m_text.find_first_of(L",\"]}", m_at);
  if (end == kNowhere) return false;
  const int32_t exponent = LeadingInt32(m_text.substr(m_at + 1, end - m_at - 1));
  const int64_t number = Truncate(mantissa * PowerOfTen(exponent));
  value = JsonValue(negative ? WrappedDifference(0, number) : number);
  m_at = end;
  return true;
}

bool CJsonValueReader::ReadLiteral(JsonValue& value) {
  const bool mayBeFalse = m_text[m_at] == L'f' || m_text[m_at] == L'F';
  std::wstring word(m_text.substr(m_at, mayBeFalse ? 5 : 4));
  for (wchar_t& letter : word) {
    if (letter >= L'A' && letter <= L'Z') letter = static_cast<wchar_t>(letter - L'A' + L'a');
  }
  if (word == L"true" || word == L"false") {
    value = JsonValue(word == L"true");
  } else if (word == L"null") {
    value = JsonValue();
  } else {
    return false;
  }
  m_at += word.size();
  return true;
}

void CJsonValueReader::SkipSpace() {
  constexpr uint32_t kLastSpace = 0x20;
  while (!IsAtEnd() && static_cast<uint32_t>(m_text[m_at]) <= kLastSpace) ++m_at;
}

bool CJsonValueReader::Take(wchar_t character) {
  SkipSpace();
  if (IsAtEnd() || m_text[m_at] != character) return false;
  ++m_at;
  return true;
}

}  // namespace

int64_t ParseJsonValue(JsonValue& out, std::wstring_view text) {
  CJsonValueReader reader(text);
  JsonValue value;
  const bool isRead = reader.ReadValue(value);
  out = isRead ? std::move(value) : JsonValue();
  return isRead ? static_cast<int64_t>(reader.Position()) : 0;
}

}  // namespace iorder

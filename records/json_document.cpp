#include "records/json_document.h"

#include <rapidjson/error/error.h>
#include <rapidjson/reader.h>

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

#include "platform/text.h"
#include "records/number_text.h"

namespace iorder {

namespace {

/// Passes a parser's events on to a document until they go too deep, and reads the numbers, which come as
/// they are spelled: rapidjson's own exact reading runs out of its tables at long fractions. The document
/// copies its strings: the text that they are read in doesn't last.
class CDocumentFeed {
 public:
  using Ch = char;
  using Size = rapidjson::SizeType;

  explicit CDocumentFeed(rapidjson::Document& document) : m_document(document) {}

  bool Null() { return m_document.Null(); }
  bool Bool(bool value) { return m_document.Bool(value); }
  bool Int(int value) { return m_document.Int(value); }
  bool Uint(unsigned value) { return m_document.Uint(value); }
  bool Int64(int64_t value) { return m_document.Int64(value); }
  bool Uint64(uint64_t value) { return m_document.Uint64(value); }
  bool Double(double value) { return m_document.Double(value); }
  bool RawNumber(const Ch* text, Size length, bool) { return AddNumber({text, length}); }
  bool String(const Ch* text, Size length, bool) { return m_document.String(text, length, true); }
  bool Key(const Ch* text, Size length, bool) { return m_document.Key(text, length, true); }
  bool StartObject() { return ++m_depth <= kMaxJsonDepth && m_document.StartObject(); }
  bool EndObject(Size count) { return --m_depth >= 0 && m_document.EndObject(count); }
  bool StartArray() { return ++m_depth <= kMaxJsonDepth && m_document.StartArray(); }
  bool EndArray(Size count) { return --m_depth >= 0 && m_document.EndArray(count); }

 private:
  bool AddNumber(std::string_view text);

  rapidjson::Document& m_document;
  int m_depth = 0;
};

/// A whole number is of the narrowest kind that holds it, signed only below 0.
bool CDocumentFeed::AddNumber(std::string_view text) {
  const bool isNegative = text.front() == '-';
  const char* const digits = text.data() + (isNegative ? 1 : 0);
  const char* const end = text.data() + text.size();
  uint64_t magnitude = 0;
  const auto [stop, error] = std::from_chars(digits, end, magnitude);
  constexpr uint64_t kTwoTo31 = uint64_t{1} << 31;
  constexpr uint64_t kTwoTo63 = uint64_t{1} << 63;
  if (stop != end || error != std::errc() || (isNegative && magnitude > kTwoTo63)) {
    return m_document.Double(LeadingDouble(text));
  }
  const auto number = static_cast<int64_t>(isNegative ? 0 - magnitude : magnitude);
  if (isNegative) {
    return magnitude <= kTwoTo31 ? m_document.Int(static_cast<int>(number)) : m_document.Int64(number);
  }
  return magnitude < 2 * kTwoTo31 ? m_document.Uint(static_cast<unsigned>(magnitude))
                                  : m_document.Uint64(magnitude);
}

/// Parses with the feed in between, and keeps the parser's verdict. In place, in its own text: strings
/// are unescaped where they lie, and not letter by letter through the parser's stack.
class CLimitedParser {
 public:
  explicit CLimitedParser(std::string utf8) : m_text(std::move(utf8)), m_stream(m_text.data()) {}

  bool operator()(rapidjson::Document& document) {
    constexpr unsigned flags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseInsituFlag;
    CDocumentFeed feed(document);
    rapidjson::Reader reader;
    m_result = reader.Parse<flags>(m_stream, feed);
    return !m_result.IsError();
  }

  const rapidjson::ParseResult& Result() const { return m_result; }

 private:
  std::string m_text;
  rapidjson::InsituStringStream m_stream;
  rapidjson::ParseResult m_result;
};

}  // namespace

JsonFailure ParseJson(std::string utf8, rapidjson::Document& document) {
  document.SetNull();
  CLimitedParser parser(std::move(utf8));
  document.Populate(parser);
  if (parser.Result().IsError()) document.SetNull();
  return {parser.Result().Code(), parser.Result().Offset()};
}

std::string WriteJson(const rapidjson::Value& value) {
  rapidjson::StringBuffer buffer;
  CJsonWriter writer(buffer);
  value.Accept(writer);
  return {buffer.GetString(), buffer.GetSize()};
}

const rapidjson::Value* FindMember(const rapidjson::Value& object, std::string_view name) {
  if (!object.IsObject()) return nullptr;
  const auto length = static_cast<rapidjson::SizeType>(name.size());
  const auto member = object.FindMember(rapidjson::Value(rapidjson::StringRef(name.data(), length)));
  return member == object.MemberEnd() ? nullptr : &member->value;
}

std::wstring StringMember(const rapidjson::Value& object, std::string_view name) {
  const rapidjson::Value* member = FindMember(object, name);
  if (member == nullptr || !member->IsString()) return {};
  return ToWide({member->GetString(), member->GetStringLength()});
}

}  // namespace iorder

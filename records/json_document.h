#pragma once

#include <rapidjson/document.h>
#include <rapidjson/error/error.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

namespace iorder {

/// Texts nested deeper aren't taken: whatever walks a parsed document by recursion (writing, copying) stays
/// within the stack of a thread.
inline constexpr int kMaxJsonDepth = 256;

/// What went wrong with a text: the parser's code (kParseErrorNone: nothing) and the offset in bytes.
struct JsonFailure {
  rapidjson::ParseErrorCode code = rapidjson::kParseErrorNone;
  size_t offset = 0;

  explicit operator bool() const { return code != rapidjson::kParseErrorNone; }
};

/// Parses UTF-8 text without recursion, doubles exactly (a number that is too small for one is 0). Text that
/// is nested too deep fails as "terminated". On failure the document is null. The text is worked on in place,
/// so it comes by value; the document keeps nothing of it.
JsonFailure ParseJson(std::string utf8, rapidjson::Document& document);

/// rapidjson's writer, but a number that JSON can't spell (not finite) becomes null instead of broken text.
class CJsonWriter : public rapidjson::Writer<rapidjson::StringBuffer> {
 public:
  using Base = rapidjson::Writer<rapidjson::StringBuffer>;
  using Base::Base;

  bool Double(double number) { return std::isfinite(number) ? Base::Double(number) : Null(); }
};

/// The value as compact JSON in UTF-8. It must come from ParseJson or be as shallow.
std::string WriteJson(const rapidjson::Value& value);

/// The first member of that name, or none if `object` isn't an object or has no such member.
const rapidjson::Value* FindMember(const rapidjson::Value& object, std::string_view name);
/// The text of the string member of that name; "" if there is none.
std::wstring StringMember(const rapidjson::Value& object, std::string_view name);

}  // namespace iorder

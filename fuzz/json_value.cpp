#include "records/json_value.h"

#include <algorithm>
#include <map>
#include <string>

#include "fuzz/fuzz_target.h"
#include "platform/text.h"
#include "records/json_document.h"

namespace iorder::fuzzing {
namespace {

bool AreEqual(const JsonValue& left, const JsonValue& right) {
  if (left.Kind() != right.Kind()) return false;
  if (const auto* const values = left.As<JsonValue::Array>()) {
    const auto& others = *right.As<JsonValue::Array>();
    return std::equal(values->begin(), values->end(), others.begin(), others.end(), AreEqual);
  }
  if (const auto* const members = left.As<JsonValue::Object>()) {
    const auto& others = *right.As<JsonValue::Object>();
    return std::equal(members->begin(), members->end(), others.begin(), others.end(),
                      [](const auto& one, const auto& other) {
                        return one.first == other.first && AreEqual(*one.second, *other.second);
                      });
  }
  const auto isSame = [&]<class T>(const T* payload) {
    return payload == nullptr || *payload == *right.As<T>();
  };
  return isSame(left.As<bool>()) && isSame(left.As<int32_t>()) && isSame(left.As<int64_t>()) &&
         isSame(left.As<double>()) && left.Text() == right.Text();
}

bool IsNumber(const JsonValue& value) {
  return value.As<int32_t>() != nullptr || value.As<int64_t>() != nullptr || value.As<double>() != nullptr;
}

double ToDouble(const JsonValue& value) {
  if (const auto* const number = value.As<int32_t>()) return *number;
  if (const auto* const number = value.As<int64_t>()) return static_cast<double>(*number);
  return *value.As<double>();
}

/// What was taken is a whole value: it reads as the same without what follows. Only a number needs something
/// behind it.
void CheckWhole(const JsonValue& value, const std::wstring& text, size_t taken) {
  std::wstring whole = text.substr(0, taken);
  if (IsNumber(value)) whole += L',';
  JsonValue again;
  Require(ParseJsonValue(again, whole) == static_cast<int64_t>(taken), "the same is taken without the rest");
  Require(AreEqual(value, again), "the same is read without the rest");
}

/// Both readers agree on JSON that has no exponents, escapes and zero characters.
void CheckAgainst(const rapidjson::Value& plain, const JsonValue& value) {
  if (plain.IsObject()) {
    const auto* const members = value.As<JsonValue::Object>();
    Require(members != nullptr, "an object is an object");
    std::map<std::wstring, const rapidjson::Value*> last;
    for (const auto& member : plain.GetObject()) {
      last[ToWide({member.name.GetString(), member.name.GetStringLength()})] = &member.value;
    }
    Require(last.size() == members->size(), "an object has its members");
    for (const auto& [name, member] : last) {
      const auto found = members->find(name);
      Require(found != members->end(), "an object has each member");
      CheckAgainst(*member, *found->second);
    }
  } else if (plain.IsArray()) {
    const auto* const values = value.As<JsonValue::Array>();
    Require(values != nullptr && values->size() == plain.Size(), "an array has its values");
    for (rapidjson::SizeType i = 0; i < plain.Size(); ++i) CheckAgainst(plain[i], (*values)[i]);
  } else if (plain.IsNumber()) {
    // Integers beyond 64 bits are the nearest ones here, and doubles there.
    const bool fits = plain.IsInt64() || value.As<double>() != nullptr;
    Require(IsNumber(value), "a number is a number");
    Require(!fits || ToDouble(value) == plain.GetDouble(), "a number has its value");
  } else if (plain.IsString()) {
    Require(value.Kind() == JsonKind::kString, "a string is a string");
    Require(value.Text() == ToWide({plain.GetString(), plain.GetStringLength()}), "a string has its text");
  } else if (plain.IsBool()) {
    Require(value.As<bool>() != nullptr && *value.As<bool>() == plain.GetBool(), "a boolean is itself");
  } else {
    Require(value.Kind() == JsonKind::kNull, "null is null");
  }
}

void CheckPlainJson(const std::wstring& text, const JsonValue& value, int64_t taken) {
  if (text.find_first_of(std::wstring_view(L"eE\\\0", 4)) != std::wstring::npos) return;
  rapidjson::Document plain;
  if (ParseJson(ToUtf8(text), plain) || !(plain.IsObject() || plain.IsArray())) return;
  Require(taken > 0, "JSON is read");
  Require(text.find_first_not_of(L" \t\r\n", static_cast<size_t>(taken)) == std::wstring::npos,
          "JSON is read to its end");
  CheckAgainst(plain, value);
}

}  // namespace
}  // namespace iorder::fuzzing

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace iorder;
  using namespace iorder::fuzzing;
  const std::wstring text = ToWide(TextOf(data, size));
  JsonValue value(true);
  const int64_t taken = ParseJsonValue(value, text);
  Require(taken >= 0 && static_cast<size_t>(taken) <= text.size(), "no more is taken than was given");
  if (taken > 0) {
    CheckWhole(value, text, static_cast<size_t>(taken));
  } else {
    Require(value.Kind() == JsonKind::kNull, "a failure leaves null");
  }
  CheckPlainJson(text, value, taken);
  return 0;
}

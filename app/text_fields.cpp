#include "app/text_fields.h"

#include <charconv>

#include "records/json_document.h"

namespace iorder {

std::optional<std::string_view> Between(std::string_view text, std::string_view before,
                                        std::string_view after) {
  const size_t begin = text.find(before);
  if (begin == std::string_view::npos) return std::nullopt;
  text.remove_prefix(begin + before.size());
  return text.substr(0, text.find(after));
}

std::optional<int64_t> ReadInteger(std::string_view text) {
  int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || next != end) return std::nullopt;
  return number;
}

std::optional<int64_t> IntegerBetween(std::string_view text, std::string_view before,
                                      std::string_view after) {
  const std::optional<std::string_view> number = Between(text, before, after);
  return number ? ReadInteger(*number) : std::nullopt;
}

std::string TextOf(const rapidjson::Value& object, std::string_view name) {
  const rapidjson::Value* const member = FindMember(object, name);
  if (member == nullptr || !member->IsString()) return "";
  return {member->GetString(), member->GetStringLength()};
}

std::optional<int64_t> IntegerOf(const rapidjson::Value& object, std::string_view name) {
  const rapidjson::Value* const member = FindMember(object, name);
  if (member == nullptr || !member->IsInt64()) return std::nullopt;
  return member->GetInt64();
}

std::optional<double> NumberOf(const rapidjson::Value& object, std::string_view name) {
  const rapidjson::Value* const member = FindMember(object, name);
  if (member == nullptr || !member->IsNumber()) return std::nullopt;
  return member->GetDouble();
}

}  // namespace iorder

#include "records/json_reader.h"

#include "records/json_document.h"
#include "records/scaled_value.h"

namespace iorder {

std::wstring ReadJsonString(const rapidjson::Value& object, std::string_view name) {
  return StringMember(object, name);
}

int32_t ReadJsonInt(const rapidjson::Value& object, std::string_view name, int32_t fallback) {
  const rapidjson::Value* member = FindMember(object, name);
  return member != nullptr && member->IsInt() ? member->GetInt() : fallback;
}

int64_t ReadJsonInt64(const rapidjson::Value& object, std::string_view name, int64_t fallback) {
  const rapidjson::Value* member = FindMember(object, name);
  return member != nullptr && member->IsInt64() ? member->GetInt64() : fallback;
}

double ReadJsonDouble(const rapidjson::Value& object, std::string_view name, double fallback) {
  const rapidjson::Value* member = FindMember(object, name);
  if (member == nullptr || !member->IsDouble()) return fallback;
  return static_cast<double>(ToScaled(member->GetDouble())) / kScale;
}

double ReadJsonNumber(const rapidjson::Value& object, std::string_view name, double fallback) {
  const rapidjson::Value* member = FindMember(object, name);
  const bool readable = member != nullptr && (member->IsDouble() || member->IsInt64());
  if (fallback == NoPrice && !readable) return NoPrice;
  return ReadJsonNumberLoose(object, name, fallback);
}

double ReadJsonNumberLoose(const rapidjson::Value& object, std::string_view name, double fallback) {
  const double number = ReadJsonDouble(object, name, fallback);
  if (number != fallback) return number;
  return static_cast<double>(ReadJsonInt64(object, name, Truncate(fallback)));
}

const rapidjson::Value* FindObject(const rapidjson::Value& object, std::string_view name) {
  const rapidjson::Value* member = FindMember(object, name);
  return member != nullptr && member->IsObject() ? member : nullptr;
}

}  // namespace iorder

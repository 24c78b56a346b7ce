#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <string>
#include <string_view>

/// Readers of one member of a JSON object. A member that is missing or of another kind gives the default, and
/// so does an `object` that isn't one. Pure.
namespace iorder {

/// A string; "" otherwise.
std::wstring ReadJsonString(const rapidjson::Value& object, std::string_view name);
/// An integer that fits 32 bits: 1.0 and 3000000000 give the default.
int32_t ReadJsonInt(const rapidjson::Value& object, std::string_view name, int32_t fallback);
/// An integer that fits 64 bits.
int64_t ReadJsonInt64(const rapidjson::Value& object, std::string_view name, int64_t fallback);
/// A number that is spelled as a double, cut to the ten places of a scaled value.
double ReadJsonDouble(const rapidjson::Value& object, std::string_view name, double fallback);
/// A number of either spelling. The default NoPrice stays NoPrice.
double ReadJsonNumber(const rapidjson::Value& object, std::string_view name, double fallback);
/// The same, but a missing member with the default NoPrice gives what truncates to NoValue.
double ReadJsonNumberLoose(const rapidjson::Value& object, std::string_view name, double fallback);

/// The member if it is an object, else none.
const rapidjson::Value* FindObject(const rapidjson::Value& object, std::string_view name);

}  // namespace iorder

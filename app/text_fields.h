#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace iorder {

// Readers of the texts that the engine sends and logs. What isn't there, or isn't what was asked for, is
// none, or "" for a text.

/// What stands between `before` and `after`; to the end of the text if `after` isn't there.
std::optional<std::string_view> Between(std::string_view text, std::string_view before,
                                        std::string_view after);
/// A decimal integer that is all of the text.
std::optional<int64_t> ReadInteger(std::string_view text);
std::optional<int64_t> IntegerBetween(std::string_view text, std::string_view before, std::string_view after);

std::string TextOf(const rapidjson::Value& object, std::string_view name);
std::optional<int64_t> IntegerOf(const rapidjson::Value& object, std::string_view name);
std::optional<double> NumberOf(const rapidjson::Value& object, std::string_view name);

}  // namespace iorder

#include "tests/checkers/bus_read.h"

#include <algorithm>
#include <charconv>

#include "platform/text.h"

namespace iorder::testing {
namespace {

/// Behind white space and a plus.
std::string_view NumberText(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  return text;
}

}  // namespace

int64_t LeadingWhole(std::string_view text) {
  text = NumberText(text);
  int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) return text.starts_with('-') ? INT64_MIN : INT64_MAX;
  return number;
}

double LeadingDecimal(std::string_view text) {
  text = NumberText(text);
  const bool isNumber = text.find_first_of("0123456789") == text.find_first_not_of("-.");
  double number = 0;
  if (isNumber) std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

int64_t Int64Of(const Value& value, int64_t missing) {
  if (const auto* number = std::get_if<int64_t>(&value)) return *number;
  return std::holds_alternative<std::monostate>(value) ? missing
         : std::holds_alternative<int32_t>(value)      ? std::get<int32_t>(value)
                                                       : LeadingWhole(TextOf(value));
}

int32_t Int32Of(const Value& value, int32_t missing) {
  if (const auto* number = std::get_if<int32_t>(&value)) return *number;
  if (!std::holds_alternative<std::wstring>(value)) return missing;
  return static_cast<int32_t>(std::clamp<int64_t>(LeadingWhole(TextOf(value)), INT32_MIN, INT32_MAX));
}

std::string TextOf(const Value& value) {
  if (const auto* text = std::get_if<std::wstring>(&value)) return ToUtf8(*text);
  if (const auto* number = std::get_if<int32_t>(&value)) return std::to_string(*number);
  if (const auto* number = std::get_if<int64_t>(&value)) return std::to_string(*number);
  return {};
}

}  // namespace iorder::testing

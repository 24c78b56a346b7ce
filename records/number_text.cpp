#include "records/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "platform/text.h"

namespace iorder {

namespace {

bool IsSpace(wchar_t c) {
  return c == L' ' || (c >= L'\t' && c <= L'\r');
}

/// The characters that a number can be made of, as narrow text, behind white space and a plus sign.
std::string LeadingNumberText(std::wstring_view text) {
  const auto begin = std::find_if_not(text.begin(), text.end(), IsSpace);
  const auto first = begin != text.end() && *begin == L'+' ? begin + 1 : begin;
  std::string narrow;
  for (auto at = first; at != text.end(); ++at) {
    const wchar_t c = *at;
    const bool part =
        (c >= L'0' && c <= L'9') || c == L'.' || c == L'e' || c == L'E' || c == L'+' || c == L'-';
    if (!part) break;
    narrow.push_back(static_cast<char>(c));
  }
  if (first != begin && !narrow.empty() && narrow.front() == '-') narrow.clear();  // "+-5" is no number
  return narrow;
}

/// Whether a number that fits no double lies beyond the greatest ones, or below the least.
bool IsHuge(std::string_view number) {
  const size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const auto point = static_cast<int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<int64_t>(mantissa.find_first_of("123456789"));
  const int64_t digitsBeforePoint = point > first ? point - first : point - first + 1;
  const int32_t exponent = mark < number.size() ? LeadingInt32(ToWide(number.substr(mark + 1))) : 0;
  return digitsBeforePoint + exponent > 0;
}

}  // namespace

std::wstring ToDecimal(int64_t number) {
  char digits[24];
  const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), number);
  return {std::begin(digits), end};
}

int64_t LeadingInt64(std::wstring_view text) {
  const std::string narrow = LeadingNumberText(text);
  int64_t value = 0;
  const auto [end, error] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
  if (error != std::errc::result_out_of_range) return value;
  return narrow.front() == '-' ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}

int32_t LeadingInt32(std::wstring_view text) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(std::clamp<int64_t>(LeadingInt64(text), Limits::min(), Limits::max()));
}

double LeadingDouble(std::wstring_view text) {
  return LeadingDouble(std::string_view(LeadingNumberText(text)));
}

double LeadingDouble(std::string_view number) {
  double value = 0.0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc::result_out_of_range || !IsHuge({number.data(), end})) return value;
  return number.front() == '-' ? -HUGE_VAL : HUGE_VAL;
}

}  // namespace iorder

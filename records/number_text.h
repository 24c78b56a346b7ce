#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace iorder {

/// The decimal integer that `text` begins with, behind white space and a sign; 0 if there is none. What
/// doesn't fit stops at the nearest value that does.
int64_t LeadingInt64(std::wstring_view text);
int32_t LeadingInt32(std::wstring_view text);

/// The digits of a whole number. std::to_wstring gives the same, but asks the locale for each.
std::wstring ToDecimal(int64_t number);

/// The decimal number that `text` begins with (digits, one point, an exponent); 0.0 if there is none, and for
/// what is too small for a double; what is too great is infinite. Independent of any locale. Words ("inf")
/// and hexadecimal digits are no numbers.
double LeadingDouble(std::wstring_view text);
/// The same of narrow text in which nothing stands before the number, nor a plus sign.
double LeadingDouble(std::string_view number);

}  // namespace iorder

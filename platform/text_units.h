#pragma once

#include <utf8.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace iorder {

/// The work of text.h for both widths of a wide character: `Unit` of 16 bits holds UTF-16, one of 32 bits a
/// code point.
inline constexpr char32_t kReplacement = 0xFFFD;

template <class Unit>
std::basic_string<Unit> DecodeUtf8(std::string_view utf8) {
  std::string repaired;
  if (!utf8::is_valid(utf8.begin(), utf8.end())) {
    utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(repaired), kReplacement);
    utf8 = repaired;
  }
  std::basic_string<Unit> wide;
  wide.reserve(utf8.size());
  if constexpr (sizeof(Unit) == 2) {
    utf8::unchecked::utf8to16(utf8.begin(), utf8.end(), std::back_inserter(wide));
  } else {
    utf8::unchecked::utf8to32(utf8.begin(), utf8.end(), std::back_inserter(wide));
  }
  return wide;
}

/// The code point that begins at `at`, which moves behind it. Half a surrogate pair, a surrogate among code
/// points and what lies beyond Unicode give the replacement.
template <class Unit>
char32_t NextCodePoint(std::basic_string_view<Unit> wide, size_t& at) {
  const auto unit = static_cast<char32_t>(wide[at++]);
  if (unit > 0x10FFFF) return kReplacement;
  if (unit < 0xD800 || unit > 0xDFFF) return unit;
  if (sizeof(Unit) != 2 || unit > 0xDBFF || at == wide.size()) return kReplacement;
  const auto low = static_cast<char32_t>(wide[at]);
  if (low < 0xDC00 || low > 0xDFFF) return kReplacement;
  ++at;
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

template <class Unit>
std::string EncodeUtf8(std::basic_string_view<Unit> wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  for (size_t at = 0; at < wide.size();) {
    const char32_t point = NextCodePoint(wide, at);
    if (point < 0x80) {
      utf8.push_back(static_cast<char>(point));
    } else {
      utf8::unchecked::append(point, std::back_inserter(utf8));
    }
  }
  return utf8;
}

}  // namespace iorder

#pragma once

#include <string>
#include <string_view>

namespace iorder {

/// Wide text from UTF-8, and back. What isn't well formed becomes U+FFFD; nothing is raised. A wchar_t of 16
/// bits holds UTF-16, one of 32 bits a code point.
std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);

}  // namespace iorder

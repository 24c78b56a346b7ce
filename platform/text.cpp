#include "platform/text.h"

#include <algorithm>
#include <cstdint>

#include "platform/text_units.h"

namespace iorder {

namespace {

/// True for text in which every unit is a character of its own: nearly all that the system writes.
template <class Text>
bool IsAscii(const Text& text) {
  uint32_t all = 0;
  for (const auto unit : text) all |= static_cast<uint32_t>(unit);
  return all < 0x80;
}

}  // namespace

std::wstring ToWide(std::string_view utf8) {
  return IsAscii(utf8) ? std::wstring(utf8.begin(), utf8.end()) : DecodeUtf8<wchar_t>(utf8);
}

std::string ToUtf8(std::wstring_view wide) {
  if (!IsAscii(wide)) return EncodeUtf8<wchar_t>(wide);
  std::string utf8(wide.size(), '\0');
  std::transform(wide.begin(), wide.end(), utf8.begin(),
                 [](wchar_t unit) { return static_cast<char>(unit); });
  return utf8;
}

}  // namespace iorder

#include "platform/text.h"

#include "platform/text_units.h"

namespace iorder {

std::wstring ToWide(std::string_view utf8) {
  return DecodeUtf8<wchar_t>(utf8);
}

std::string ToUtf8(std::wstring_view wide) {
  return EncodeUtf8<wchar_t>(wide);
}

}  // namespace iorder

#include "terminal/input_error.h"

namespace iorder {
namespace {

/// What a mistake quotes may hold anything: what would begin another line, or move a terminal's cursor, is
/// spelled out.
std::string InOneLine(const std::string& text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string line;
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code >= 0x20 && code != 0x7F) {
      line += character;
    } else {
      line.append("\\x").append(1, kDigits[code / 16]).append(1, kDigits[code % 16]);
    }
  }
  return line;
}

}  // namespace

InputError::InputError(const std::string& what) : std::runtime_error(InOneLine(what)) {}

}  // namespace iorder

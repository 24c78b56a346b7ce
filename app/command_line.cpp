#include "app/command_line.h"

#include <fmt/format.h>

#include <charconv>

namespace iorder {
namespace {

/// Reads all of `text` as a number.
template <typename T>
bool ReadAll(const std::string& text, T& number) {
  const char* const end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && next == end;
}

}  // namespace

CLI::Validator WholeNumber(int64_t lowest, int64_t highest) {
  return CLI::Validator(
      [lowest, highest](std::string& text) -> std::string {
        int64_t number = 0;
        if (ReadAll(text, number) && number >= lowest && number <= highest) return "";
        return fmt::format("'{}', expected a whole number from {} to {}", text, lowest, highest);
      },
      "");
}

CLI::Validator Number(double above, double highest) {
  return CLI::Validator(
      [above, highest](std::string& text) -> std::string {
        double number = 0;
        if (ReadAll(text, number) && number > above && number <= highest) return "";
        return fmt::format("'{}', expected a number above {} up to {}", text, above, highest);
      },
      "");
}

std::string Examples(const std::string& lines) {
  return "Examples:\n" + lines;
}

}  // namespace iorder

#include "app/command_line.h"

#include <fmt/format.h>

#include <charconv>

#include "terminal/input_error.h"

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

void AddRunOptions(CLI::App& command, RunArguments& arguments) {
  command
      .add_option("--clock", arguments.clock,
                  "virtual: as fast as it goes; native: real threads and a real clock")
      ->check(EitherWord("virtual", "native"))
      ->capture_default_str();
  command.add_option("--speed", arguments.speed, "Seconds of the day in a second of the native clock")
      ->check(Number(0, 1000))
      ->capture_default_str();
}

RunOptions OptionsOf(const RunArguments& arguments) {
  RunOptions options;
  options.native = arguments.clock == "native";
  options.speed = arguments.speed;
  if (!options.native && arguments.speed != 1) {
    throw InputError("--speed: the virtual clock has no speed, expected --clock native beside it");
  }
  if (arguments.seed.empty()) return options;
  if (options.native)
    throw InputError("--seed: real threads can't be drawn, expected --clock virtual beside it");
  options.seed = std::stoull(arguments.seed);
  return options;
}

std::optional<int64_t> ReadWholeNumber(const std::string& text) {
  int64_t number = 0;
  if (!ReadAll(text, number)) return std::nullopt;
  return number;
}

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

CLI::Validator Name(const std::string& expected) {
  return CLI::Validator(
      [expected](std::string& text) { return text.empty() ? "'', expected " + expected : std::string(); },
      "");
}

CLI::Validator EitherWord(const std::string& first, const std::string& second) {
  return CLI::Validator(
      [first, second](std::string& text) -> std::string {
        if (text == first || text == second) return "";
        return fmt::format("'{}', expected {} or {}", text, first, second);
      },
      first + '|' + second);
}

CLI::Validator FillWord() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        for (const char* const word : {"touch", "through", "immediate", "none"}) {
          if (text == word) return "";
        }
        return fmt::format("'{}', expected touch, through, immediate or none", text);
      },
      "touch|through|immediate|none");
}

std::pair<std::string, std::string> ReadAccount(const std::string& option, const std::string& text) {
  const size_t slash = text.find('/');
  if (slash == std::string::npos || slash == 0 || slash + 1 == text.size()) {
    throw InputError(fmt::format("{}: '{}', expected BROKER/ACCOUNT", option, text));
  }
  return {text.substr(0, slash), text.substr(slash + 1)};
}

std::string Examples(const std::string& lines) {
  return "Examples:\n" + lines;
}

}  // namespace iorder

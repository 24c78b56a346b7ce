#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "app/run_day.h"

namespace iorder {

/// The exit codes of the program.
enum ExitCode : int {
  kDone = 0,
  kWrong = 1,       ///< the thing asked about is wrong: failed expectations, errors of a run
  kWrongUsage = 2,  ///< wrong usage or wrong input
};

/// What the program does once its command line has been read; gives the exit code. Raises InputError.
using Job = std::function<int()>;

/// Each adds one command to the program. When the command is the one given, `job` becomes what it does.
void AddDemoCommand(CLI::App& program, Job& job);
void AddImportCommand(CLI::App& program, Job& job);
void AddMakeDayCommand(CLI::App& program, Job& job);
void AddPriceCommand(CLI::App& program, Job& job);
void AddReplayCommand(CLI::App& program, Job& job);
void AddVerifyCommand(CLI::App& program, Job& job);

/// What the command line says of the clock of a run.
struct RunArguments {
  std::string clock = "virtual";
  double speed = 1;
  std::string seed;  ///< empty: the day's own
};

/// Adds --clock and --speed.
void AddRunOptions(CLI::App& command, RunArguments& arguments);
/// Raises InputError for what doesn't go together.
RunOptions OptionsOf(const RunArguments& arguments);

/// All of `text` as a whole number; none for any other text.
std::optional<int64_t> ReadWholeNumber(const std::string& text);

/// Validators whose message says what was expected.
CLI::Validator WholeNumber(int64_t lowest, int64_t highest);
CLI::Validator Number(double above, double highest);

/// A text that isn't empty, to name what is `expected`, as in "a file".
CLI::Validator Name(const std::string& expected);

/// One of two words.
CLI::Validator EitherWord(const std::string& first, const std::string& second);
/// Takes the words that say how orders are filled.
CLI::Validator FillWord();

/// The two halves of "BROKER/ACCOUNT", told with `option`; InputError for any other text.
std::pair<std::string, std::string> ReadAccount(const std::string& option, const std::string& text);

/// Text for the end of a command's help: the lines stand under "Examples:".
std::string Examples(const std::string& lines);

}  // namespace iorder

#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <string>

namespace iorder {

/// The exit codes of the program.
enum ExitCode : int {
  kDone = 0,
  kWrong = 1,       ///< the thing asked about is wrong: failed expectations, errors of a run
  kWrongUsage = 2,  ///< wrong usage or wrong input
};

/// What the program does once its command line has been read; gives the exit code. Raises CInputError.
using Job = std::function<int()>;

/// Each adds one command to the program. When the command is the one given, `job` becomes what it does.
void AddImportCommand(CLI::App& program, Job& job);
void AddMakeDayCommand(CLI::App& program, Job& job);

/// Validators whose message says what was expected.
CLI::Validator WholeNumber(int64_t lowest, int64_t highest);
CLI::Validator Number(double above, double highest);

/// Text for the end of a command's help: the lines stand under "Examples:".
std::string Examples(const std::string& lines);

}  // namespace iorder

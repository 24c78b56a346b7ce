#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "app/command_line.h"
#include "platform/console.h"
#include "platform/scratch_path.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

/// Errors are one line, whatever text they carry.
int ReportError(std::string text, int exitCode) {
  for (char& character : text) {
    if (character == '\n' || character == '\r') character = ' ';
  }
  std::cerr << "iorder: " << text << '\n';
  return exitCode;
}

/// Reads the command line. Gives the exit code if that is all: help, version, wrong usage.
std::optional<int> ReadCommandLine(CLI::App& program, int argc, char** argv) {
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& request) {
    program.exit(request);
    return kDone;
  } catch (const CLI::ExtrasError&) {
    return ReportError("'" + program.remaining(true).front() +
                           "' isn't known, expected an option or argument of the command (see its --help)",
                       kWrongUsage);
  } catch (const CLI::ParseError& error) {
    return ReportError(std::string(error.what()) + " (see iorder --help)", kWrongUsage);
  }
  return std::nullopt;
}

int RunProgram(int argc, char** argv) {
  CLI::App program("The automatic order engine: run days through it and see what it orders.", "iorder");
  program.set_version_flag("--version", "iorder " IORDER_VERSION);
  program.require_subcommand(1);
  program.footer(
      "Exit codes: 0 done, 1 the thing asked about is wrong, 2 wrong usage or wrong input.\n"
      "iorder COMMAND --help tells the options of a command, with examples.");
  Job job;
  AddDemoCommand(program, job);
  AddReplayCommand(program, job);
  AddVerifyCommand(program, job);
  AddMakeDayCommand(program, job);
  AddImportCommand(program, job);
  AddPriceCommand(program, job);

  if (const std::optional<int> exitCode = ReadCommandLine(program, argc, argv)) return *exitCode;
  return job();
}

/// What was printed must have arrived: a full disk or a broken pipe is an error.
int CheckOutput(int exitCode) {
  if (!std::cout.flush()) return ReportError("the output can't be written", kWrongUsage);
  return exitCode;
}

}  // namespace
}  // namespace iorder

int main(int argc, char** argv) {
  using namespace iorder;
  LetBrokenPipesFail();
  CleanUpOnInterruption();
  try {
    return CheckOutput(RunProgram(argc, argv));
  } catch (const InputError& error) {
    return ReportError(error.what(), kWrongUsage);
  } catch (const std::filesystem::filesystem_error& error) {
    return ReportError(error.what(), kWrongUsage);
  } catch (const std::exception& error) {
    return ReportError(std::string("unexpected error: ") + error.what(), kWrong);
  }
}

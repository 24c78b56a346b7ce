#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <iostream>
#include <memory>

#include "app/command_line.h"
#include "app/day_case.h"
#include "app/progress.h"
#include "platform/parallel.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

constexpr int64_t kMostSeeds = 1'000'000;

struct Arguments {
  std::vector<std::string> paths;
  std::string seeds;
  size_t jobs = HardwareThreads();
  RunArguments run;
};

/// One day with one seed.
struct Trial {
  const CDayCase* day;
  RunOptions options;
  std::optional<std::string> report;  ///< why it failed
};

/// "FIRST:LAST", both included.
std::pair<int64_t, int64_t> ReadSeeds(const std::string& text) {
  const size_t colon = text.find(':');
  const auto fails = [&] {
    return InputError(fmt::format(
        "--seeds: '{}', expected FIRST:LAST, whole numbers from 0, at most {} of them", text, kMostSeeds));
  };
  if (colon == std::string::npos) throw fails();
  const std::optional<int64_t> first = ReadWholeNumber(text.substr(0, colon));
  const std::optional<int64_t> last = ReadWholeNumber(text.substr(colon + 1));
  if (!first || !last || *first < 0 || *last < *first || *last - *first >= kMostSeeds) throw fails();
  return {*first, *last};
}

/// A deque: cases don't move.
std::deque<CDayCase> ReadCases(const std::vector<std::string>& paths) {
  std::deque<CDayCase> cases;
  for (const std::string& path : paths) {
    for (const std::string& day : FindDays(path)) cases.emplace_back(day);
  }
  return cases;
}

std::vector<Trial> PlanTrials(const std::deque<CDayCase>& cases, const Arguments& arguments) {
  const RunOptions options = OptionsOf(arguments.run);
  if (options.native && !arguments.seeds.empty()) {
    throw InputError("--seeds: real threads can't be drawn, expected --clock virtual beside it");
  }
  std::vector<Trial> trials;
  for (const CDayCase& day : cases) {
    if (options.native && day.IsVirtualOnly()) continue;
    if (arguments.seeds.empty()) {
      trials.push_back({&day, options, std::nullopt});
      continue;
    }
    const auto [first, last] = ReadSeeds(arguments.seeds);
    for (int64_t seed = first; seed <= last; ++seed) {
      trials.push_back({&day, options, std::nullopt});
      trials.back().options.seed = static_cast<uint64_t>(seed);
    }
  }
  return trials;
}

void RunTrials(std::vector<Trial>& trials, size_t jobs) {
  CStatusLine line;
  CProgress progress(line, "runs", static_cast<double>(trials.size()));
  std::atomic<size_t> done = 0;
  std::atomic_flag isShowing;
  RunParallel(trials.size(), jobs, [&](size_t index) {
    Trial& trial = trials[index];
    trial.report = trial.day->Run(trial.options);
    const size_t count = ++done;
    // One thread at a time; the others go on.
    if (isShowing.test_and_set()) return;
    progress.Show(static_cast<double>(count));
    isShowing.clear();
  });
}

void PrintFailure(const Trial& trial) {
  std::cout << "FAILED " << trial.day->Path();
  if (trial.options.seed) std::cout << " with seed " << *trial.options.seed;
  std::cout << '\n' << *trial.report;
}

int Run(const Arguments& arguments) {
  const std::deque<CDayCase> cases = ReadCases(arguments.paths);
  std::vector<Trial> trials = PlanTrials(cases, arguments);
  RunTrials(trials, arguments.jobs);
  size_t failed = 0;
  for (const Trial& trial : trials) {
    if (!trial.report) continue;
    ++failed;
    PrintFailure(trial);
  }
  std::cout << fmt::format("{} passed, {} failed", trials.size() - failed, failed);
  const auto skipped =
      arguments.run.clock == "native"
          ? std::count_if(cases.begin(), cases.end(), [](const CDayCase& day) { return day.IsVirtualOnly(); })
          : 0;
  if (skipped != 0) std::cout << fmt::format(", {} skipped (virtual only)", skipped);
  std::cout << '\n';
  return failed == 0 ? kDone : kWrong;
}

}  // namespace

void AddVerifyCommand(CLI::App& program, Job& job) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command =
      program.add_subcommand("verify", "Run days and check their traces against what they must show");
  command
      ->add_option("PATH", arguments->paths,
                   "Day files, each with its expectation file beside it (NAME.day.jsonl, NAME.expect.jsonl), "
                   "or folders "
                   "of such")
      ->required();
  command
      ->add_option("--seeds", arguments->seeds,
                   "Run each day with the threads in the order of each of these seeds, in place of its own: "
                   "FIRST:LAST, "
                   "both included; answers of the terminal are still drawn from its own")
      ->type_name("FIRST:LAST");
  AddRunOptions(*command, arguments->run);
  command->add_option("--jobs", arguments->jobs, "Runs at the same time")
      ->check(WholeNumber(1, 1024))
      ->capture_default_str();
  command->footer(
      "A day that a real clock can't show says so in a line {\"note\": \"virtual only: REASON\"}; the native "
      "clock skips it.\n\n" +
      Examples("  iorder verify tests/days\n"
               "  iorder verify tests/days --seeds 0:99\n"
               "  iorder verify examples/days --clock native --speed 60"));
  command->callback([&job, arguments] { job = [arguments] { return Run(*arguments); }; });
}

}  // namespace iorder

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "app/day_case.h"
#include "platform/parallel.h"
#include "terminal/day_file.h"
#include "terminal/input_error.h"
#include "tests/checkers/checkers.h"

/// Plays days with all checkers listening: check_days PATH..., each path a day or a folder of days. Prints
/// what is broken; exit code 1 if anything is.
namespace iorder::testing {
namespace {

constexpr uint64_t kSeeds = 3;

/// The violations of one run and what went wrong with it, as lines. A day that stops early is no kept one.
std::string Check(const std::string& path, uint64_t seed) {
  const Day day = ReadDayFile(path);
  CCheckers checkers(day, RulesLeftOut(path));
  CCheckedRun run(day, seed, checkers);
  const std::string name = path + " --seed " + std::to_string(seed) + " ";
  std::string report;
  try {
    for (const std::string& problem : run.Run()) report += name + problem + "\n";
  } catch (const InputError& error) {
    report += name + error.what() + "\n";
  }
  for (const Violation& violation : checkers.Finish())
    report += name + ToText(violation.at) + " " + violation.rule + ": " + violation.what + "\n";
  return report;
}

int CheckAll(const std::vector<std::string>& paths) {
  std::vector<std::string> days;
  for (const std::string& path : paths) {
    for (const std::string& day : FindDays(path)) days.push_back(day);
  }
  std::vector<std::string> reports(days.size() * kSeeds);
  RunParallel(reports.size(), HardwareThreads(),
              [&](size_t index) { reports[index] = Check(days[index / kSeeds], index % kSeeds); });
  for (const std::string& report : reports) std::cout << report;
  const auto broken = std::count_if(reports.begin(), reports.end(),
                                    [](const std::string& report) { return !report.empty(); });
  std::cout << static_cast<std::ptrdiff_t>(reports.size()) - broken << " kept all rules, " << broken
            << " broke one\n";
  return broken == 0 ? 0 : 1;
}

}  // namespace
}  // namespace iorder::testing

int main(int count, char** arguments) {
  try {
    return iorder::testing::CheckAll({arguments + 1, arguments + count});
  } catch (const iorder::InputError& error) {
    std::cerr << error.what() << "\n";
    return 2;
  }
}

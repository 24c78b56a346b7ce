#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>

#include "app/progress.h"
#include "platform/parallel.h"
#include "platform/scratch_path.h"
#include "platform/status_line.h"
#include "platform/stopwatch.h"
#include "tests/soak/soak_run.h"

/// Plays made days, one seed after the other, through all checkers.
namespace iorder::testing {
namespace {

/// Days that are played before the next look at the clock and at what they have shown.
constexpr size_t kBlock = 64;
/// From so many days on every kind of happening must have come.
constexpr int64_t kEnoughDays = 200;
constexpr size_t kMostShown = 3;

struct Arguments {
  uint64_t seed = 1;
  int64_t days = 0;
  double hours = 0;
  size_t jobs = HardwareThreads();
  std::filesystem::path out = ".";
};

class CSoak {
 public:
  explicit CSoak(const Arguments& arguments) : m_arguments(arguments), m_total(arguments.days) {}

  int Run() {
    CStatusLine line;
    CProgress progress(line, "days", m_arguments.hours > 0 ? 0 : static_cast<double>(m_total));
    while (m_broken.empty() && !IsOver()) {
      PlayBlock();
      progress.Show(static_cast<double>(m_played), Share());
    }
    line.Clear();
    for (size_t i = 0; i < std::min(m_broken.size(), kMostShown); ++i) Tell(m_broken[i]);
    return Summarise();
  }

 private:
  double Share() const {
    if (m_arguments.hours > 0) return m_stopwatch.Seconds() / (m_arguments.hours * 3600);
    return static_cast<double>(m_played) / static_cast<double>(m_total);
  }
  bool IsOver() const { return Share() >= 1; }

  void PlayBlock() {
    const bool isTimed = m_arguments.hours > 0;
    const auto count = isTimed ? kBlock : std::min<size_t>(kBlock, static_cast<size_t>(m_total - m_played));
    std::vector<SoakOutcome> outcomes(count);
    const uint64_t first = m_arguments.seed + static_cast<uint64_t>(m_played);
    RunParallel(count, m_arguments.jobs, [&](size_t index) {
      const std::filesystem::path path = PathOf(m_folder.Path(), first + index);
      outcomes[index] = PlaySoakDay(MakeSoakDay(first + index, path), path);
      for (const char* const ending : {".day.jsonl", ".ticks.csv"})
        std::filesystem::remove(m_folder.Path() / (NameOf(first + index) + ending));
    });
    for (size_t i = 0; i < count; ++i) {
      m_coverage.Add(outcomes[i].coverage);
      if (outcomes[i].violation) m_broken.push_back({first + i, *outcomes[i].violation});
    }
    m_played += static_cast<int64_t>(count);
  }

  struct Broken {
    uint64_t seed;
    Violation violation;
  };

  static std::string NameOf(uint64_t seed) { return "soak-" + std::to_string(seed); }
  static std::filesystem::path PathOf(const std::filesystem::path& folder, uint64_t seed) {
    return folder / (NameOf(seed) + ".day.jsonl");
  }

  void Tell(const Broken& broken) {
    std::cout << fmt::format("seed {}, {}: {}: {}\n", broken.seed, ToText(broken.violation.at),
                             broken.violation.rule, broken.violation.what);
    std::filesystem::create_directories(m_arguments.out);
    const std::filesystem::path path = PathOf(m_arguments.out, broken.seed);
    const SoakDay day = MakeSoakDay(broken.seed, path);
    const SoakDay smallest = Shrink(day, broken.violation, path);
    std::cout << fmt::format(
        "  again:    scripts/soak --days 1 --seed {}\n"
        "  smallest: {} of {} events still show it: iorder replay {}\n",
        broken.seed, smallest.events.size(), day.events.size(), path.string());
  }

  int Summarise() {
    const double seconds = m_stopwatch.Seconds();
    std::cout << m_coverage.Table();
    std::cout << fmt::format(
        "{} days of the seeds {} to {} in {}, {:.1f} days/s on {} cores, {} broke a rule\n", m_played,
        m_arguments.seed, m_arguments.seed + static_cast<uint64_t>(m_played) - 1, DurationText(seconds),
        static_cast<double>(m_played) / seconds, m_arguments.jobs, m_broken.size());
    if (!m_broken.empty()) return 1;
    const std::string missing = m_coverage.Missing();
    if (m_played < kEnoughDays || missing.empty()) return 0;
    std::cout << "so many days, and these never happened:" << missing << "\n";
    return 1;
  }

  const Arguments m_arguments;
  const int64_t m_total;
  const CScratchPath m_folder = CScratchPath::NewFolder();
  const CStopwatch m_stopwatch;
  int64_t m_played = 0;
  CCoverage m_coverage;
  std::vector<Broken> m_broken;
};

}  // namespace
}  // namespace iorder::testing

int main(int count, char** texts) {
  using iorder::testing::Arguments;
  Arguments arguments;
  CLI::App app(
      "Play made days through all checkers: random orders, limits, stops, answers and thread orders");
  auto* const days = app.add_option("--days", arguments.days, "So many days")->check(CLI::PositiveNumber);
  auto* const hours =
      app.add_option("--hours", arguments.hours, "Days for so long")->check(CLI::PositiveNumber);
  days->excludes(hours);
  app.add_option("--seed", arguments.seed, "Of the first day; each next day has the next one")
      ->capture_default_str();
  app.add_option("--jobs", arguments.jobs, "Days at the same time")->check(CLI::PositiveNumber);
  app.add_option("--out", arguments.out, "Folder for the days that break a rule")->capture_default_str();
  CLI11_PARSE(app, count, texts);
  if (arguments.days == 0 && arguments.hours == 0) arguments.days = 1000;
  iorder::CleanUpOnInterruption();
  return iorder::testing::CSoak(arguments).Run();
}

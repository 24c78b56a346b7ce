#include "bench/ratio.h"

#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <utility>

namespace iorder {

namespace {

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

double CpuNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

Side Timed(double operations, std::function<void()> run) {
  return [operations, run = std::move(run)] {
    const double start = CpuNanoseconds();
    run();
    return (CpuNanoseconds() - start) / operations;
  };
}

Ratio Compare(std::string name, std::string baselineName, const Side& baseline, const Side& ours, double goal,
              int repeats) {
  baseline();
  ours();
  std::vector<double> baselineTimes;
  std::vector<double> ourTimes;
  std::vector<double> ratios;
  for (int i = 0; i < repeats; ++i) {
    baselineTimes.push_back(baseline());
    ourTimes.push_back(ours());
    ratios.push_back(ourTimes.back() / baselineTimes.back());
  }
  return {std::move(name),  std::move(baselineName), Median(baselineTimes),
          Median(ourTimes), Median(ratios),          goal};
}

namespace {

/// Two places, or those that a small number needs.
std::string Short(double ratio) {
  return ratio < 0.1 ? fmt::format("{:.4f}", ratio) : fmt::format("{:.2f}", ratio);
}

}  // namespace

std::string FormatTable(const std::vector<Ratio>& ratios) {
  std::string table = fmt::format("{:<46} {:<40} {:>12} {:>12} {:>8} {:>8}\n", "path", "baseline",
                                  "baseline ns", "path ns", "ratio", "goal");
  for (const Ratio& row : ratios) {
    const std::string goal = row.goal > 0 ? Short(row.goal) : "";
    const char* mark = row.goal > 0 && row.ratio > row.goal ? "  not reached" : "";
    table += fmt::format("{:<46} {:<40} {:>12.1f} {:>12.1f} {:>8} {:>8}{}\n", row.name, row.baseline,
                         row.baselineNs, row.ours, Short(row.ratio), goal, mark);
  }
  return table;
}

}  // namespace iorder

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace iorder {

/// What one comparison gave. Times are nanoseconds of one operation, medians over the repeats; the ratio is
/// the median of the ratios of neighbouring repeats, so that slow phases of the machine hit both sides.
struct Ratio {
  std::string name;
  std::string baseline;
  double baselineNs = 0;
  double ours = 0;
  double ratio = 0;  ///< ours / baseline
  double goal = 0;   ///< at most; 0: none is set
};

/// One side of a comparison: runs once and gives the nanoseconds of one operation.
using Side = std::function<double()>;

/// CPU time of the calling thread so far.
double CpuNanoseconds();

/// A side that is timed as a whole and does `operations` operations.
Side Timed(double operations, std::function<void()> run);

/// Runs both sides by turns, `repeats` times after one round that isn't counted. A goal of 0 is none.
Ratio Compare(std::string name, std::string baselineName, const Side& baseline, const Side& ours, double goal,
              int repeats);

/// A table for people; a ratio above its goal is marked.
std::string FormatTable(const std::vector<Ratio>& ratios);

/// Keeps a value from being optimised away.
template <typename T>
inline void Keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace iorder

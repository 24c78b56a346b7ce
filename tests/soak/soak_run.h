#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/checkers/checker.h"
#include "tests/soak/coverage.h"
#include "tests/soak/soak_day.h"

namespace iorder::testing {

/// What a made day has shown.
struct SoakOutcome {
  std::optional<Violation> violation;  ///< the first one
  CCoverage coverage;
};

/// The day of a seed, as DrawSoakDay has it. If it is one of those in which child orders are changed from
/// outside, it is played once to see which orders are sent, and lines about some of them are put in.
SoakDay MakeSoakDay(uint64_t seed, const std::filesystem::path& path);

/// Plays the day with all checkers listening. Faults of the engine's threads, deadlocks and cycles in the
/// order of locks are violations too. `path`: where the day is written; what is there is replaced.
SoakOutcome PlaySoakDay(const SoakDay& day, const std::filesystem::path& path);

/// The smallest part of a day that still breaks that rule, as far as it is found in a few hundred runs: it is
/// cut behind the moment at which the rule shows broken, then piece by piece.
SoakDay Shrink(const SoakDay& day, const Violation& violation, const std::filesystem::path& path);

}  // namespace iorder::testing

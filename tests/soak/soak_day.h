#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "terminal/local_time.h"

namespace iorder::testing {

/// A made day as it is written: its head, what stands before the first moment, and then what happens, in
/// lines of the day file and rows of its tick file.
struct SoakDay {
  struct Event {
    LocalTime at;
    bool isRow = false;
    std::string text;  ///< the members of a line, or the cells of a row, behind its time
  };

  uint64_t seed = 0;
  LocalTime start;
  LocalTime end;
  std::string head;  ///< further members, with a comma before them
  std::vector<std::string> setup;
  std::vector<Event> events;  ///< in the order of their times
  bool changesChildren =
      false;  ///< lines about child orders are to be put in, once it is known which there are

  /// Writes the day, and its tick file beside it.
  void Write(const std::filesystem::path& path) const;
};

/// The day of a seed: a small option market of one to three sessions, strategies on it, limits, stops and odd
/// commands, accounts that come and go, and a way to answer orders. Always the same for a seed.
SoakDay DrawSoakDay(uint64_t seed);

}  // namespace iorder::testing

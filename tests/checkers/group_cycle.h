#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/checkers/group_look.h"

namespace iorder::testing {

/// A group order, as the checkers know it.
struct GroupOrder {
  GroupCommand command;
  LocalTime since;
  int32_t direction = 0;  ///< kRise or kFall, once it is decided
  std::array<int32_t, kLegCount> sides{};
  std::array<std::string, kLegCount> symbols;  ///< that its legs chose last
  std::vector<std::string> records;            ///< that its first cycle looked at, in their order
  int64_t cycles = 0;

  std::vector<std::string> children;  ///< that live
  bool hasFailed = false;             ///< a child did
};

/// An order string that a look has to lead to.
struct WorkedString {
  size_t leg = 0;
  bool isOffset = false;
  std::string symbol;
  int32_t side = kBuy;
  int32_t lots = 0;
  std::optional<size_t> group;  ///< none: it names none
};

/// What a look has to lead to, worked out from what the engine was shown in it.
struct WorkedCycle {
  bool stops = false;
  std::array<int32_t, kLegCount> multipliers{1, 1, 1, 1};
  bool hasOption = false;  ///< a leg has one: without, the order is gone
  std::vector<WorkedString> strings;
  std::optional<std::string> chase;   ///< none: the settings can't be judged
  std::vector<std::string> mistakes;  ///< what the engine had to look at and didn't
};

/// Decides the order's direction and sides, if that is open, and lets its legs choose anew.
WorkedCycle WorkOut(GroupOrder& order, const GroupLook& look);

}  // namespace iorder::testing

#pragma once

#include <cstdint>
#include <string>

#include "tests/soak/draw.h"

namespace iorder::testing {

/// What the commands of a made day have in common.
struct SoakPlan {
  std::string product;  ///< TX
  std::string month;
  int dates = 1;
  int64_t minutes = 0;  ///< of a session; it begins at 08:45
  int strategies = 0;
  int groups = 0;  ///< group orders
};

/// "hhmm" as a number, so many minutes behind 08:45.
int64_t MinuteOfDay(int64_t behindOpen);

/// A start command of the strategy of that number. `run`: it starts at once.
std::string DrawStart(CDraw& draw, const SoakPlan& plan, int strategy, bool run, int action = 1);
/// A command that sets the limits of a tag.
std::string DrawLimits(CDraw& draw, int strategies);
/// A stop command with any of its flags.
std::string DrawStop(CDraw& draw, int strategy);
/// A command that is odd: a repeated start, a deletion, an order info that comes again, an unknown key, or no
/// command at all.
std::string DrawOdd(CDraw& draw, const SoakPlan& plan);

/// The member "orders" of the head: answers come up to so many ms late; `more` are further members of it.
std::string DrawOrderRules(CDraw& draw, int64_t mostLate, const std::string& more);

}  // namespace iorder::testing
